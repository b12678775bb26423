// Reads a device's and its dies' power, engine load and memory.
#pragma once

#include <cstdint>

#include "dksml.h"
#include "snapshot.h"

namespace dksmi {

void CollectDevicePower(uint32_t index, DevicePowerReport& report);
// What the summary table shows: board power, the xcore load and the memory.
void CollectDeviceSummaryPower(uint32_t index, DevicePowerReport& report);
void CollectDiePower(uint32_t index, uint32_t die, DiePowerReport& report);

// Through the library's power service (no export returns the mode).
DkSmlReturn ReadDevicePowerMode(uint32_t deviceIndex, uint32_t& mode) noexcept;

}  // namespace dksmi
