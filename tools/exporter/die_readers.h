// Per-die readings that only the library's internal services give (the
// voltage monitor's rows), read in one pass into a fixed-size buffer.
#pragma once

#include <array>
#include <cstdint>

#include "dksml.h"

namespace dksml::exporter {

// Room for every row a die has printed so far; a longer monitor is read again
// with the exact count.
constexpr uint32_t c_voltageMonitorRows = 32;

struct VoltageMonitorRows {
    std::array<DkSmlVmInfo, c_voltageMonitorRows> rows{};
    uint32_t count = 0;
};

// The rows of the die's voltage monitor (`rows.count` of them when the
// monitor has no more than c_voltageMonitorRows rows; else the first ones).
DkSmlReturn ReadVoltageMonitor(uint32_t deviceIndex, uint32_t die, VoltageMonitorRows& rows) noexcept;

}  // namespace dksml::exporter
