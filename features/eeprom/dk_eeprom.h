// Board EEPROM content and the board serial number.
#pragma once

#include <cstdint>

#include "dksml.h"

namespace dksml {

class IDkDevice;

class DkEeprom {
public:
    virtual ~DkEeprom() = default;

    virtual DkSmlReturn GetEepromInfo(IDkDevice* device, char* info, uint32_t* size);
    virtual DkSmlReturn GetBoardSerial(IDkDevice* device, char* serial, uint32_t* size);
};

}  // namespace dksml
