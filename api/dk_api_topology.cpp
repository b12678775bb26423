// Topology and affinity exports: lookups in the system manager's topology
// tables by device index; only the output pointer is checked here.
#include "api/dk_api_service_call.h"
#include "dksml.h"

using namespace dksml;

extern "C" {

DKSML_API DkSmlReturn dkSmlGetDeviceTopology(uint32_t deviceIndex1, uint32_t deviceIndex2,
                                             DkSmlGpuTopologyLevel* level) {
    if (AnyNull(level)) return DK_SML_ERROR_INVALID_INPUT;
    return WithTopology([&](DkTopology& t) { return t.GetDeviceTopology(deviceIndex1, deviceIndex2, level); });
}

DKSML_API DkSmlReturn dkSmlGetDeviceDistance(uint32_t deviceIndex1, uint32_t deviceIndex2, uint32_t* distance) {
    if (AnyNull(distance)) return DK_SML_ERROR_INVALID_INPUT;
    return WithTopology([&](DkTopology& t) { return t.GetDeviceDistance(deviceIndex1, deviceIndex2, distance); });
}

DKSML_API DkSmlReturn dkSmlGetCpuAffinity(uint32_t deviceIndex, uint32_t cpuSetSize, uint32_t* cpuSet) {
    if (AnyNull(cpuSet) || cpuSetSize == 0) return DK_SML_ERROR_INVALID_INPUT;
    return WithTopology([&](DkTopology& t) { return t.GetCpuAffinity(deviceIndex, cpuSetSize, cpuSet); });
}

DKSML_API DkSmlReturn dkSmlSetCpuAffinity(uint32_t deviceIndex) {
    return WithTopology([&](DkTopology& t) { return t.SetCpuAffinity(deviceIndex); });
}

DKSML_API DkSmlReturn dkSmlClearCpuAffinity(uint32_t deviceIndex) {
    return WithTopology([&](DkTopology& t) { return t.ClearCpuAffinity(deviceIndex); });
}

DKSML_API DkSmlReturn dkSmlGetNodeAffinity(uint32_t deviceIndex, uint32_t nodeSetSize, uint32_t* nodeSet) {
    if (AnyNull(nodeSet) || nodeSetSize == 0) return DK_SML_ERROR_INVALID_INPUT;
    return WithTopology([&](DkTopology& t) { return t.GetNodeAffinity(deviceIndex, nodeSetSize, nodeSet); });
}

DKSML_API DkSmlReturn dkSmlGetDravikLinkRemoteInfo(uint32_t deviceIndex, uint32_t link,
                                                   DkSmlDravikLinkRemoteInfo* info) {
    if (AnyNull(info)) return DK_SML_ERROR_INVALID_INPUT;
    return WithTopology([&](DkTopology& t) { return t.GetDravikLinkRemoteInfo(deviceIndex, link, info); });
}

}  // extern "C"
