// Power, engine load and memory of a device and its dies, as plain values.
// An empty optional is a value the library answered with a refusal (shown as
// "N/A" or null).
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace dksmi {

struct PmbusRailReading {
    std::string rail;
    std::optional<std::array<uint32_t, 3>> values;  // mV, mA, W
};

struct EngineUsageReading {
    std::string engine;
    std::optional<int32_t> percent;
};

// The compute cores' per-AP usage. The library leaves fused-off units out:
// only how many there are is known, not where.
struct ApUsageTable {
    uint32_t dpcCount = 0;   // DPCs of the die, harvested ones included
    uint32_t apPerDpc = 0;
    uint32_t reportedDpcs = 0;
    std::vector<uint32_t> percent;
};

struct MemoryPoolReading {
    std::string pool;
    uint64_t totalKib = 0;
    uint64_t usedKib = 0;
};

struct DiePowerReport {
    std::vector<PmbusRailReading> pmbus;
    std::vector<EngineUsageReading> engines;
    std::optional<ApUsageTable> apUsage;
    std::optional<std::vector<MemoryPoolReading>> memory;
};

struct DevicePowerReport {
    std::optional<std::vector<std::array<uint32_t, 3>>> boardWays;  // mV, mA, mW per way
    std::optional<double> boardPowerW;                             // sum over the ways
    std::optional<uint32_t> powerLimitMw;
    std::optional<uint32_t> powerMode;
    std::optional<std::string> pciPowerState;
    std::vector<EngineUsageReading> engines;  // mean over the dies
    std::optional<std::vector<MemoryPoolReading>> memory;
};

}  // namespace dksmi
