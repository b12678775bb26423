// HBM bandwidth.
#pragma once

#include <cstdint>

#include "dksml.h"

namespace dksml {

class IDkDevice;

class DkHbm {
public:
    virtual ~DkHbm() = default;

    virtual DkSmlReturn GetHbmBandWidth(IDkDevice* device, uint32_t* count, DkSmlBandwidthInfo* channels);
};

}  // namespace dksml
