// Compatibility temperature and fan queries. Only the training lines carry
// these sensors, and never through a virtual function: others answer
// DK_SML_EX_ERROR_NOT_SUPPORTED.
#include "api/dk_api_ex_frame.h"
#include "dksml.h"
#include "features/fan/dk_fan.h"
#include "features/temperature/dk_telemetry_gate.h"
#include "features/temperature/dk_temperature.h"

using namespace dksml;

namespace {

// The handle's die temperatures; the record holds hundredths of a degree
// on the sensor-carrying brands.
DkSmlExReturn ReadDieTemperature(const DkDieInfo& die, IDkDevice* device, DkSmlTemperature& temperature) {
    if (!PassesTelemetryGate(*device)) return DK_SML_EX_ERROR_NOT_SUPPORTED;
    return WithExService(&DkServiceManager::GetDkTemperature, [&](DkTemperature& service) {
        service.InitTemperature(&temperature);
        return ExFromNative(service.GetDieTemperature(device, die.dieIndex, &temperature));
    });
}

DkSmlExReturn ReadFanDuty(IDkDevice* device, uint32_t* speed) {
    if (!PassesTelemetryGate(*device)) return DK_SML_EX_ERROR_NOT_SUPPORTED;
    return WithExService(&DkServiceManager::GetDkFan, [&](DkFan& fan) {
        uint32_t rpm = 0;
        uint32_t pwm = 0;
        const DkSmlReturn result = fan.GetFanSpeedInfo(device, &rpm, &pwm);
        if (result != DK_SML_SUCCESS) return ExFromNative(result);
        *speed = pwm;
        return DK_SML_EX_SUCCESS;
    });
}

}  // namespace

extern "C" {

DKSML_API DkSmlExReturn dkSmlExDeviceGetTemperature(DkSmlExDevice device, DkSmlExTemperatureSensors sensor,
                                                    uint32_t* temp) {
    if (temp == nullptr) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
    return WithHandle(device, [&](DkDieInfo& die, IDkDevice* d) {
        if (sensor != DK_SML_EX_TEMPERATURE_GPU) return DK_SML_EX_ERROR_NOT_SUPPORTED;
        DkSmlTemperature temperature{};
        const DkSmlExReturn result = ReadDieTemperature(die, d, temperature);
        if (result != DK_SML_EX_SUCCESS) return result;
        *temp = static_cast<uint32_t>(temperature.hotspot / 100);
        return DK_SML_EX_SUCCESS;
    });
}

// Only the shutdown threshold is known: the die's hot limit.
DKSML_API DkSmlExReturn dkSmlExDeviceGetTemperatureThreshold(DkSmlExDevice device,
                                                             DkSmlExTemperatureThresholds threshold, uint32_t* temp) {
    if (temp == nullptr) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
    return WithHandle(device, [&](DkDieInfo& die, IDkDevice* d) {
        if (threshold != DK_SML_EX_TEMPERATURE_THRESHOLD_SHUTDOWN) return DK_SML_EX_ERROR_NOT_SUPPORTED;
        DkSmlTemperature temperature{};
        const DkSmlExReturn result = ReadDieTemperature(die, d, temperature);
        if (result != DK_SML_EX_SUCCESS) return result;
        *temp = static_cast<uint32_t>(temperature.hotLimit / 100);
        return DK_SML_EX_SUCCESS;
    });
}

// The duty value the driver prints is reported unchanged.
DKSML_API DkSmlExReturn dkSmlExDeviceGetFanSpeed(DkSmlExDevice device, uint32_t* speed) {
    if (speed == nullptr) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
    return WithHandle(device, [&](DkDieInfo&, IDkDevice* d) { return ReadFanDuty(d, speed); });
}

// A board has one fan controller: fan 0.
DKSML_API DkSmlExReturn dkSmlExDeviceGetFanSpeed_v2(DkSmlExDevice device, uint32_t fan, uint32_t* speed) {
    if (speed == nullptr) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
    return WithHandle(device, [&](DkDieInfo&, IDkDevice* d) {
        if (fan != 0) return DK_SML_EX_ERROR_NOT_SUPPORTED;
        return ReadFanDuty(d, speed);
    });
}

}  // extern "C"
