// Compatibility PCIe, affinity, topology and interconnect queries.
#include <chrono>

#include "api/dk_api_ex_frame.h"
#include "dksml.h"
#include "features/links/dk_links.h"
#include "features/pcie/dk_pcie.h"
#include "features/topology/dk_topology.h"

using namespace dksml;

namespace {

// Native topology level to the compatibility ancestor level. Level 0 needs
// the same die record and is handled by the caller; level 5 and anything
// above 6 have no counterpart.
struct DkExAncestor {
    DkSmlGpuTopologyLevel level;
    DkSmlExGpuTopologyLevel ancestor;
};

constexpr DkExAncestor c_exAncestors[] = {
    {DK_SML_TOPOLOGY_SINGLE_SWITCH, DK_SML_EX_TOPOLOGY_SINGLE},
    {DK_SML_TOPOLOGY_MULTIPLE_SWITCHES, DK_SML_EX_TOPOLOGY_MULTIPLE},
    {DK_SML_TOPOLOGY_HOST_BRIDGE, DK_SML_EX_TOPOLOGY_HOSTBRIDGE},
    {DK_SML_TOPOLOGY_NUMA_NODE, DK_SML_EX_TOPOLOGY_NODE},
    {DK_SML_TOPOLOGY_SYSTEM, DK_SML_EX_TOPOLOGY_SYSTEM},
};

// Port count of a die's interconnect: die 1 carries an extra PM port.
uint32_t PortCountOf(uint32_t dieIndex) { return dieIndex == 0 ? 7 : 8; }

template <typename Body>
DkSmlExReturn WithExTopology(Body&& body) {
    std::shared_ptr<DkTopology> topology = DkSystemManager::GetInstance().GetTopology();
    if (!topology) return DK_SML_EX_ERROR_UNKNOWN;
    return body(*topology);
}

DkSmlExReturn PcieInfo(IDkDevice* device, bool maximum, uint32_t* width) {
    return WithExService(&DkServiceManager::GetDkPcie, [&](DkPcie& pcie) {
        DkSmlPcieInfo info{};
        const DkSmlReturn result = maximum ? pcie.GetPcieMaxLinkInfo(device, &info) : pcie.GetPcieInfo(device, &info);
        if (result != DK_SML_SUCCESS) return ExFromNative(result);
        *width = info.width;
        return DK_SML_EX_SUCCESS;
    });
}

DkSmlExReturn RemoteInfo(IDkDevice* device, uint32_t link, DkSmlDravikLinkRemoteInfo& info) {
    return WithExTopology([&](DkTopology& topology) {
        info = DkSmlDravikLinkRemoteInfo{};
        return ExFromNative(topology.GetDravikLinkRemoteInfo(device->GetDeviceId(), link, &info));
    });
}

int64_t NowMicroseconds() {
    using namespace std::chrono;
    return duration_cast<microseconds>(system_clock::now().time_since_epoch()).count();
}

void AnswerField(IDkDevice* device, DkSmlExFieldValue& field) {
    field.timestamp = NowMicroseconds();
    field.latencyUsec = 0;
    if (field.fieldId != DK_SML_EX_FI_DEV_DRAVIK_LINK_LINK_COUNT) {
        field.dkSmlReturn = DK_SML_EX_ERROR_NOT_SUPPORTED;
        return;
    }
    field.dkSmlReturn = WithExTopology([&](DkTopology& topology) {
        field.valueType = DK_SML_EX_VALUE_TYPE_UNSIGNED_INT;
        field.value.uiVal = topology.GetDeviceDravikLinkNumber(device->GetDeviceId());
        return DK_SML_EX_SUCCESS;
    });
}

}  // namespace

