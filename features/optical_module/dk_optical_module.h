// Optical modules of the Ethernet ports: presence, identity and lane power.
#pragma once

#include <cstdint>

#include "dksml.h"

namespace dksml {

class IDkDevice;

class DkOpticalModule {
public:
    virtual ~DkOpticalModule() = default;

    virtual DkSmlReturn GetOpticalModuleStatus(IDkDevice* device, uint32_t* count, uint32_t* states);
    virtual DkSmlReturn GetOpticalModuleInfo(IDkDevice* device, uint32_t module, char* info, uint32_t* size);
    virtual DkSmlReturn GetOpticalModulePower(IDkDevice* device, uint32_t module, uint32_t* count, int32_t* powers);
};

}  // namespace dksml
