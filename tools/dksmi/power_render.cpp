#include "power_render.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace dksmi {
namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kNa = "N/A";
// An AP at or above this usage is marked hot in the grid.
constexpr uint32_t kHotApPercent = 90;

template <typename T>
Json OrNull(const std::optional<T>& value) {
    return value ? Json(*value) : Json(nullptr);
}

std::optional<int32_t> EngineLoad(const std::vector<EngineUsageReading>& engines, const std::string& name) {
    for (const EngineUsageReading& e : engines)
        if (e.engine == name) return e.percent;
    return std::nullopt;
}

void AddEngines(std::vector<PowerDetailLine>& lines, int depth, const std::vector<EngineUsageReading>& engines) {
    lines.push_back({depth, "Engine usage (%)", std::nullopt});
    for (const EngineUsageReading& e : engines)
        lines.push_back({depth + 1, e.engine, e.percent ? std::to_string(*e.percent) : kNa});
}

void AddMemory(std::vector<PowerDetailLine>& lines, int depth, const std::optional<std::vector<MemoryPoolReading>>& pools) {
    if (!pools) {
        lines.push_back({depth, "Memory (KiB)", kNa});
        return;
    }
    lines.push_back({depth, "Memory (KiB)", std::nullopt});
    for (const MemoryPoolReading& p : *pools)
        lines.push_back({depth + 1, p.pool, fmt::format("{} used of {}", p.usedKib, p.totalKib)});
}

// One row per DPC, one cell per AP. Fused-off units are known only by count,
// so they close the grid as "--"; a hot AP carries a '*'.
void AddApGrid(std::vector<PowerDetailLine>& lines, int depth, const std::optional<ApUsageTable>& table) {
    if (!table) {
        lines.push_back({depth, "AP usage (%)", kNa});
        return;
    }
    lines.push_back({depth, fmt::format("AP usage (%), {} of {} DPCs active, * hot, -- fused off", table->reportedDpcs,
                                        table->dpcCount),
                     std::nullopt});
    size_t next = 0;
    for (uint32_t dpc = 0; dpc < table->dpcCount; ++dpc) {
        std::string row;
        for (uint32_t ap = 0; ap < table->apPerDpc; ++ap, ++next) {
            if (next < table->percent.size()) {
                const uint32_t value = table->percent[next];
                row += fmt::format("{:>4}{}", value, value >= kHotApPercent ? '*' : ' ');
            } else {
                row += "  -- ";
            }
        }
        lines.push_back({depth + 1, fmt::format("dpc {}", dpc), row});
    }
}

Json EnginesJson(const std::vector<EngineUsageReading>& engines) {
    Json out = Json::object();
    for (const EngineUsageReading& e : engines) out[e.engine] = OrNull(e.percent);
    return out;
}

Json MemoryJson(const std::optional<std::vector<MemoryPoolReading>>& pools) {
    if (!pools) return nullptr;
    Json out = Json::object();
    for (const MemoryPoolReading& p : *pools) out[p.pool] = Json{{"total", p.totalKib}, {"used", p.usedKib}};
    return out;
}

}  // namespace

std::array<std::string, 3> PowerSummaryCells(const DevicePowerReport& power) {
    std::string watts = power.boardPowerW ? fmt::format("{:.1f} W", *power.boardPowerW) : kNa;
    const std::optional<int32_t> load = EngineLoad(power.engines, "xcore");
    std::string memory = kNa;
    if (power.memory && !power.memory->empty()) {
        const MemoryPoolReading& vram = power.memory->front();
        memory = fmt::format("{} / {} MiB", vram.usedKib / 1024, vram.totalKib / 1024);
    }
    return {watts, load ? fmt::format("{} %", *load) : kNa, memory};
}

std::vector<PowerDetailLine> DevicePowerDetail(const DevicePowerReport& power) {
    std::vector<PowerDetailLine> lines;
    lines.push_back({0, "Board power", power.boardPowerW ? fmt::format("{:.1f} W", *power.boardPowerW) : kNa});
    if (power.boardWays) {
        for (size_t w = 0; w < power.boardWays->size(); ++w) {
            const auto& way = (*power.boardWays)[w];
            lines.push_back({1, fmt::format("way {}", w), fmt::format("{} mV  {} mA  {} mW", way[0], way[1], way[2])});
        }
    }
    lines.push_back({0, "Power limit",
                     power.powerLimitMw ? fmt::format("{:.1f} W", *power.powerLimitMw / 1000.0) : kNa});
    lines.push_back({0, "Power mode", power.powerMode ? std::to_string(*power.powerMode) : kNa});
    lines.push_back({0, "PCI power state", power.pciPowerState.value_or(kNa)});
    AddEngines(lines, 0, power.engines);
    AddMemory(lines, 0, power.memory);
    return lines;
}

std::vector<PowerDetailLine> DiePowerDetail(const DiePowerReport& power) {
    std::vector<PowerDetailLine> lines;
    lines.push_back({0, "PMBus (mV, mA, W)", std::nullopt});
    for (const PmbusRailReading& rail : power.pmbus) {
        lines.push_back({1, rail.rail,
                         rail.values ? fmt::format("{} mV  {} mA  {} W", (*rail.values)[0], (*rail.values)[1],
                                                   (*rail.values)[2])
                                     : kNa});
    }
    AddEngines(lines, 0, power.engines);
    AddApGrid(lines, 0, power.apUsage);
    AddMemory(lines, 0, power.memory);
    return lines;
}

void AddDevicePowerJson(Json& device, const DevicePowerReport& power) {
    device["board_power_w"] = OrNull(power.boardPowerW);
    Json ways = nullptr;
    if (power.boardWays) {
        ways = Json::array();
        for (const auto& way : *power.boardWays)
            ways.push_back(Json{{"voltage_mv", way[0]}, {"current_ma", way[1]}, {"power_mw", way[2]}});
    }
    device["board_power_ways"] = ways;
    device["power_limit_mw"] = OrNull(power.powerLimitMw);
    device["power_mode"] = OrNull(power.powerMode);
    device["pci_power_state"] = OrNull(power.pciPowerState);
    device["engine_usage_pct"] = EnginesJson(power.engines);
    device["memory_kib"] = MemoryJson(power.memory);
}

void AddDiePowerJson(Json& die, const DiePowerReport& power) {
    Json rails = Json::object();
    for (const PmbusRailReading& rail : power.pmbus) {
        rails[rail.rail] = rail.values ? Json{{"voltage_mv", (*rail.values)[0]},
                                              {"current_ma", (*rail.values)[1]},
                                              {"power_w", (*rail.values)[2]}}
                                       : Json(nullptr);
    }
    die["pmbus"] = rails;
    die["engine_usage_pct"] = EnginesJson(power.engines);
    Json table = nullptr;
    if (power.apUsage) {
        table = Json{{"dpc_count", power.apUsage->dpcCount},
                     {"ap_per_dpc", power.apUsage->apPerDpc},
                     {"reported_dpc_count", power.apUsage->reportedDpcs},
                     {"values", power.apUsage->percent}};
    }
    die["ap_usage_pct"] = table;
    die["memory_kib"] = MemoryJson(power.memory);
}

}  // namespace dksmi
