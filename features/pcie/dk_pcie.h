// The PCI Express link of a GPU: current and maximum link, bandwidth and
// throughput counters, physical slot, and the driver's PCI delay and forced
// link generation.
#pragma once

#include <cstdint>

#include "dksml.h"

namespace dksml {

class IDkDevice;

class DkPcie {
public:
    virtual ~DkPcie() = default;

    virtual DkSmlReturn GetPcieInfo(IDkDevice* device, DkSmlPcieInfo* info);
    virtual DkSmlReturn GetPcieMaxLinkInfo(IDkDevice* device, DkSmlPcieInfo* info);
    virtual DkSmlReturn GetPcieThroughput(IDkDevice* device, DkSmlPcieThroughput* throughput);
    virtual DkSmlReturn GetPcieBandwidth(IDkDevice* device, DkSmlPcieBandwidth* bandwidth);
    virtual DkSmlReturn GetDeviceSlot(IDkDevice* device, uint32_t* slot);
    virtual DkSmlReturn GetPciDelay(IDkDevice* device, uint32_t* delay);
    virtual DkSmlReturn SetPciDelay(IDkDevice* device, uint32_t delay);
    virtual DkSmlReturn SetPciSpeed(IDkDevice* device, DkSmlPciGen generation);
};

}  // namespace dksml
