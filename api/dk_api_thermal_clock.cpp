// Native exports of the clock, throttle, temperature and fan readings.
#include <utility>

#include "api/dk_api_frame.h"
#include "dksml.h"
#include "features/clock/dk_clock.h"
#include "features/fan/dk_fan.h"
#include "features/temperature/dk_temperature.h"

using namespace dksml;

namespace {

// Where a die id is taken, DK_SML_DIE_ALL selects the device form; any other
// id must name one of the device's dies (7).
template <typename Body>
DkSmlReturn WithDeviceOrDie(uint32_t deviceIndex, uint32_t dieId, Body&& body) {
    if (dieId == DK_SML_DIE_ALL) return WithDevice(deviceIndex, std::forward<Body>(body));
    return WithDeviceDie(deviceIndex, dieId, std::forward<Body>(body));
}

}  // namespace

extern "C" {

DKSML_API DkSmlReturn dkSmlGetClocks(uint32_t deviceIndex, uint32_t dieId, DkSmlClocksFreqForAll* clocks) {
    if (AnyNull(clocks)) return DK_SML_ERROR_INVALID_INPUT;
    return WithDeviceOrDie(deviceIndex, dieId, [&](IDkDevice* device) {
        return WithService(DkServiceManager::GetInstance().GetDkClock(), device, [&](DkClock& clock, IDkDevice* d) {
            return dieId == DK_SML_DIE_ALL ? clock.GetClocksFreq(d, clocks) : clock.GetDieClocksFreq(d, dieId, clocks);
        });
    });
}

DKSML_API DkSmlReturn dkSmlGetCurrentClocksThrottleReason(uint32_t deviceIndex, uint32_t dieId, uint64_t* reasons) {
    if (AnyNull(reasons)) return DK_SML_ERROR_INVALID_INPUT;
    return WithDeviceOrDie(deviceIndex, dieId, [&](IDkDevice* device) {
        return WithService(DkServiceManager::GetInstance().GetDkClock(), device, [&](DkClock& clock, IDkDevice* d) {
            return dieId == DK_SML_DIE_ALL ? clock.GetCurrentClocksThrottleReason(d, reasons)
                                           : clock.GetDieCurrentClocksThrottleReason(d, dieId, reasons);
        });
    });
}

DKSML_API DkSmlReturn dkSmlGetTemperatureInfo(uint32_t deviceIndex, DkSmlTemperatureSensors sensor, int32_t* value) {
    if (AnyNull(value)) return DK_SML_ERROR_INVALID_INPUT;
    return WithDevice(deviceIndex, [&](IDkDevice* device) {
        return WithService(DkServiceManager::GetInstance().GetDkTemperature(), device,
                           [&](DkTemperature& service, IDkDevice* d) { return service.GetTemperature(d, sensor, value); });
    });
}

DKSML_API DkSmlReturn dkSmlGetDieTemperatureInfo(uint32_t deviceIndex, uint32_t dieId, DkSmlTemperatureSensors sensor,
                                                 int32_t* value) {
    if (AnyNull(value)) return DK_SML_ERROR_INVALID_INPUT;
    return WithDeviceDie(deviceIndex, dieId, [&](IDkDevice* device) {
        return WithService(DkServiceManager::GetInstance().GetDkTemperature(), device,
                           [&](DkTemperature& service, IDkDevice* d) {
                               return service.GetDieTemperature(d, dieId, sensor, value);
                           });
    });
}

DKSML_API DkSmlReturn dkSmlGetFanSpeedInfo(uint32_t deviceIndex, uint32_t* rpm, uint32_t* pwm) {
    if (AnyNull(rpm, pwm)) return DK_SML_ERROR_INVALID_INPUT;
    return WithDevice(deviceIndex, [&](IDkDevice* device) {
        return WithService(DkServiceManager::GetInstance().GetDkFan(), device,
                           [&](DkFan& service, IDkDevice* d) { return service.GetFanSpeedInfo(d, rpm, pwm); });
    });
}

}  // extern "C"
