// Fuse reading: the chip serial number.
#pragma once

#include <cstdint>

#include "dksml.h"

namespace dksml {

class IDkDevice;

class DkFuse {
public:
    virtual ~DkFuse() = default;

    virtual DkSmlReturn GetChipSerial(IDkDevice* device, char* serial, uint32_t* size);
};

}  // namespace dksml
