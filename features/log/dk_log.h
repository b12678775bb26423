// Firmware log levels.
#pragma once

#include <cstdint>

#include "dksml.h"

namespace dksml {

class IDkDevice;

class DkLog {
public:
    virtual ~DkLog() = default;

    virtual DkSmlReturn SetFwLoglevel(IDkDevice* device, uint32_t level);
    virtual DkSmlReturn GetFwIpLoglevel(IDkDevice* device, uint32_t ip, uint32_t* level);
    virtual DkSmlReturn GetFwLoglevel(IDkDevice* device, uint32_t* level);
};

}  // namespace dksml
