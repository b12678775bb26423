// Function-level, warm and forced resets. Warm and forced resets work on a
// device-information record so that limited devices can be reset too.
#pragma once

#include <cstdint>
#include <string>

#include "dksml.h"

namespace dksml {

class IDkDevice;

class DkDeviceReset {
public:
    virtual ~DkDeviceReset() = default;

    virtual DkSmlReturn FunctionLevelReset(IDkDevice* device);
    virtual DkSmlReturn FunctionLevelResetVfFromPf(IDkDevice* device, uint32_t vfIndex);
    virtual DkSmlReturn Reset(const DkSmlDeviceInfo& info, const std::string& layoutPath);
    virtual DkSmlReturn ForceReset(const DkSmlDeviceInfo& info, const std::string& layoutPath);
};

}  // namespace dksml
