#include "power_collect.h"

#include <array>
#include <numeric>

namespace dksmi {
namespace {

struct Engine {
    const char* name;
    DkSmlUsageIp ip;
};

constexpr std::array<Engine, 5> kEngines{{
    {"xcore", DK_SML_USAGE_IP_XCORE},
    {"dla", DK_SML_USAGE_IP_DLA},
    {"vpue", DK_SML_USAGE_IP_VPUE},
    {"vpud", DK_SML_USAGE_IP_VPUD},
    {"g2d", DK_SML_USAGE_IP_G2D},
}};

struct Rail {
    const char* name;
    DkSmlPmbusUnit unit;
};

constexpr std::array<Rail, 6> kRails{{
    {"soc", DK_SML_PMBUS_UNIT_SOC},
    {"core", DK_SML_PMBUS_UNIT_CORE},
    {"hbm", DK_SML_PMBUS_UNIT_HBM},
    {"pcie", DK_SML_PMBUS_UNIT_PCIE},
    {"hbm2", DK_SML_PMBUS_UNIT_HBM2},
    {"pcie2", DK_SML_PMBUS_UNIT_PCIE2},
}};

// What the driver's three memory pools hold.
constexpr std::array<const char*, DK_SML_MEMORY_POOLS> kPools{"vram", "visible_vram", "gtt"};

constexpr std::array<const char*, 3> kPciPowerStates{"D0", "D3hot", "D3cold"};

constexpr uint32_t kMaxBoardWays = 16;
constexpr uint32_t kMaxTableSide = 1024;  // a sanity bound on what the driver claims

std::vector<MemoryPoolReading> ToPools(const DkSmlMemoryInfo& info) {
    std::vector<MemoryPoolReading> pools;
    for (size_t p = 0; p < kPools.size(); ++p) pools.push_back({kPools[p], info.pool[p].total, info.pool[p].used});
    return pools;
}

std::optional<ApUsageTable> ReadApTable(uint32_t index, uint32_t die) {
    uint32_t probe = 0;
    uint32_t dpcs = 0;
    uint32_t aps = 0;
    // Capacity 0 asks for the die's sizes.
    if (dkSmlGetDieXcoreApUsage(index, die, &probe, &dpcs, &aps) != DK_SML_ERROR_INSUFFICIENT_SIZE) return std::nullopt;
    if (dpcs == 0 || aps == 0 || dpcs > kMaxTableSide || aps > kMaxTableSide) return std::nullopt;
    ApUsageTable table;
    table.dpcCount = dpcs;
    table.apPerDpc = aps;
    table.percent.assign(static_cast<size_t>(dpcs) * aps, 0);
    uint32_t reportedDpcs = dpcs;
    uint32_t stored = aps;
    if (dkSmlGetDieXcoreApUsage(index, die, table.percent.data(), &reportedDpcs, &stored) != DK_SML_SUCCESS)
        return std::nullopt;
    table.reportedDpcs = reportedDpcs;
    table.percent.resize(std::min<size_t>(stored, table.percent.size()));
    return table;
}

void ReadBoardPower(uint32_t index, DevicePowerReport& report) {
    DkSmlBoardWayElectricInfo ways[kMaxBoardWays]{};
    uint32_t count = kMaxBoardWays;
    if (dkSmlGetBoardPowerInfo(index, &count, ways) == DK_SML_SUCCESS) {
        std::vector<std::array<uint32_t, 3>> list;
        double milliwatts = 0;
        for (uint32_t w = 0; w < std::min(count, kMaxBoardWays); ++w) {
            list.push_back({ways[w].values[0], ways[w].values[1], ways[w].values[2]});
            milliwatts += ways[w].values[2];
        }
        report.boardWays = std::move(list);
        report.boardPowerW = milliwatts / 1000.0;
    }
}

EngineUsageReading ReadDeviceEngine(uint32_t index, const Engine& engine) {
    int32_t usage = 0;
    EngineUsageReading reading{engine.name, std::nullopt};
    if (dkSmlGetDeviceIpUsage(index, engine.ip, &usage) == DK_SML_SUCCESS && usage >= 0) reading.percent = usage;
    return reading;
}

void ReadDeviceMemory(uint32_t index, DevicePowerReport& report) {
    DkSmlMemoryInfo memory{};
    if (dkSmlGetMemoryInfo(index, &memory) == DK_SML_SUCCESS) report.memory = ToPools(memory);
}

}  // namespace

void CollectDiePower(uint32_t index, uint32_t die, DiePowerReport& report) {
    for (const Rail& rail : kRails) {
        DkSmlPmbusInfo info{};
        PmbusRailReading reading{rail.name, std::nullopt};
        if (dkSmlGetDiePmbusInfo(index, die, rail.unit, &info) == DK_SML_SUCCESS)
            reading.values = std::array<uint32_t, 3>{info.voltage, info.current, info.power};
        report.pmbus.push_back(std::move(reading));
    }
    for (const Engine& engine : kEngines) {
        int32_t usage = 0;
        EngineUsageReading reading{engine.name, std::nullopt};
        if (dkSmlGetDieIpUsage(index, die, engine.ip, &usage) == DK_SML_SUCCESS && usage >= 0) reading.percent = usage;
        report.engines.push_back(std::move(reading));
    }
    report.apUsage = ReadApTable(index, die);
    DkSmlMemoryInfo memory{};
    if (dkSmlGetDieMemoryInfo(index, die, &memory) == DK_SML_SUCCESS) report.memory = ToPools(memory);
}

void CollectDevicePower(uint32_t index, DevicePowerReport& report) {
    ReadBoardPower(index, report);
    uint32_t limit = 0;
    if (dkSmlGetBoardPowerLimit(index, &limit) == DK_SML_SUCCESS) report.powerLimitMw = limit;
    uint32_t mode = 0;
    if (ReadDevicePowerMode(index, mode) == DK_SML_SUCCESS) report.powerMode = mode;
    DkSmlPciPowerState state{};
    if (dkSmlGetPciPowerState(index, &state) == DK_SML_SUCCESS && static_cast<uint32_t>(state) < kPciPowerStates.size())
        report.pciPowerState = kPciPowerStates[state];
    for (const Engine& engine : kEngines) report.engines.push_back(ReadDeviceEngine(index, engine));
    ReadDeviceMemory(index, report);
}

void CollectDeviceSummaryPower(uint32_t index, DevicePowerReport& report) {
    ReadBoardPower(index, report);
    report.engines.push_back(ReadDeviceEngine(index, kEngines.front()));
    ReadDeviceMemory(index, report);
}

}  // namespace dksmi
