// ECC mode and error totals.
#pragma once

#include <cstdint>

#include "dksml.h"

namespace dksml {

class IDkDevice;

class DkEcc {
public:
    virtual ~DkEcc() = default;

    virtual DkSmlReturn GetEccState(IDkDevice* device, uint32_t* state);
    virtual DkSmlReturn SetEccState(IDkDevice* device, uint32_t state);
    virtual DkSmlReturn GetTotalEccErrors(IDkDevice* device, DkSmlEccErrorCount* errors);
};

}  // namespace dksml
