// The query table of the thread stress test: one or more exports of every
// family, each reduced to a fingerprint of its status and output bytes so a
// concurrent answer can be compared with the single-threaded one. A family
// added to the library gets its line here.
#pragma once

#include <cstdint>
#include <cstring>

#include "dksml.h"

namespace dksml::test {

// FNV-1a over the status and the output object (zeroed first, so padding
// compares equal).
template <typename Out, typename Call>
uint64_t Fingerprint(Call&& call) {
    Out out;
    std::memset(static_cast<void*>(&out), 0, sizeof(out));
    const int status = static_cast<int>(call(&out));
    uint64_t hash = 1469598103934665603ull;
    auto mix = [&hash](const void* data, size_t size) {
        const auto* bytes = static_cast<const unsigned char*>(data);
        for (size_t i = 0; i < size; ++i) hash = (hash ^ bytes[i]) * 1099511628211ull;
    };
    mix(&status, sizeof(status));
    mix(&out, sizeof(out));
    return hash;
}

struct DkText {
    char text[256];
    uint32_t size;
};

struct DkCounted {
    uint32_t count;
    uint32_t items[64];
};

struct DkTopoPorts {
    uint32_t count;
    DkSmlDravikLinkTopo ports[16];
};

// `run(deviceIndex, handle)`: native queries use the index, compatibility
// queries the handle of the same device's die 0.
struct DkStressQuery {
    const char* name;
    bool compat;
    uint64_t (*run)(uint32_t deviceIndex, DkSmlExDevice handle);
};

#define DK_NATIVE(name, Out, expr) \
    {name, false, [](uint32_t d, DkSmlExDevice) { (void)d; return Fingerprint<Out>([&](Out* out) { return expr; }); }}
#define DK_COMPAT(name, Out, expr) \
    {name, true, [](uint32_t, DkSmlExDevice h) { return Fingerprint<Out>([&](Out* out) { return expr; }); }}
#define DK_TEXT(call) (out->size = sizeof(out->text), call)
#define DK_COUNTED(call) (out->count = 64, call)

inline const DkStressQuery c_stressQueries[] = {
    // Library, inventory and identifiers.
    DK_NATIVE("device count", uint32_t, (*out = dkSmlGetDeviceCount(), DK_SML_SUCCESS)),
    DK_NATIVE("pf device count", uint32_t, (*out = dkSmlGetPfDeviceCount(), DK_SML_SUCCESS)),
    DK_NATIVE("limited devices", DkCounted, DK_COUNTED(dkSmlGetAllLimitedDevices(&out->count, out->items))),
    DK_NATIVE("device info", DkSmlDeviceInfo, dkSmlGetDeviceInfo(d, out)),
    DK_NATIVE("device state", int32_t, dkSmlGetDeviceState(d, out)),
    DK_NATIVE("die count", uint32_t, dkSmlGetDeviceDieCount(d, out)),
    DK_NATIVE("isa version", DkSmlIsaVersion, dkSmlGetDeviceIsaVersion(d, out)),
    DK_NATIVE("real path", DkText, DK_TEXT(dkSmlGetDeviceRealPath(d, out->text, &out->size))),
    DK_NATIVE("board id", uint32_t, dkSmlGetDeviceBoardId(d, out)),
    DK_NATIVE("uuid pair", DkSmlUuidPair, dkSmlGetLocalAndRemoteUuid(d, out)),
    // Thermal, clocks, power, performance levels.
    DK_NATIVE("temperature", int32_t, dkSmlGetTemperatureInfo(d, DK_SML_TEMPERATURE_HOTSPOT, out)),
    DK_NATIVE("die temperature", int32_t, dkSmlGetDieTemperatureInfo(d, 0, DK_SML_TEMPERATURE_SOC, out)),
    DK_NATIVE("clocks", DkSmlClocksFreqForAll, dkSmlGetClocks(d, 0, out)),
    DK_NATIVE("throttle reason", uint64_t, dkSmlGetCurrentClocksThrottleReason(d, 0, out)),
    DK_NATIVE("fan", DkCounted, dkSmlGetFanSpeedInfo(d, &out->items[0], &out->items[1])),
    DK_NATIVE("board power limit", uint32_t, dkSmlGetBoardPowerLimit(d, out)),
    DK_NATIVE("pci power state", DkSmlPciPowerState, dkSmlGetPciPowerState(d, out)),
    DK_NATIVE("dpm clock levels", DkSmlDpmPerfLevel, dkSmlGetDpmIpClockInfo(d, DK_SML_DPM_IP_XCORE, out)),
    DK_NATIVE("dpm current level", uint32_t, dkSmlGetCurrentDpmIpPerfLevel(d, DK_SML_DPM_IP_XCORE, out)),
    // Memory, utilisation, versions.
    DK_NATIVE("memory", DkSmlMemoryInfo, dkSmlGetMemoryInfo(d, out)),
    DK_NATIVE("die memory", DkSmlMemoryInfo, dkSmlGetDieMemoryInfo(d, 0, out)),
    DK_NATIVE("ip usage", int32_t, dkSmlGetDeviceIpUsage(d, DK_SML_USAGE_IP_DLA, out)),
    DK_NATIVE("die version", DkSmlVersion, dkSmlGetDeviceDieVersion(d, 0, out)),
    DK_NATIVE("pptable version", DkText, DK_TEXT(dkSmlGetPptableVersion(d, out->text, &out->size))),
    DK_NATIVE("board serial", DkText, DK_TEXT(dkSmlGetBoardSerial(d, out->text, &out->size))),
    // Reliability.
    DK_NATIVE("ras errors", DkSmlRasErrorData, dkSmlGetRasErrorData(d, out)),
    DK_NATIVE("ecc state", uint32_t, dkSmlGetEccState(d, out)),
    DK_NATIVE("ecc errors", DkSmlEccErrorCount, dkSmlGetTotalEccErrors(d, out)),
    // PCIe, links, topology.
    DK_NATIVE("pcie", DkSmlPcieInfo, dkSmlGetPcieInfo(d, out)),
    DK_NATIVE("pcie max", DkSmlPcieInfo, dkSmlGetPcieMaxLinkInfo(d, out)),
    DK_NATIVE("slot", uint32_t, dkSmlGetDeviceSlot(d, out)),
    DK_NATIVE("link info", DkSmlDravikLinkInfo, dkSmlGetDravikLinkInfo(d, out)),
    DK_NATIVE("link topo", DkTopoPorts, (out->count = 16, dkSmlGetDravikLinkTopo(d, &out->count, out->ports))),
    DK_NATIVE("topology", DkSmlGpuTopologyLevel, dkSmlGetDeviceTopology(d, 0, out)),
    DK_NATIVE("cpu affinity", DkCounted, dkSmlGetCpuAffinity(d, 64, out->items)),
    // Processes, slices, virtualisation, media.
    DK_NATIVE("process count", uint32_t, dkSmlGetNumberOfProcess(out)),
    DK_NATIVE("slice toggle", uint32_t, dkSmlGetSgpuToggle(d, out)),
    DK_NATIVE("sriov", uint32_t, dkSmlGetSriovState(d, out)),
    DK_NATIVE("vpu", DkCounted, DK_COUNTED(dkSmlGetVpuStatus(d, &out->count, out->items))),
    // Compatibility family.
    DK_COMPAT("ex name", DkText, dkSmlExDeviceGetName(h, out->text, sizeof(out->text))),
    DK_COMPAT("ex uuid", DkText, dkSmlExDeviceGetUUID(h, out->text, sizeof(out->text))),
    DK_COMPAT("ex pci", DkSmlExPciInfo, dkSmlExDeviceGetPciInfo(h, out)),
    DK_COMPAT("ex minor", uint32_t, dkSmlExDeviceGetMinorNumber(h, out)),
    DK_COMPAT("ex clock", uint32_t, dkSmlExDeviceGetClockInfo(h, DK_SML_EX_CLOCK_GRAPHICS, out)),
    DK_COMPAT("ex pstate", DkSmlExPstates, dkSmlExDeviceGetPerformanceState(h, out)),
    DK_COMPAT("ex temperature", uint32_t, dkSmlExDeviceGetTemperature(h, DK_SML_EX_TEMPERATURE_GPU, out)),
    DK_COMPAT("ex power", uint32_t, dkSmlExGetPowerUsage(h, out)),
    DK_COMPAT("ex memory", DkSmlExMemory, dkSmlExDeviceGetMemoryInfo(h, out)),
    DK_COMPAT("ex utilization", DkSmlExUtilization, dkSmlExDeviceGetUtilization(h, out)),
    DK_COMPAT("ex pcie width", uint32_t, dkSmlExDeviceGetCurrPcieLinkWidth(h, out)),
    DK_COMPAT("ex common ancestor", DkSmlExGpuTopologyLevel, dkSmlExDeviceGetTopologyCommonAncestor(h, h, out)),
};

#undef DK_NATIVE
#undef DK_COMPAT
#undef DK_TEXT
#undef DK_COUNTED

}  // namespace dksml::test
