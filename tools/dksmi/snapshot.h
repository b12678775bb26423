// Everything dksmi shows, gathered once per redraw into plain values so that
// the renderers never call the library. An empty optional is a value the
// library could not answer for this device (shown as "N/A" or null).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "dksml.h"
#include "power_snapshot.h"

namespace dksmi {

enum class DeviceRole { Physical, PhysicalFunction, VirtualFunction };

// One functional block's clocks; no values when the driver does not report it.
struct ClockReading {
    std::string ip;
    std::optional<std::vector<uint32_t>> mhz;
};

// One field of the die's temperature record.
struct TemperatureReading {
    std::string name;
    std::optional<int32_t> celsius;
};

using ReadingRows = std::vector<std::vector<int32_t>>;

struct DieReport {
    uint32_t die = 0;
    std::optional<uint64_t> throttleMask;
    std::optional<std::vector<ClockReading>> clocks;
    std::optional<std::vector<TemperatureReading>> temperatures;
    std::optional<int32_t> hottestSensorIndex;
    std::optional<ReadingRows> sensorTableC;
    std::optional<ReadingRows> voltageMonitorRaw;
    DiePowerReport power;
};

struct DeviceReport {
    uint32_t index = 0;
    std::string name;
    std::string busId;
    std::string uuid;
    DkSmlDeviceBrand brand = DK_SML_BRAND_UNKNOWN;
    DeviceRole role = DeviceRole::Physical;
    std::vector<uint32_t> virtualFunctions;          // hosted VFs (PF only)
    std::optional<uint32_t> physicalFunction;        // hosting PF (VF only)
    std::optional<uint32_t> dieCount;
    std::optional<int32_t> hotspotC;
    std::optional<uint32_t> fanRpm;
    std::optional<uint32_t> fanDuty;
    std::optional<uint64_t> throttleMask;            // OR of every die
    DevicePowerReport power;
    std::vector<DieReport> dies;
};

struct LimitedDeviceReport {
    uint32_t index = 0;
    std::string busId;
    uint32_t vendorId = 0;
    uint32_t deviceId = 0;
    bool isVirtualFunction = false;
    uint32_t reason = 0;
    std::string reasonText;
};

struct Snapshot {
    DkSmlReturn initStatus = DK_SML_SUCCESS;
    std::vector<DeviceReport> devices;
    std::vector<LimitedDeviceReport> limitedDevices;
};

}  // namespace dksmi
