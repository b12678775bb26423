// PCIe and interconnect readings of one device for the detail view and JSON.
#pragma once

#include <cstdint>

#include "snapshot.h"

namespace dksmi {

void CollectPcieAndLinks(uint32_t index, DeviceReport& report);

}  // namespace dksmi