extern "C" {

DKSML_API DkSmlExReturn dkSmlExDeviceGetCurrPcieLinkWidth(DkSmlExDevice device, uint32_t* width) {
    if (width == nullptr) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
    return WithHandle(device, [&](DkDieInfo&, IDkDevice* d) { return PcieInfo(d, false, width); });
}

DKSML_API DkSmlExReturn dkSmlExGetMaxPcieLinkWidth(DkSmlExDevice device, uint32_t* width) {
    if (width == nullptr) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
    return WithHandle(device, [&](DkDieInfo&, IDkDevice* d) { return PcieInfo(d, true, width); });
}

DKSML_API DkSmlExReturn dkSmlExGetPcieThroughput(DkSmlExDevice device, DkSmlExPcieUtilCounter counter,
                                                 uint32_t* value) {
    if (value == nullptr) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
    return WithHandle(device, [&](DkDieInfo&, IDkDevice* d) {
        if (counter != DK_SML_EX_PCIE_UTIL_TX_BYTES && counter != DK_SML_EX_PCIE_UTIL_RX_BYTES)
            return DK_SML_EX_ERROR_NOT_SUPPORTED;
        return WithExService(&DkServiceManager::GetDkPcie, [&](DkPcie& pcie) {
            DkSmlPcieThroughput throughput{};
            const DkSmlReturn result = pcie.GetPcieThroughput(d, &throughput);
            if (result != DK_SML_SUCCESS) return ExFromNative(result);
            *value = counter == DK_SML_EX_PCIE_UTIL_TX_BYTES ? throughput.tx : throughput.rx;
            return DK_SML_EX_SUCCESS;
        });
    });
}

DKSML_API DkSmlExReturn dkSmlExDeviceGetCpuAffinity(DkSmlExDevice device, uint32_t cpuSetSize, uint32_t* cpuSet) {
    if (cpuSet == nullptr || cpuSetSize == 0) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
    return WithHandle(device, [&](DkDieInfo&, IDkDevice* d) {
        if (d->IsPf()) return DK_SML_EX_ERROR_NOT_SUPPORTED;
        const DkSmlReturn result = dkSmlGetCpuAffinity(d->GetDeviceId(), cpuSetSize, cpuSet);
        return result == DK_SML_SUCCESS ? DK_SML_EX_SUCCESS : DK_SML_EX_ERROR_UNKNOWN;
    });
}

DKSML_API DkSmlExReturn dkSmlExDeviceSetCpuAffinity(DkSmlExDevice device) {
    return WithHandle(device, [&](DkDieInfo&, IDkDevice* d) {
        const DkSmlReturn result = dkSmlSetCpuAffinity(d->GetDeviceId());
        if (result == DK_SML_ERROR_DEVICE_NOT_AVAILABLE) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
        return result == DK_SML_SUCCESS ? DK_SML_EX_SUCCESS : DK_SML_EX_ERROR_UNKNOWN;
    });
}

DKSML_API DkSmlExReturn dkSmlExDeviceGetTopologyCommonAncestor(DkSmlExDevice device1, DkSmlExDevice device2,
                                                               DkSmlExGpuTopologyLevel* pathInfo) {
    if (pathInfo == nullptr) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
    return WithHandle(device1, [&](DkDieInfo& die1, IDkDevice* d1) {
        return WithHandle(device2, [&](DkDieInfo& die2, IDkDevice* d2) {
            DkSmlGpuTopologyLevel level = DK_SML_TOPOLOGY_UNKNOWN;
            const DkSmlReturn result = dkSmlGetDeviceTopology(d1->GetDeviceId(), d2->GetDeviceId(), &level);
            if (result != DK_SML_SUCCESS) return DK_SML_EX_ERROR_UNKNOWN;
            if (level == DK_SML_TOPOLOGY_SAME_DEVICE) {
                if (&die1 != &die2) return DK_SML_EX_ERROR_NOT_SUPPORTED;
                *pathInfo = DK_SML_EX_TOPOLOGY_INTERNAL;
                return DK_SML_EX_SUCCESS;
            }
            for (const DkExAncestor& entry : c_exAncestors) {
                if (entry.level != level) continue;
                *pathInfo = entry.ancestor;
                return DK_SML_EX_SUCCESS;
            }
            return DK_SML_EX_ERROR_NOT_SUPPORTED;
        });
    });
}

// Every capability is reported as available between two valid dies.
DKSML_API DkSmlExReturn dkSmlExDeviceGetP2PStatus(DkSmlExDevice device1, DkSmlExDevice device2,
                                                  DkSmlExGpuP2PCapsIndex p2pIndex, DkSmlExGpuP2PStatus* p2pStatus) {
    if (p2pStatus == nullptr || p2pIndex == DK_SML_EX_P2P_CAPS_INDEX_UNKNOWN) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
    return WithHandle(device1, [&](DkDieInfo&, IDkDevice*) {
        return WithHandle(device2, [&](DkDieInfo&, IDkDevice*) {
            *p2pStatus = DK_SML_EX_P2P_STATUS_OK;
            return DK_SML_EX_SUCCESS;
        });
    });
}

// A link is active when the die's interconnect is switched on.
DKSML_API DkSmlExReturn dkSmlExDeviceGetDravikLinkState(DkSmlExDevice device, uint32_t link,
                                                        DkSmlExEnableState* isActive) {
    if (isActive == nullptr) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
    return WithHandle(device, [&](DkDieInfo& die, IDkDevice* d) {
        if (link >= PortCountOf(die.dieIndex)) return DK_SML_EX_ERROR_NOT_SUPPORTED;
        return WithExService(&DkServiceManager::GetDkDravLink, [&](DkDravLink& links) {
            uint32_t state = 0;
            char text[64] = {};
            uint32_t size = sizeof(text);
            const DkSmlReturn result = links.GetDieDravikLinkState(d, die.dieIndex, &state, text, &size);
            if (result != DK_SML_SUCCESS) return ExFromNative(result);
            *isActive = state != 0 ? DK_SML_EX_FEATURE_ENABLED : DK_SML_EX_FEATURE_DISABLED;
            return DK_SML_EX_SUCCESS;
        });
    });
}

DKSML_API DkSmlExReturn dkSmlExDeviceGetDravikLinkRemotePciInfo_v2(DkSmlExDevice device, uint32_t link,
                                                                   DkSmlExPciInfo* pci) {
    if (pci == nullptr) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
    return WithHandle(device, [&](DkDieInfo&, IDkDevice* d) {
        DkSmlDravikLinkRemoteInfo remote;
        const DkSmlExReturn result = RemoteInfo(d, link, remote);
        if (result != DK_SML_EX_SUCCESS) return result;
        DkSmlExDevice peer = nullptr;
        remote.remoteBdfId[sizeof(remote.remoteBdfId) - 1] = '\0';
        if (dkSmlExGetDeviceHandleByPciBusId(remote.remoteBdfId, &peer) != DK_SML_EX_SUCCESS)
            return DK_SML_EX_ERROR_NOT_FOUND;
        return dkSmlExDeviceGetPciInfo(peer, pci);
    });
}

DKSML_API DkSmlExReturn dkSmlExDeviceGetDravikLinkRemoteDeviceType(DkSmlExDevice device, uint32_t link,
                                                                   DkSmlExDravikLinkDeviceType* type) {
    if (type == nullptr) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
    return WithHandle(device, [&](DkDieInfo&, IDkDevice* d) {
        DkSmlDravikLinkRemoteInfo remote;
        const DkSmlExReturn result = RemoteInfo(d, link, remote);
        if (result != DK_SML_EX_SUCCESS) return result;
        const bool known = remote.remoteDeviceType == DK_SML_EX_DRAVIK_LINK_DEVICE_TYPE_GPU ||
                           remote.remoteDeviceType == DK_SML_EX_DRAVIK_LINK_DEVICE_TYPE_SWITCH;
        *type = known ? static_cast<DkSmlExDravikLinkDeviceType>(remote.remoteDeviceType)
                      : DK_SML_EX_DRAVIK_LINK_DEVICE_TYPE_UNKNOWN;
        return DK_SML_EX_SUCCESS;
    });
}

DKSML_API DkSmlExReturn dkSmlExDeviceGetFieldValues(DkSmlExDevice device, uint32_t valuesCount,
                                                    DkSmlExFieldValue* values) {
    if (values == nullptr && valuesCount != 0) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
    return WithHandle(device, [&](DkDieInfo&, IDkDevice* d) {
        for (uint32_t i = 0; i < valuesCount; ++i) AnswerField(d, values[i]);
        return DK_SML_EX_SUCCESS;
    });
}

}  // extern "C"
