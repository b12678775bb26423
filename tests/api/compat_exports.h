// Every per-handle compatibility export as a table entry, callable with any
// handle and with null or valid outputs.
#pragma once

#include <functional>
#include <vector>

#include "dksml.h"

namespace dksml::test {

struct CompatOutputs {
    uint32_t u32 = 4;
    uint32_t u32b = 4;
    int32_t i32 = 0;
    int32_t i32b = 0;
    uint64_t u64 = 0;
    uint32_t array[64] = {};
    char text[128] = {};
    DkSmlExPciInfo pci{};
    DkSmlExUtilization utilization{};
    DkSmlExMemory memory{};
    DkSmlExProcessInfo processes[4] = {};
    DkSmlExFieldValue fields[2] = {};
    DkSmlExPstates pState = DK_SML_EX_PSTATE_UNKNOWN;
    DkSmlExEnableState enabled = DK_SML_EX_FEATURE_ENABLED;
    DkSmlExEnableState defaultEnabled = DK_SML_EX_FEATURE_ENABLED;
    DkSmlExGpuTopologyLevel ancestor = DK_SML_EX_TOPOLOGY_SYSTEM;
    DkSmlExGpuP2PStatus p2p = DK_SML_EX_P2P_STATUS_UNKNOWN;
    DkSmlExDravikLinkDeviceType linkType = DK_SML_EX_DRAVIK_LINK_DEVICE_TYPE_UNKNOWN;
};

template <typename T>
T* CP(bool null, T& value) {
    return null ? nullptr : &value;
}
template <typename T, std::size_t N>
T* CP(bool null, T (&values)[N]) {
    return null ? nullptr : values;
}

struct CompatExport {
    const char* name;
    bool takesPointer;
    std::function<DkSmlExReturn(CompatOutputs&, DkSmlExDevice, bool null)> call;
};

#define DK_COMPAT(name, takesPointer, body)                                                             \
    CompatExport {                                                                                      \
        #name, takesPointer, [](CompatOutputs& o, DkSmlExDevice h, bool n) -> DkSmlExReturn {           \
            (void)o;                                                                                    \
            (void)n;                                                                                    \
            return body;                                                                                \
        }                                                                                               \
    }

