// Versions and performance levels for the snapshot.
#pragma once

#include <optional>
#include <vector>

#include "snapshot.h"

namespace dksmi {

// Current and maximum level of every domain the die reports; empty optional
// when the die reports none.
std::optional<std::vector<PerfLevelReading>> CollectPerfLevels(uint32_t index, uint32_t die);

// Driver, VBIOS, compute-stack and firmware-unit versions of a device.
void CollectDeviceVersions(DeviceReport& device);

// The library's version and the driver version of the first device that has
// one; `askDevices`: the devices' versions were not collected, so ask each
// device for its driver version alone until one answers.
void CollectSystemVersions(Snapshot& snapshot, bool askDevices);

}  // namespace dksmi
