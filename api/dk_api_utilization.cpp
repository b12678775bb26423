// Utilisation and memory exports.
#include "api/dk_api_service_call.h"
#include "dksml.h"
#include "features/utilization/dk_utilization.h"

using namespace dksml;

namespace {

constexpr auto c_utilization = &DkServiceManager::GetDkUtilization;

}  // namespace

extern "C" {

DKSML_API DkSmlReturn dkSmlGetMemoryInfo(uint32_t deviceIndex, DkSmlMemoryInfo* info) {
    if (AnyNull(info)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_utilization,
                       [&](DkUtilization& s, IDkDevice* d) { return s.GetMemoryInfo(d, info); });
}

DKSML_API DkSmlReturn dkSmlGetDieMemoryInfo(uint32_t deviceIndex, uint32_t dieId, DkSmlMemoryInfo* info) {
    if (AnyNull(info)) return DK_SML_ERROR_INVALID_INPUT;
    return CallDieService(deviceIndex, dieId, c_utilization,
                          [&](DkUtilization& s, IDkDevice* d) { return s.GetDieMemoryInfo(d, dieId, info); });
}

DKSML_API DkSmlReturn dkSmlGetDeviceIpUsage(uint32_t deviceIndex, DkSmlUsageIp ip, int32_t* usage) {
    if (AnyNull(usage)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_utilization,
                       [&](DkUtilization& s, IDkDevice* d) { return s.GetDeviceUsage(d, ip, usage); });
}

DKSML_API DkSmlReturn dkSmlGetDieIpUsage(uint32_t deviceIndex, uint32_t dieId, DkSmlUsageIp ip, int32_t* usage) {
    if (AnyNull(usage)) return DK_SML_ERROR_INVALID_INPUT;
    return CallDieService(deviceIndex, dieId, c_utilization,
                          [&](DkUtilization& s, IDkDevice* d) { return s.GetDieUsage(d, dieId, ip, usage); });
}

DKSML_API DkSmlReturn dkSmlGetXcoreApUsage(uint32_t deviceIndex, uint32_t* usage, uint32_t* dpcCount,
                                           uint32_t* apCount) {
    if (AnyNull(usage, dpcCount, apCount)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_utilization, [&](DkUtilization& s, IDkDevice* d) {
        return s.GetXcoreApUsageInfo(d, usage, dpcCount, apCount);
    });
}

DKSML_API DkSmlReturn dkSmlGetDieXcoreApUsage(uint32_t deviceIndex, uint32_t dieId, uint32_t* usage,
                                              uint32_t* dpcCount, uint32_t* apCount) {
    if (AnyNull(usage, dpcCount, apCount)) return DK_SML_ERROR_INVALID_INPUT;
    return CallDieService(deviceIndex, dieId, c_utilization, [&](DkUtilization& s, IDkDevice* d) {
        return s.GetDieXcoreApUsageInfo(d, dieId, usage, dpcCount, apCount);
    });
}

DKSML_API DkSmlReturn dkSmlGetApUsageToggle(uint32_t deviceIndex, uint32_t* state) {
    if (AnyNull(state)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_utilization,
                       [&](DkUtilization& s, IDkDevice* d) { return s.GetApUsageToggle(d, state); });
}

DKSML_API DkSmlReturn dkSmlGetDieApUsageToggle(uint32_t deviceIndex, uint32_t dieId, uint32_t* state) {
    if (AnyNull(state)) return DK_SML_ERROR_INVALID_INPUT;
    return CallDieService(deviceIndex, dieId, c_utilization,
                          [&](DkUtilization& s, IDkDevice* d) { return s.GetDieApUsageToggle(d, dieId, state); });
}

DKSML_API DkSmlReturn dkSmlSetApUsageToggle(uint32_t deviceIndex, int32_t state) {
    return CallService(deviceIndex, c_utilization,
                       [&](DkUtilization& s, IDkDevice* d) { return s.SetApUsageToggle(d, state != 0); });
}

DKSML_API DkSmlReturn dkSmlSetDieApUsageToggle(uint32_t deviceIndex, uint32_t dieId, int32_t state) {
    return CallDieService(deviceIndex, dieId, c_utilization,
                          [&](DkUtilization& s, IDkDevice* d) { return s.SetDieApUsageToggle(d, dieId, state != 0); });
}

}  // extern "C"
