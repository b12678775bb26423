// Video units and codecs.
#pragma once

#include <cstdint>

#include "dksml.h"

namespace dksml {

class IDkDevice;

class DkVpu {
public:
    virtual ~DkVpu() = default;

    virtual DkSmlReturn GetVpuStatus(IDkDevice* device, uint32_t* count, uint32_t* states);
    virtual DkSmlReturn GetCodecStatus(IDkDevice* device, uint32_t* count, uint32_t* states);
};

}  // namespace dksml
