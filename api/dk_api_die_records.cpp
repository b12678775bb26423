// Native exports of a die's whole records: the temperature record (every
// sensor and the hottest-sensor index in one read of "showtemp"), the
// temperature-sensor table and the voltage-monitor table. Monitoring clients
// outside C++ (the Python module, dksmi's JSON view) need them whole; the
// single-sensor reads cannot give the memory-controller and board sensors.
#include "api/dk_api_service_call.h"
#include "dksml.h"
#include "features/temperature/dk_temperature.h"
#include "features/voltage/dk_voltage.h"

using namespace dksml;

namespace {

constexpr auto c_temperature = &DkServiceManager::GetDkTemperature;
constexpr auto c_voltage = &DkServiceManager::GetDkVoltageMonitor;

}  // namespace

extern "C" {

DKSML_API DkSmlReturn dkSmlGetDieTemperatureRecord(uint32_t deviceIndex, uint32_t dieId,
                                                   DkSmlTemperature* temperature) {
    if (AnyNull(temperature)) return DK_SML_ERROR_INVALID_INPUT;
    return CallDieService(deviceIndex, dieId, c_temperature, [&](DkTemperature& s, IDkDevice* d) {
        s.InitTemperature(temperature);
        return s.GetDieTemperature(d, dieId, temperature);
    });
}

DKSML_API DkSmlReturn dkSmlGetDieTemperatureSensor(uint32_t deviceIndex, uint32_t dieId,
                                                   DkSmlTemperatureSensorForAll* table) {
    if (AnyNull(table)) return DK_SML_ERROR_INVALID_INPUT;
    return CallDieService(deviceIndex, dieId, c_temperature, [&](DkTemperature& s, IDkDevice* d) {
        *table = DkSmlTemperatureSensorForAll{};
        return s.GetDieTemperatureSensor(d, dieId, table);
    });
}

DKSML_API DkSmlReturn dkSmlGetDieVmInfo(uint32_t deviceIndex, uint32_t dieId, uint32_t* count, DkSmlVmInfo* rows) {
    if (AnyNull(count)) return DK_SML_ERROR_INVALID_INPUT;
    return CallDieService(deviceIndex, dieId, c_voltage,
                          [&](DkVoltageMonitor& s, IDkDevice* d) { return s.GetDieVmInfo(d, dieId, count, rows); });
}

}  // extern "C"
