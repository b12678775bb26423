// Records that no exported function returns: a die's whole temperature
// record, its temperature-sensor table, its voltage-monitor table and all of
// its version texts at once. They
// come from the library's internal services; this is the only place that
// reaches past the C interface.
#pragma once

#include <cstdint>
#include <vector>

#include "dksml.h"

namespace dksml {
struct DkDieVersionTexts;
}

namespace dksmi {

DkSmlReturn ReadDieTemperatureRecord(uint32_t deviceIndex, uint32_t die, DkSmlTemperature& record);
DkSmlReturn ReadDieSensorTable(uint32_t deviceIndex, uint32_t die, DkSmlTemperatureSensorForAll& table);
DkSmlReturn ReadDieVoltageMonitor(uint32_t deviceIndex, uint32_t die, std::vector<DkSmlVmInfo>& rows);

// Every version text of a die from one read of each driver record: asking the
// exported version functions unit by unit reads the firmware record once per
// unit, and again for the whole record.
DkSmlReturn ReadDieVersionTexts(uint32_t deviceIndex, uint32_t die, dksml::DkDieVersionTexts& texts);
// Die 0's driver version alone, as ReadDieVersionTexts gives it.
DkSmlReturn ReadDriverVersion(uint32_t deviceIndex, char* buffer, uint32_t size);
// Version of the compute stack the device's brand ships, into `size` characters.
DkSmlReturn ReadStackVersion(uint32_t deviceIndex, char* buffer, uint32_t size);

}  // namespace dksmi
