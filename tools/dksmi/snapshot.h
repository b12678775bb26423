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

// Current and maximum performance level of one DPM domain of a die.
struct PerfLevelReading {
    std::string ip;
    std::optional<uint32_t> current;
    std::optional<uint32_t> maximum;
};

// The version of one firmware unit ("SMP0", "MCU", ...).
struct FirmwareVersion {
    std::string unit;
    std::optional<std::string> version;
};

struct DieReport {
    uint32_t die = 0;
    std::optional<uint64_t> throttleMask;
    std::optional<std::vector<ClockReading>> clocks;
    std::optional<std::vector<TemperatureReading>> temperatures;
    std::optional<int32_t> hottestSensorIndex;
    std::optional<ReadingRows> sensorTableC;
    std::optional<ReadingRows> voltageMonitorRaw;
    std::optional<std::vector<PerfLevelReading>> perfLevels;
    DiePowerReport power;
};

// One slice of a device in slice mode.
struct SliceReport {
    uint32_t id = 0;
    uint32_t vramQuota = 0;
    uint32_t computeQuota = 0;
    std::string uuid;
    std::string alias;
    std::optional<int32_t> state;                    // the slice's layout node "active"
    std::optional<int32_t> utilization;
    std::optional<DkSmlSgpuMemoryInfo> memory;       // total, used, free
};

// One (GPU, memory domain) pair a process uses.
struct ProcessGpuUse {
    std::string busId;
    uint32_t deviceIndex = 0;
    uint64_t memory = 0;                             // the driver's unit (bytes)
    uint32_t vramTag = 0;
    int32_t sliceId = -1;                            // -1: not a slice
};

struct ProcessReport {
    uint32_t pid = 0;
    std::optional<uint32_t> namespacePid;            // as the driver records it
    std::string name;
    std::vector<ProcessGpuUse> gpus;
    uint64_t TotalMemory() const {
        uint64_t total = 0;
        for (const ProcessGpuUse& use : gpus) total += use.memory;
        return total;
    }
};

// PCIe link of a device (the -i view and JSON).
struct PcieReport {
    std::optional<DkSmlPcieInfo> current;
    std::optional<DkSmlPcieInfo> maximum;
    std::optional<uint32_t> slot;
    std::optional<DkSmlPcieThroughput> throughput;
};

// Interconnect of a device: on/off state, port states and per-link bandwidth.
struct LinkReport {
    std::optional<uint32_t> state;
    std::string stateText;
    std::optional<std::vector<uint32_t>> portStates;
    std::optional<std::vector<DkSmlDravikLinkBandwidth>> inbound;
    std::optional<std::vector<DkSmlDravikLinkBandwidth>> outbound;
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
    std::optional<uint32_t> processCount;            // processes with memory on this device
    std::optional<bool> sliceMode;                   // empty: the device has no slice mode
    std::vector<SliceReport> slices;
    PcieReport pcie;
    LinkReport links;
    std::optional<std::string> driverVersion;
    std::optional<std::string> vbiosVersion;
    std::optional<std::string> computeStackVersion;
    std::vector<FirmwareVersion> firmware;           // die 0
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
    std::optional<std::vector<ProcessReport>> processes;  // empty: the scan failed
    std::string libraryVersion;                      // this library's own
    std::optional<std::string> driverVersion;        // of the first device
};

}  // namespace dksmi
