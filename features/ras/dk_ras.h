// RAS error counters and status of the hardware blocks.
#pragma once

#include <cstdint>

#include "dksml.h"

namespace dksml {

class IDkDevice;

class DkRas {
public:
    virtual ~DkRas() = default;

    virtual DkSmlReturn GetRasErrorData(IDkDevice* device, DkSmlRasErrorData* data);
    virtual DkSmlReturn GetDieRasErrorData(IDkDevice* device, unsigned int dieId, DkSmlRasErrorData_v2* data);
    virtual DkSmlReturn GetRasStatusData(IDkDevice* device, uint32_t* count, uint32_t* status);
};

}  // namespace dksml
