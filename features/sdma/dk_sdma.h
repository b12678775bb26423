// DMA engine bandwidth.
#pragma once

#include <cstdint>

#include "dksml.h"

namespace dksml {

class IDkDevice;

class DkSdma {
public:
    virtual ~DkSdma() = default;

    virtual DkSmlReturn GetDmaBandwidth(IDkDevice* device, uint32_t* count, DkSmlBandwidthInfo* engines);
};

}  // namespace dksml
