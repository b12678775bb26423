// Fan speed and duty ("fan_ctrl", die 0).
#pragma once

#include <cstdint>

#include "dksml.h"

namespace dksml {

class IDkDevice;

class DkFan {
public:
    virtual ~DkFan() = default;
    virtual DkSmlReturn GetFanSpeedInfo(IDkDevice* device, uint32_t* rpm, uint32_t* pwm);
    virtual DkSmlReturn SetFanPwm(IDkDevice* device, uint32_t pwm);
};

}  // namespace dksml
