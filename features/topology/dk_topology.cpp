// Queries: every answer is a lookup in the tables GenerateTopoTable built.
#include "features/topology/dk_topology.h"

#include <pthread.h>
#include <sched.h>

#include <algorithm>
#include <cstring>

#include "core/dk_sys_utils.h"
#include "features/topology/dk_cpu_list.h"

namespace dksml {
namespace {

// The CPU set handed to the kernel: 1024 CPUs in 128 bytes, whatever the
// C library's cpu_set_t size is.
constexpr uint32_t c_affinityCpuCount = 1024;
constexpr unsigned long c_affinitySetBytes = c_affinityCpuCount / 8;
constexpr uint32_t c_niPeerBase = 10000;

void SetMaskBit(uint32_t* words, uint32_t bit) { words[bit / 32] |= 1u << (bit % 32); }

}  // namespace

DkTopology::DkTopology(DkSysUtils* sysUtils, bool useDkk6PeerTable)
    : m_sysUtils(sysUtils),
      m_peerTable(useDkk6PeerTable ? Dkk6PeerTable() : Dkk1PeerTable()),
      m_pciDevicesPath("/sys/bus/pci/devices/") {}

DkSmlReturn DkTopology::GetDeviceTopology(uint32_t device1, uint32_t device2, DkSmlGpuTopologyLevel* level) {
    if (level == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (device1 >= GetGpuCount() || device2 >= GetGpuCount()) return DK_SML_ERROR_DEVICE_NOT_AVAILABLE;
    *level = static_cast<DkSmlGpuTopologyLevel>(m_topoMatrix[device1][device2]);
    return DK_SML_SUCCESS;
}

DkSmlReturn DkTopology::GetDeviceDistance(uint32_t device1, uint32_t device2, uint32_t* distance) {
    if (distance == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (device1 >= GetGpuCount() || device2 >= GetGpuCount()) return DK_SML_ERROR_DEVICE_NOT_AVAILABLE;
    *distance = m_distanceMatrix[device1][device2];
    // The value is written either way: callers print "unreachable" from it.
    return *distance == DK_SML_DISTANCE_UNREACHABLE ? DK_SML_ERROR_FAILURE : DK_SML_SUCCESS;
}

DkSmlReturn DkTopology::GetCpuAffinity(uint32_t device, uint32_t cpuSetSize, uint32_t* cpuSet) {
    if (cpuSet == nullptr || cpuSetSize == 0) return DK_SML_ERROR_INVALID_INPUT;
    if (device >= m_gpuNumaAffinity.size()) return DK_SML_ERROR_DEVICE_NOT_AVAILABLE;
    std::fill(cpuSet, cpuSet + cpuSetSize, 0u);
    const uint64_t bits = 32ull * cpuSetSize;
    for (uint32_t node : m_gpuNumaAffinity[device]) {
        const auto it = m_numaNodes.find(node);
        if (it == m_numaNodes.end()) continue;
        for (uint32_t cpu : it->second.cpus) {
            if (cpu >= bits) break;  // only this node's CPUs end here
            SetMaskBit(cpuSet, cpu);
        }
    }
    return DK_SML_SUCCESS;
}

DkSmlReturn DkTopology::GetCpuAffinityStr(uint32_t device, uint32_t size, char* text) {
    if (text == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (device >= m_gpuNumaAffinity.size()) return DK_SML_ERROR_DEVICE_NOT_AVAILABLE;
    const std::string list = FormatCpuList(CpusOf(device));
    if (size <= list.size()) return DK_SML_ERROR_INSUFFICIENT_SIZE;
    std::memcpy(text, list.c_str(), list.size() + 1);
    return DK_SML_SUCCESS;
}

DkSmlReturn DkTopology::GetNodeAffinity(uint32_t device, uint32_t nodeSetSize, uint32_t* nodeSet) {
    if (nodeSet == nullptr || nodeSetSize == 0) return DK_SML_ERROR_INVALID_INPUT;
    if (device >= m_gpuNumaAffinity.size()) return DK_SML_ERROR_DEVICE_NOT_AVAILABLE;
    std::fill(nodeSet, nodeSet + nodeSetSize, 0u);
    const uint64_t bits = 32ull * nodeSetSize;
    for (uint32_t node : m_gpuNumaAffinity[device]) {
        if (node >= bits) break;
        SetMaskBit(nodeSet, node);
    }
    return DK_SML_SUCCESS;
}

std::set<uint32_t> DkTopology::CpusOf(uint32_t device) const {
    std::set<uint32_t> cpus;
    for (uint32_t node : m_gpuNumaAffinity[device]) {
        const auto it = m_numaNodes.find(node);
        if (it != m_numaNodes.end()) cpus.insert(it->second.cpus.begin(), it->second.cpus.end());
    }
    return cpus;
}

DkSmlReturn DkTopology::SetCpuAffinity(uint32_t device) {
    if (device >= m_gpuNumaAffinity.size()) return DK_SML_ERROR_DEVICE_NOT_AVAILABLE;
    if (m_sysUtils == nullptr) return DK_SML_ERROR_FAILURE;
    cpu_set_t set;
    CPU_ZERO(&set);
    for (uint32_t node : m_gpuNumaAffinity[device]) {
        const auto it = m_numaNodes.find(node);
        if (it == m_numaNodes.end()) continue;
        for (uint32_t cpu : it->second.cpus) {
            if (cpu >= c_affinityCpuCount) break;
            CPU_SET(cpu, &set);
        }
    }
    const int result = m_sysUtils->PthreadSetaffinityNp(pthread_self(), c_affinitySetBytes, &set);
    return result == 0 ? DK_SML_SUCCESS : DK_SML_ERROR_FAILURE;
}

DkSmlReturn DkTopology::ClearCpuAffinity(uint32_t device) {
    if (device >= m_gpuNumaAffinity.size()) return DK_SML_ERROR_DEVICE_NOT_AVAILABLE;
    if (m_sysUtils == nullptr) return DK_SML_ERROR_FAILURE;
    cpu_set_t set;
    CPU_ZERO(&set);
    const int count = std::min<int>(m_sysUtils->GetNprocs(), static_cast<int>(c_affinityCpuCount));
    for (int cpu = 0; cpu < count; ++cpu) CPU_SET(cpu, &set);
    const int result = m_sysUtils->PthreadSetaffinityNp(pthread_self(), c_affinitySetBytes, &set);
    return result == 0 ? DK_SML_SUCCESS : DK_SML_ERROR_FAILURE;
}

DkSmlReturn DkTopology::GetNiTopology(uint32_t ni, uint32_t peer, DkSmlGpuTopologyLevel* level) {
    if (level == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (ni >= GetNiCount()) return DK_SML_ERROR_DEVICE_NOT_AVAILABLE;
    uint32_t column = peer;
    if (peer < c_niPeerBase) {
        if (peer >= GetGpuCount()) return DK_SML_ERROR_DEVICE_NOT_AVAILABLE;
    } else {
        // Peer 10000 is the first interface and needs no test: there is one.
        if (peer > c_niPeerBase && peer - c_niPeerBase >= GetNiCount()) return DK_SML_ERROR_DEVICE_NOT_AVAILABLE;
        column = GetGpuCount() + peer - c_niPeerBase;
    }
    const std::vector<uint32_t>& row = m_niTopoMatrix[ni];
    if (column >= row.size()) return DK_SML_ERROR_DEVICE_NOT_AVAILABLE;
    *level = static_cast<DkSmlGpuTopologyLevel>(row[column]);
    return DK_SML_SUCCESS;
}

DkSmlReturn DkTopology::GetDravikLinkRemoteInfo(uint32_t device, uint32_t link, DkSmlDravikLinkRemoteInfo* info) {
    if (info == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (device >= GetGpuCount()) return DK_SML_ERROR_DEVICE_NOT_AVAILABLE;
    const auto it = m_remoteLinks.find(device);
    if (it == m_remoteLinks.end() || link >= it->second.size()) return DK_SML_ERROR_NOT_SUPPORTED;
    *info = it->second[link];
    return DK_SML_SUCCESS;
}

DkSmlReturn DkTopology::GetLocalAndRemoteUuid(uint32_t, DkSmlUuidPair*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkTopology::GetLocalAndMultipleRemoteUuid(uint32_t, uint32_t*, DkSmlUuidPair*) {
    return DK_SML_ERROR_NOT_SUPPORTED;
}

uint32_t DkTopology::GetTopologyId(uint32_t device) {
    const auto it = m_topologyIds.find(device);
    return it == m_topologyIds.end() ? UINT32_MAX : it->second;
}

uint32_t DkTopology::GetDeviceDravikLinkNumber(uint32_t device) {
    const auto position = m_deviceTopologyMap.find(device);
    const auto row = m_peerTable.find(position == m_deviceTopologyMap.end() ? 0 : position->second);
    return row == m_peerTable.end() ? 0 : row->second.linkCount;
}

void DkTopology::SetTopologyIdForTest(uint32_t device, uint32_t topologyId) { m_deviceTopologyMap[device] = topologyId; }
void DkTopology::SetSocketDeviceMap(uint32_t socket, uint32_t device) { m_socketMap[socket].push_back(device); }

}  // namespace dksml
