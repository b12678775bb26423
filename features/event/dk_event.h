// PCI events of the driver: MMIO state and error events.
#pragma once

#include <cstdint>

#include "dksml.h"

namespace dksml {

class IDkDevice;

class DkEvent {
public:
    virtual ~DkEvent() = default;

    virtual DkSmlReturn GetPciMmioState(IDkDevice* device, uint32_t* state);
    virtual DkSmlReturn GetPciEventInfo(IDkDevice* device, char* info, uint32_t* size);
};

}  // namespace dksml
