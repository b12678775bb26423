// Per-die records from the library's internal services: values no exported
// function returns (the voltage monitor's rows), and whole records of values
// the exports give one at a time, each attribute file read once per scrape.
// Every record carries per-value statuses equal to what the per-value export
// answers, so a family's series and error counts do not depend on the route.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <utility>

#include "dksml.h"
#include "features/dpm/dk_dpm.h"
#include "features/power/dk_power.h"
#include "features/utilization/dk_utilization.h"
#include "features/version/dk_version.h"

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

// Current and maximum level of every DPM domain of the die.
DkSmlReturn ReadDieDpmLevels(uint32_t deviceIndex, uint32_t die, DkDpmDieLevels& levels) noexcept;
// Voltage, current and power of every PMBus rail of the die.
DkSmlReturn ReadDiePmbusRails(uint32_t deviceIndex, uint32_t die, DkDiePmbusRails& rails) noexcept;
// Usage of every engine of the die.
DkSmlReturn ReadDieUsages(uint32_t deviceIndex, uint32_t die, DkDieUsage& usage) noexcept;
// Driver, VBIOS and firmware-unit versions of the die, and its version record
// short of the compute-stack version.
DkSmlReturn ReadDieVersionTexts(uint32_t deviceIndex, uint32_t die, DkDieVersionTexts& texts) noexcept;

// The compute-stack version is the same for every GPU of a brand and costs a
// library load to ask: one scrape asks it once per brand.
class StackVersions {
public:
    DkSmlReturn Get(uint32_t deviceIndex, std::string& version) noexcept;

private:
    std::map<int, std::pair<DkSmlReturn, std::string>> m_byBrand;
};

}  // namespace dksml::exporter
