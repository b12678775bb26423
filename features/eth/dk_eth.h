// Ethernet ports of the device.
#pragma once

#include <cstdint>

#include "dksml.h"

namespace dksml {

class IDkDevice;

class DkEth {
public:
    virtual ~DkEth() = default;

    virtual DkSmlReturn GetEthThroughput(IDkDevice* device, uint32_t* count, DkSmlEthThroughput* ports);
};

}  // namespace dksml
