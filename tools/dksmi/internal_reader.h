// Records that no exported function returns: a die's whole temperature
// record, its temperature-sensor table and its voltage-monitor table. They
// come from the library's internal services; this is the only place that
// reaches past the C interface.
#pragma once

#include <cstdint>
#include <vector>

#include "dksml.h"

namespace dksmi {

DkSmlReturn ReadDieTemperatureRecord(uint32_t deviceIndex, uint32_t die, DkSmlTemperature& record);
DkSmlReturn ReadDieSensorTable(uint32_t deviceIndex, uint32_t die, DkSmlTemperatureSensorForAll& table);
DkSmlReturn ReadDieVoltageMonitor(uint32_t deviceIndex, uint32_t die, std::vector<DkSmlVmInfo>& rows);

}  // namespace dksmi