inline const std::vector<CompatExport>& CompatExports() {
    static const std::vector<CompatExport> exports = {
        DK_COMPAT(dkSmlExDeviceGetName, true, dkSmlExDeviceGetName(h, CP(n, o.text), sizeof(o.text))),
        DK_COMPAT(dkSmlExDeviceGetUUID, true, dkSmlExDeviceGetUUID(h, CP(n, o.text), sizeof(o.text))),
        DK_COMPAT(dkSmlExDeviceGetPciInfo, true, dkSmlExDeviceGetPciInfo(h, CP(n, o.pci))),
        DK_COMPAT(dkSmlExDeviceGetMinorNumber, true, dkSmlExDeviceGetMinorNumber(h, CP(n, o.u32))),
        DK_COMPAT(dkSmlExDeviceGetComputeCapability, true, dkSmlExDeviceGetComputeCapability(h, CP(n, o.i32), CP(n, o.i32b))),
        DK_COMPAT(dkSmlExDeviceGetTemperature, true, dkSmlExDeviceGetTemperature(h, DK_SML_EX_TEMPERATURE_GPU, CP(n, o.u32))),
        DK_COMPAT(dkSmlExDeviceGetTemperatureThreshold, true, dkSmlExDeviceGetTemperatureThreshold(h, DK_SML_EX_TEMPERATURE_THRESHOLD_SHUTDOWN, CP(n, o.u32))),
        DK_COMPAT(dkSmlExDeviceGetClockInfo, true, dkSmlExDeviceGetClockInfo(h, DK_SML_EX_CLOCK_SM, CP(n, o.u32))),
        DK_COMPAT(dkSmlExDeviceGetClock, true, dkSmlExDeviceGetClock(h, DK_SML_EX_CLOCK_MEM, DK_SML_EX_CLOCK_ID_CURRENT, CP(n, o.u32))),
        DK_COMPAT(dkSmlExDeviceGetApplicationsClock, true, dkSmlExDeviceGetApplicationsClock(h, DK_SML_EX_CLOCK_SM, CP(n, o.u32))),
        DK_COMPAT(dkSmlExDeviceGetSupportedMemoryClocks, true, dkSmlExDeviceGetSupportedMemoryClocks(h, CP(n, o.u32), CP(n, o.array))),
        DK_COMPAT(dkSmlExDeviceGetSupportedGraphicsClocks, true, dkSmlExDeviceGetSupportedGraphicsClocks(h, 0, CP(n, o.u32), CP(n, o.array))),
        DK_COMPAT(dkSmlExDeviceGetSupportedGraphicsClocks_v2, true, dkSmlExDeviceGetSupportedGraphicsClocks_v2(h, 0, CP(n, o.u32), CP(n, o.array))),
        DK_COMPAT(dkSmlExDeviceSetApplicationsClocks, false, dkSmlExDeviceSetApplicationsClocks(h, 0, 1000)),
        DK_COMPAT(dkSmlExDeviceResetApplicationsClocks, false, dkSmlExDeviceResetApplicationsClocks(h)),
        DK_COMPAT(dkSmlExDeviceGetPerformanceState, true, dkSmlExDeviceGetPerformanceState(h, CP(n, o.pState))),
        DK_COMPAT(dkSmlExDeviceGetAutoBoostedClocksEnabled, true, dkSmlExDeviceGetAutoBoostedClocksEnabled(h, CP(n, o.enabled), CP(n, o.defaultEnabled))),
        DK_COMPAT(dkSmlExDeviceSetAutoBoostedClocksEnabled, false, dkSmlExDeviceSetAutoBoostedClocksEnabled(h, DK_SML_EX_FEATURE_ENABLED)),
        DK_COMPAT(dkSmlExDeviceGetSupportedClocksThrottleReasons, true, dkSmlExDeviceGetSupportedClocksThrottleReasons(h, CP(n, o.u64))),
        DK_COMPAT(dkSmlExDeviceGetCurrentClocksThrottleReasons, true, dkSmlExDeviceGetCurrentClocksThrottleReasons(h, CP(n, o.u64))),
        DK_COMPAT(dkSmlExGetPowerUsage, true, dkSmlExGetPowerUsage(h, CP(n, o.u32))),
        DK_COMPAT(dkSmlExGetPowerManagementLimit, true, dkSmlExGetPowerManagementLimit(h, CP(n, o.u32))),
        DK_COMPAT(dkSmlExDeviceGetEnforcedPowerLimit, true, dkSmlExDeviceGetEnforcedPowerLimit(h, CP(n, o.u32))),
        DK_COMPAT(dkSmlExDeviceGetUtilization, true, dkSmlExDeviceGetUtilization(h, CP(n, o.utilization))),
        DK_COMPAT(dkSmlExDeviceGetMemoryInfo, true, dkSmlExDeviceGetMemoryInfo(h, CP(n, o.memory))),
        DK_COMPAT(dkSmlExDeviceGetCurrPcieLinkWidth, true, dkSmlExDeviceGetCurrPcieLinkWidth(h, CP(n, o.u32))),
        DK_COMPAT(dkSmlExGetMaxPcieLinkWidth, true, dkSmlExGetMaxPcieLinkWidth(h, CP(n, o.u32))),
        DK_COMPAT(dkSmlExGetPcieThroughput, true, dkSmlExGetPcieThroughput(h, DK_SML_EX_PCIE_UTIL_TX_BYTES, CP(n, o.u32))),
        DK_COMPAT(dkSmlExDeviceGetCpuAffinity, true, dkSmlExDeviceGetCpuAffinity(h, 4, CP(n, o.array))),
        DK_COMPAT(dkSmlExDeviceSetCpuAffinity, false, dkSmlExDeviceSetCpuAffinity(h)),
        DK_COMPAT(dkSmlExDeviceGetTopologyCommonAncestor, true, dkSmlExDeviceGetTopologyCommonAncestor(h, h, CP(n, o.ancestor))),
        DK_COMPAT(dkSmlExDeviceGetP2PStatus, true, dkSmlExDeviceGetP2PStatus(h, h, DK_SML_EX_P2P_CAPS_INDEX_READ, CP(n, o.p2p))),
        DK_COMPAT(dkSmlExDeviceGetDravikLinkState, true, dkSmlExDeviceGetDravikLinkState(h, 0, CP(n, o.enabled))),
        DK_COMPAT(dkSmlExDeviceGetDravikLinkRemotePciInfo_v2, true, dkSmlExDeviceGetDravikLinkRemotePciInfo_v2(h, 0, CP(n, o.pci))),
        DK_COMPAT(dkSmlExDeviceGetDravikLinkRemoteDeviceType, true, dkSmlExDeviceGetDravikLinkRemoteDeviceType(h, 0, CP(n, o.linkType))),
        DK_COMPAT(dkSmlExDeviceGetFieldValues, true, dkSmlExDeviceGetFieldValues(h, 2, CP(n, o.fields))),
        DK_COMPAT(dkSmlExDeviceGetFanSpeed, true, dkSmlExDeviceGetFanSpeed(h, CP(n, o.u32))),
        DK_COMPAT(dkSmlExDeviceGetFanSpeed_v2, true, dkSmlExDeviceGetFanSpeed_v2(h, 0, CP(n, o.u32))),
        DK_COMPAT(dkSmlExDeviceGetComputeRunningProcesses, true, dkSmlExDeviceGetComputeRunningProcesses(h, CP(n, o.u32), CP(n, o.processes))),
    };
    return exports;
}

#undef DK_COMPAT

}  // namespace dksml::test
