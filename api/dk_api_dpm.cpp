// DPM exports: performance levels of the clock domains.
#include "api/dk_api_service_call.h"
#include "dksml.h"
#include "features/dpm/dk_dpm.h"

using namespace dksml;

namespace {

constexpr auto c_dpm = &DkServiceManager::GetDkDpm;

}  // namespace

extern "C" {

DKSML_API DkSmlReturn dkSmlGetDpmIpClockInfo(uint32_t deviceIndex, DkSmlDpmIp ip, DkSmlDpmPerfLevel* levels) {
    if (AnyNull(levels)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_dpm, [&](DkDpm& s, IDkDevice* d) { return s.GetDpmIpClockInfo(d, ip, levels); });
}

DKSML_API DkSmlReturn dkSmlGetDpmIpVddInfo(uint32_t deviceIndex, DkSmlDpmIp ip, DkSmlDpmPerfLevel* levels) {
    if (AnyNull(levels)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_dpm, [&](DkDpm& s, IDkDevice* d) { return s.GetDpmIpVddInfo(d, ip, levels); });
}

DKSML_API DkSmlReturn dkSmlGetCurrentDpmIpPerfLevel(uint32_t deviceIndex, DkSmlDpmIp ip, uint32_t* level) {
    if (AnyNull(level)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_dpm,
                       [&](DkDpm& s, IDkDevice* d) { return s.GetCurrentDpmIpPerfLevel(d, ip, level); });
}

DKSML_API DkSmlReturn dkSmlGetCurrentDieDpmIpPerfLevel(uint32_t deviceIndex, uint32_t dieId, DkSmlDpmIp ip,
                                                       uint32_t* level) {
    if (AnyNull(level)) return DK_SML_ERROR_INVALID_INPUT;
    return CallDieService(deviceIndex, dieId, c_dpm,
                          [&](DkDpm& s, IDkDevice* d) { return s.GetCurrentDieDpmIpPerfLevel(d, dieId, ip, level); });
}

DKSML_API DkSmlReturn dkSmlGetDpmMaxPerfLevel(uint32_t deviceIndex, DkSmlDpmForAll* levels) {
    if (AnyNull(levels)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_dpm, [&](DkDpm& s, IDkDevice* d) { return s.GetDpmMaxPerfLevel(d, levels); });
}

DKSML_API DkSmlReturn dkSmlGetDpmIpMaxPerfLevel(uint32_t deviceIndex, DkSmlDpmIp ip, uint32_t* level) {
    if (AnyNull(level)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_dpm, [&](DkDpm& s, IDkDevice* d) { return s.GetDpmIpMaxPerfLevel(d, ip, level); });
}

DKSML_API DkSmlReturn dkSmlGetDieDpmIpMaxPerfLevel(uint32_t deviceIndex, uint32_t dieId, DkSmlDpmIp ip,
                                                   uint32_t* level) {
    if (AnyNull(level)) return DK_SML_ERROR_INVALID_INPUT;
    return CallDieService(deviceIndex, dieId, c_dpm,
                          [&](DkDpm& s, IDkDevice* d) { return s.GetDieDpmIpMaxPerfLevel(d, dieId, ip, level); });
}

DKSML_API DkSmlReturn dkSmlSetDpmIpMaxPerfLevel(uint32_t deviceIndex, DkSmlDpmIp ip, uint32_t level) {
    return CallService(deviceIndex, c_dpm, [&](DkDpm& s, IDkDevice* d) { return s.SetDpmMaxPerfLevel(d, ip, level); });
}

}  // extern "C"
