// Power exports: PMBus, board readings and limit, per-IP and PCI power states.
#include "api/dk_api_limited.h"
#include "dksml.h"
#include "features/power/dk_power.h"

using namespace dksml;

namespace {

constexpr auto c_power = &DkServiceManager::GetDkPower;

}  // namespace

extern "C" {

DKSML_API DkSmlReturn dkSmlGetPmbusInfo(uint32_t deviceIndex, DkSmlPmbusUnit unit, DkSmlPmbusInfo* info) {
    if (AnyNull(info)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_power, [&](DkPower& s, IDkDevice* d) { return s.GetPmbusInfo(d, unit, info); });
}

DKSML_API DkSmlReturn dkSmlGetDiePmbusInfo(uint32_t deviceIndex, uint32_t dieId, DkSmlPmbusUnit unit,
                                           DkSmlPmbusInfo* info) {
    if (AnyNull(info)) return DK_SML_ERROR_INVALID_INPUT;
    return CallDieService(deviceIndex, dieId, c_power,
                          [&](DkPower& s, IDkDevice* d) { return s.GetDiePmbusInfo(d, dieId, unit, info); });
}

DKSML_API DkSmlReturn dkSmlGetBoardPowerInfo(uint32_t deviceIndex, uint32_t* count, DkSmlBoardWayElectricInfo* ways) {
    if (AnyNull(count, ways)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_power,
                       [&](DkPower& s, IDkDevice* d) { return s.GetBoardElectricInfo(d, count, ways); });
}

DKSML_API DkSmlReturn dkSmlGetBoardPowerLimit(uint32_t deviceIndex, uint32_t* limit) {
    if (AnyNull(limit)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_power, [&](DkPower& s, IDkDevice* d) { return s.GetBoardPowerLimit(d, limit); });
}

DKSML_API DkSmlReturn dkSmlGetPowerStateInfo(uint32_t deviceIndex, DkSmlDpmIp ip, int32_t* states, uint32_t* count) {
    if (AnyNull(states, count)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_power,
                       [&](DkPower& s, IDkDevice* d) { return s.GetPowerState(d, ip, states, count); });
}

DKSML_API DkSmlReturn dkSmlGetDiePowerStateInfo(uint32_t deviceIndex, uint32_t dieId, DkSmlDpmIp ip,
                                                int32_t* states, uint32_t* count) {
    if (AnyNull(states, count)) return DK_SML_ERROR_INVALID_INPUT;
    return CallDieService(deviceIndex, dieId, c_power,
                          [&](DkPower& s, IDkDevice* d) { return s.GetDiePowerState(d, dieId, ip, states, count); });
}

DKSML_API DkSmlReturn dkSmlGetPciPowerState(uint32_t deviceIndex, DkSmlPciPowerState* state) {
    if (AnyNull(state)) return DK_SML_ERROR_INVALID_INPUT;
    return WithDeviceOrLimitedMock(deviceIndex, [&](IDkDevice* device) {
        return WithService(DkServiceManager::GetInstance().GetDkPower(), device,
                           [&](DkPower& s, IDkDevice* d) { return s.GetPciPowerState(d, state); });
    });
}

}  // extern "C"
