// Native exports of the clock, throttle, temperature and fan readings. Where a
// die id is taken, DK_SML_DIE_ALL selects the device form; any other id must
// name one of the device's dies (DK_SML_ERROR_INVALID_DIE_ID otherwise).
#include "api/dk_api_service_call.h"
#include "dksml.h"
#include "features/clock/dk_clock.h"
#include "features/fan/dk_fan.h"
#include "features/temperature/dk_temperature.h"

using namespace dksml;

namespace {

constexpr auto c_clock = &DkServiceManager::GetDkClock;
constexpr auto c_temperature = &DkServiceManager::GetDkTemperature;
constexpr auto c_fan = &DkServiceManager::GetDkFan;

}  // namespace

extern "C" {

DKSML_API DkSmlReturn dkSmlGetClocks(uint32_t deviceIndex, uint32_t dieId, DkSmlClocksFreqForAll* clocks) {
    if (AnyNull(clocks)) return DK_SML_ERROR_INVALID_INPUT;
    if (dieId == DK_SML_DIE_ALL)
        return CallService(deviceIndex, c_clock, [&](DkClock& s, IDkDevice* d) { return s.GetClocksFreq(d, clocks); });
    return CallDieService(deviceIndex, dieId, c_clock,
                          [&](DkClock& s, IDkDevice* d) { return s.GetDieClocksFreq(d, dieId, clocks); });
}

DKSML_API DkSmlReturn dkSmlGetCurrentClocksThrottleReason(uint32_t deviceIndex, uint32_t dieId, uint64_t* reasons) {
    if (AnyNull(reasons)) return DK_SML_ERROR_INVALID_INPUT;
    if (dieId == DK_SML_DIE_ALL) {
        return CallService(deviceIndex, c_clock,
                           [&](DkClock& s, IDkDevice* d) { return s.GetCurrentClocksThrottleReason(d, reasons); });
    }
    return CallDieService(deviceIndex, dieId, c_clock, [&](DkClock& s, IDkDevice* d) {
        return s.GetDieCurrentClocksThrottleReason(d, dieId, reasons);
    });
}

DKSML_API DkSmlReturn dkSmlGetTemperatureInfo(uint32_t deviceIndex, DkSmlTemperatureSensors sensor, int32_t* value) {
    if (AnyNull(value)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_temperature,
                       [&](DkTemperature& s, IDkDevice* d) { return s.GetTemperature(d, sensor, value); });
}

DKSML_API DkSmlReturn dkSmlGetDieTemperatureInfo(uint32_t deviceIndex, uint32_t dieId, DkSmlTemperatureSensors sensor,
                                                 int32_t* value) {
    if (AnyNull(value)) return DK_SML_ERROR_INVALID_INPUT;
    return CallDieService(deviceIndex, dieId, c_temperature,
                          [&](DkTemperature& s, IDkDevice* d) { return s.GetDieTemperature(d, dieId, sensor, value); });
}

DKSML_API DkSmlReturn dkSmlGetFanSpeedInfo(uint32_t deviceIndex, uint32_t* rpm, uint32_t* pwm) {
    if (AnyNull(rpm, pwm)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_fan, [&](DkFan& s, IDkDevice* d) { return s.GetFanSpeedInfo(d, rpm, pwm); });
}

}  // extern "C"
