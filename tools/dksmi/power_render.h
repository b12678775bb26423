// Text and JSON pieces for power, engine load and memory.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "snapshot.h"

namespace dksmi {

// One line of the detail view: a heading when there is no value.
struct PowerDetailLine {
    int depth;
    std::string label;
    std::optional<std::string> value;
};

// Summary cells: board power (W), compute load (%), memory used / total (MiB).
std::array<std::string, 3> PowerSummaryCells(const DevicePowerReport& power);
inline constexpr std::array<const char*, 3> kPowerSummaryHeaders{"POWER", "LOAD", "MEMORY"};

// Detail lines, depth relative to the caller's.
std::vector<PowerDetailLine> DevicePowerDetail(const DevicePowerReport& power);
std::vector<PowerDetailLine> DiePowerDetail(const DiePowerReport& power);

// Fields added to the device and die objects of the JSON document.
void AddDevicePowerJson(nlohmann::ordered_json& device, const DevicePowerReport& power);
void AddDiePowerJson(nlohmann::ordered_json& die, const DiePowerReport& power);

}  // namespace dksmi
