// Voltage-monitor table ("showvmread").
#pragma once

#include <cstdint>

#include "dksml.h"

namespace dksml {

class IDkDevice;

class DkVoltageMonitor {
public:
    virtual ~DkVoltageMonitor() = default;
    virtual DkSmlReturn GetVmInfo(IDkDevice* device, uint32_t* count, DkSmlVmInfo* entries);
    virtual DkSmlReturn GetDieVmInfo(IDkDevice* device, unsigned int dieId, uint32_t* count, DkSmlVmInfo* entries);
};

}  // namespace dksml
