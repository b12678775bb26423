// Compatibility clock queries and settings, over the clock and DPM services.
// Clock types: SM is the compute cores (xcore), MEM the memory controller
// (mc), VIDEO the video encoder (vpue); the graphics type has no counterpart.
#include <algorithm>
#include <cstddef>

#include "api/dk_api_ex_frame.h"
#include "dksml.h"
#include "features/clock/dk_clock.h"
#include "features/dpm/dk_dpm.h"
#include "features/temperature/dk_telemetry_gate.h"

using namespace dksml;

namespace {

struct DkExClockSource {
    DkSmlExClockType type;
    DkSmlClockFreq DkSmlClocksFreqForAll::*member;
    DkSmlDpmIp dpmIp;
};

constexpr DkExClockSource c_exClockSources[] = {
    {DK_SML_EX_CLOCK_SM, &DkSmlClocksFreqForAll::xcore, DK_SML_DPM_IP_XCORE},
    {DK_SML_EX_CLOCK_MEM, &DkSmlClocksFreqForAll::mc, DK_SML_DPM_IP_MC},
    {DK_SML_EX_CLOCK_VIDEO, &DkSmlClocksFreqForAll::vpue, DK_SML_DPM_IP_VPUE},
};

const DkExClockSource* FindClockSource(DkSmlExClockType type) {
    for (const DkExClockSource& source : c_exClockSources)
        if (source.type == type) return &source;
    return nullptr;
}

// The die's clocks are read before the type is looked at, so a failing read
// answers DK_SML_EX_ERROR_UNKNOWN even for a type that would not be served.
DkSmlExReturn CurrentClock(const DkDieInfo& die, IDkDevice* device, DkSmlExClockType type, uint32_t* clockMHz) {
    if (!PassesTelemetryGate(*device)) return DK_SML_EX_ERROR_NOT_SUPPORTED;
    return WithExService(&DkServiceManager::GetDkClock, [&](DkClock& clock) {
        DkSmlClocksFreqForAll all{};
        const DkSmlReturn result = clock.GetDieClocksFreq(device, die.dieIndex, &all);
        if (result != DK_SML_SUCCESS) return ExFromNative(result);
        const DkExClockSource* source = FindClockSource(type);
        if (source == nullptr) return DK_SML_EX_ERROR_NOT_SUPPORTED;
        *clockMHz = (all.*(source->member)).freq[0];
        return DK_SML_EX_SUCCESS;
    });
}

// Every DPM level of a domain on the handle's die.
DkSmlReturn DpmLevels(const DkDieInfo& die, IDkDevice* device, DkSmlDpmIp ip, DkSmlDpmPerfLevel& levels) {
    std::shared_ptr<DkDpm> dpm = DkServiceManager::GetInstance().GetDkDpm();
    if (!dpm) return DK_SML_ERROR_FAILURE;
    levels = DkSmlDpmPerfLevel{};
    const DkSmlReturn result = dpm->GetDieDpmIpClockInfo(device, die.dieIndex, ip, &levels);
    if (result == DK_SML_SUCCESS && levels.count > DK_SML_DPM_MAX_LEVELS) return DK_SML_ERROR_FAILURE;
    return result;
}

// Position of a clock among the levels; levels.count when absent.
uint32_t FindLevel(const DkSmlDpmPerfLevel& levels, uint32_t clockMHz) {
    const uint32_t* end = levels.values + levels.count;
    return static_cast<uint32_t>(std::find(levels.values, end, clockMHz) - levels.values);
}

// The clock of the highest level the domain is allowed to reach.
DkSmlExReturn ApplicationsClock(const DkDieInfo& die, IDkDevice* device, DkSmlExClockType type, uint32_t* clockMHz) {
    const DkExClockSource* source = FindClockSource(type);
    if (source == nullptr) return DK_SML_EX_ERROR_NOT_SUPPORTED;
    return WithExService(&DkServiceManager::GetDkDpm, [&](DkDpm& dpm) {
        uint32_t maxLevel = 0;
        DkSmlReturn result = dpm.GetDieDpmIpMaxPerfLevel(device, die.dieIndex, source->dpmIp, &maxLevel);
        if (result != DK_SML_SUCCESS) return ExFromNative(result);
        DkSmlDpmPerfLevel levels;
        result = DpmLevels(die, device, source->dpmIp, levels);
        if (result != DK_SML_SUCCESS) return ExFromNative(result);
        if (maxLevel >= levels.count) return DK_SML_EX_ERROR_UNKNOWN;
        *clockMHz = levels.values[maxLevel];
        return DK_SML_EX_SUCCESS;
    });
}

// Copies the levels by the count rule: the count always becomes the number
// of levels, DK_SML_EX_ERROR_INSUFFICIENT_SIZE when the caller's capacity
// was smaller.
DkSmlExReturn CopyLevels(const DkSmlDpmPerfLevel& levels, uint32_t* count, uint32_t* clocksMHz) {
    const uint32_t capacity = *count;
    *count = levels.count;
    if (capacity < levels.count) return DK_SML_EX_ERROR_INSUFFICIENT_SIZE;
    std::copy(levels.values, levels.values + levels.count, clocksMHz);
    return DK_SML_EX_SUCCESS;
}

// A non-zero memory clock must be one of the memory levels
// (DK_SML_EX_ERROR_NOT_FOUND otherwise).
DkSmlExReturn CheckMemoryClock(const DkDieInfo& die, IDkDevice* device, uint32_t memoryClockMHz) {
    if (memoryClockMHz == 0) return DK_SML_EX_SUCCESS;
    DkSmlDpmPerfLevel memory;
    const DkSmlReturn result = DpmLevels(die, device, DK_SML_DPM_IP_MC, memory);
    if (result != DK_SML_SUCCESS) return ExFromNative(result);
    return FindLevel(memory, memoryClockMHz) < memory.count ? DK_SML_EX_SUCCESS : DK_SML_EX_ERROR_NOT_FOUND;
}

DkSmlExReturn SupportedGraphicsClocks(DkSmlExDevice device, uint32_t memoryClockMHz, uint32_t* count,
                                      uint32_t* clocksMHz) {
    if (count == nullptr || clocksMHz == nullptr) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
    return WithHandle(device, [&](DkDieInfo& die, IDkDevice* d) {
        const DkSmlExReturn check = CheckMemoryClock(die, d, memoryClockMHz);
        if (check != DK_SML_EX_SUCCESS) return check;
        DkSmlDpmPerfLevel levels;
        const DkSmlReturn result = DpmLevels(die, d, DK_SML_DPM_IP_XCORE, levels);
        if (result != DK_SML_SUCCESS) return ExFromNative(result);
        return CopyLevels(levels, count, clocksMHz);
    });
}

// The driver reports every reason as one bit of its own mask.
constexpr uint64_t c_allThrottleReasons = ~0ull;

}  // namespace

extern "C" {

DKSML_API DkSmlExReturn dkSmlExDeviceGetClockInfo(DkSmlExDevice device, DkSmlExClockType type, uint32_t* clockMHz) {
    if (clockMHz == nullptr) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
    return WithHandle(device, [&](DkDieInfo& die, IDkDevice* d) { return CurrentClock(die, d, type, clockMHz); });
}

DKSML_API DkSmlExReturn dkSmlExDeviceGetClock(DkSmlExDevice device, DkSmlExClockType type, DkSmlExClockId clockId,
                                              uint32_t* clockMHz) {
    if (clockMHz == nullptr) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
    return WithHandle(device, [&](DkDieInfo& die, IDkDevice* d) {
        switch (clockId) {
            case DK_SML_EX_CLOCK_ID_CURRENT:
                return CurrentClock(die, d, type, clockMHz);
            case DK_SML_EX_CLOCK_ID_APP_CLOCK_TARGET:
            case DK_SML_EX_CLOCK_ID_APP_CLOCK_DEFAULT:
                return ApplicationsClock(die, d, type, clockMHz);
            default:
                return DK_SML_EX_ERROR_NOT_SUPPORTED;
        }
    });
}

DKSML_API DkSmlExReturn dkSmlExDeviceGetApplicationsClock(DkSmlExDevice device, DkSmlExClockType type,
                                                          uint32_t* clockMHz) {
    if (clockMHz == nullptr) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
    return WithHandle(device, [&](DkDieInfo& die, IDkDevice* d) { return ApplicationsClock(die, d, type, clockMHz); });
}

DKSML_API DkSmlExReturn dkSmlExDeviceGetSupportedMemoryClocks(DkSmlExDevice device, uint32_t* count,
                                                              uint32_t* clocksMHz) {
    if (count == nullptr || clocksMHz == nullptr) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
    return WithHandle(device, [&](DkDieInfo& die, IDkDevice* d) {
        DkSmlDpmPerfLevel levels;
        const DkSmlReturn result = DpmLevels(die, d, DK_SML_DPM_IP_MC, levels);
        if (result != DK_SML_SUCCESS) return ExFromNative(result);
        return CopyLevels(levels, count, clocksMHz);
    });
}

DKSML_API DkSmlExReturn dkSmlExDeviceGetSupportedGraphicsClocks(DkSmlExDevice device, uint32_t memoryClockMHz,
                                                                uint32_t* count, uint32_t* clocksMHz) {
    return SupportedGraphicsClocks(device, memoryClockMHz, count, clocksMHz);
}

DKSML_API DkSmlExReturn dkSmlExDeviceGetSupportedGraphicsClocks_v2(DkSmlExDevice device, uint32_t memoryClockMHz,
                                                                   uint32_t* count, uint32_t* clocksMHz) {
    return SupportedGraphicsClocks(device, memoryClockMHz, count, clocksMHz);
}

// The compute clock becomes the maximum level the domain may reach.
DKSML_API DkSmlExReturn dkSmlExDeviceSetApplicationsClocks(DkSmlExDevice device, uint32_t memoryClockMHz,
                                                           uint32_t graphicsClockMHz) {
    return WithHandle(device, [&](DkDieInfo& die, IDkDevice* d) {
        const DkSmlExReturn check = CheckMemoryClock(die, d, memoryClockMHz);
        if (check != DK_SML_EX_SUCCESS) return check;
        DkSmlDpmPerfLevel levels;
        const DkSmlReturn result = DpmLevels(die, d, DK_SML_DPM_IP_XCORE, levels);
        if (result != DK_SML_SUCCESS) return ExFromNative(result);
        const uint32_t level = FindLevel(levels, graphicsClockMHz);
        if (level >= levels.count) return DK_SML_EX_ERROR_NOT_FOUND;
        return WithExService(&DkServiceManager::GetDkDpm, [&](DkDpm& dpm) {
            return ExFromNative(dpm.SetDieDpmMaxPerfLevel(d, die.dieIndex, DK_SML_DPM_IP_XCORE, level));
        });
    });
}

DKSML_API DkSmlExReturn dkSmlExDeviceResetApplicationsClocks(DkSmlExDevice device) {
    return WithHandle(device, [](DkDieInfo&, IDkDevice*) { return DK_SML_EX_SUCCESS; });
}

// P0 is the top level of the compute domain, counting down from there.
DKSML_API DkSmlExReturn dkSmlExDeviceGetPerformanceState(DkSmlExDevice device, DkSmlExPstates* pState) {
    if (pState == nullptr) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
    return WithHandle(device, [&](DkDieInfo& die, IDkDevice* d) {
        return WithExService(&DkServiceManager::GetDkDpm, [&](DkDpm& dpm) {
            uint32_t current = 0;
            DkSmlReturn result = dpm.GetCurrentDieDpmIpPerfLevel(d, die.dieIndex, DK_SML_DPM_IP_XCORE, &current);
            if (result != DK_SML_SUCCESS) return ExFromNative(result);
            DkSmlDpmPerfLevel levels;
            result = DpmLevels(die, d, DK_SML_DPM_IP_XCORE, levels);
            if (result != DK_SML_SUCCESS) return ExFromNative(result);
            if (current >= levels.count) {
                *pState = DK_SML_EX_PSTATE_UNKNOWN;
                return DK_SML_EX_SUCCESS;
            }
            const uint32_t state = std::min<uint32_t>(levels.count - 1 - current, DK_SML_EX_PSTATE_15);
            *pState = static_cast<DkSmlExPstates>(state);
            return DK_SML_EX_SUCCESS;
        });
    });
}

// The devices have no automatic boost.
DKSML_API DkSmlExReturn dkSmlExDeviceGetAutoBoostedClocksEnabled(DkSmlExDevice device, DkSmlExEnableState* isEnabled,
                                                                 DkSmlExEnableState* defaultIsEnabled) {
    if (isEnabled == nullptr || defaultIsEnabled == nullptr) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
    return WithHandle(device, [&](DkDieInfo&, IDkDevice*) {
        *isEnabled = DK_SML_EX_FEATURE_DISABLED;
        *defaultIsEnabled = DK_SML_EX_FEATURE_DISABLED;
        return DK_SML_EX_SUCCESS;
    });
}

DKSML_API DkSmlExReturn dkSmlExDeviceSetAutoBoostedClocksEnabled(DkSmlExDevice device, DkSmlExEnableState) {
    return WithHandle(device, [](DkDieInfo&, IDkDevice*) { return DK_SML_EX_ERROR_NOT_SUPPORTED; });
}

DKSML_API DkSmlExReturn dkSmlExDeviceGetSupportedClocksThrottleReasons(DkSmlExDevice device, uint64_t* reasons) {
    if (reasons == nullptr) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
    return WithHandle(device, [&](DkDieInfo&, IDkDevice* d) {
        if (!PassesTelemetryGate(*d)) return DK_SML_EX_ERROR_NOT_SUPPORTED;
        *reasons = c_allThrottleReasons;
        return DK_SML_EX_SUCCESS;
    });
}

DKSML_API DkSmlExReturn dkSmlExDeviceGetCurrentClocksThrottleReasons(DkSmlExDevice device, uint64_t* reasons) {
    if (reasons == nullptr) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
    return WithHandle(device, [&](DkDieInfo& die, IDkDevice* d) {
        if (!PassesTelemetryGate(*d)) return DK_SML_EX_ERROR_NOT_SUPPORTED;
        return WithExService(&DkServiceManager::GetDkClock, [&](DkClock& clock) {
            uint64_t mask = 0;
            const DkSmlReturn result = clock.GetDieCurrentClocksThrottleReason(d, die.dieIndex, &mask);
            if (result != DK_SML_SUCCESS) return ExFromNative(result);
            *reasons = mask;
            return DK_SML_EX_SUCCESS;
        });
    });
}

}  // extern "C"
