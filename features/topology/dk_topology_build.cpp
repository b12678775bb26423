// Building the tables once per discovery pass: NUMA nodes from the PCI
// functions' files, GPU levels and distances from the layout's link records,
// sockets from "showtopology", and the interconnect peers of every GPU.
// The link records are read here, through each device's layout node
// directory, and nowhere else.
#include <cstring>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "core/dk_file_text.h"
#include "core/dk_host_tree.h"
#include "core/idk_device.h"
#include "driver/dk_text.h"
#include "features/topology/dk_cpu_list.h"
#include "features/topology/dk_node_links.h"
#include "features/topology/dk_topology.h"

namespace dksml {
namespace {

// Kernel link type -> topology level; every other type is level 8.
struct DkLinkTypeLevel {
    uint32_t type;
    DkSmlGpuTopologyLevel level;
};
constexpr DkLinkTypeLevel c_linkTypeLevels[] = {
    {101, DK_SML_TOPOLOGY_SINGLE_SWITCH}, {102, DK_SML_TOPOLOGY_MULTIPLE_SWITCHES},
    {103, DK_SML_TOPOLOGY_HOST_BRIDGE},   {104, DK_SML_TOPOLOGY_NUMA_NODE},
    {4, DK_SML_TOPOLOGY_DRAVIK_LINK},     {105, DK_SML_TOPOLOGY_SYSTEM},
    {5, DK_SML_TOPOLOGY_DRAVIK_LINK2},
};
// The link type of a GPU's record that points at its local CPU node.
constexpr uint32_t c_cpuLinkType = 3;

uint32_t LevelOfLinkType(uint32_t type) {
    for (const DkLinkTypeLevel& entry : c_linkTypeLevels) {
        if (entry.type == type) return entry.level;
    }
    return DK_SML_TOPOLOGY_UNKNOWN;
}

bool IsInterconnectType(uint32_t type) { return type == 4 || type == 5; }

// First line of a small sysfs file ("" and false when it cannot be read).
bool ReadHostFirstLine(const std::string& hostPath, std::string& scratch, std::string_view& line) {
    if (CurrentHostTree().ReadText(hostPath, scratch) != DK_SML_SUCCESS) return false;
    DkTextLines lines(scratch);
    return lines.Next(line);
}

// The device object of an index; null without one.
IDkDevice* DeviceOf(const DkTopologyInputs& inputs, uint32_t deviceIndex) {
    const auto device = inputs.devices.find(deviceIndex);
    return device == inputs.devices.end() ? nullptr : device->second.get();
}

}  // namespace

void DkTopology::ParseNumaNodeInfo(const std::map<std::string, DkGpuNodeInfo>& gpuNodes) {
    if (!CurrentHostTree().DirectoryOpens(m_pciDevicesPath)) return;
    std::string scratch;
    for (const auto& [bdf, node] : gpuNodes) {
        std::string_view line;
        int numaNode = 0;
        // The kernel writes -1 without NUMA: everything is node 0 then.
        if (!ReadHostFirstLine(m_pciDevicesPath + bdf + "/numa_node", scratch, line) || !ExtractNumber(line, numaNode) ||
            numaNode < 0) {
            numaNode = 0;
        }
        DkNumaNodeInfo info;
        info.id = static_cast<uint32_t>(numaNode);
        if (!ReadHostFirstLine(m_pciDevicesPath + bdf + "/local_cpulist", scratch, line)) continue;
        if (!ParseCpuList(line, info.cpus)) continue;
        info.cpuList = std::string(line);
        m_numaNodes.emplace(info.id, std::move(info));  // the first entry of a node stays
    }
}

void DkTopology::FillGpuTopoInfo(uint32_t row, const std::vector<DkLinkAttr>& links,
                                 const std::unordered_map<uint32_t, uint32_t>& deviceOfNode) {
    for (const DkLinkAttr& link : links) {
        if (link.type == c_cpuLinkType && m_numaNodes.count(link.to) != 0) {
            m_gpuNumaAffinity[row].insert(link.to);
            continue;
        }
        const auto peer = deviceOfNode.find(link.to);
        if (peer == deviceOfNode.end() || peer->second >= GetGpuCount()) continue;
        m_topoMatrix[row][peer->second] = LevelOfLinkType(link.type);
        m_distanceMatrix[row][peer->second] = link.distance;
    }
}

void DkTopology::GenerateTopoTable(const DkTopologyInputs& inputs) {
    m_numaNodes.clear();
    m_topoMatrix.clear();
    m_niTopoMatrix.clear();
    m_distanceMatrix.clear();
    m_gpuNumaAffinity.clear();
    m_topologyIds.clear();
    m_remoteLinks.clear();
    ParseNumaNodeInfo(inputs.gpuNodes);

    std::unordered_map<uint32_t, uint32_t> deviceOfNode;
    for (const auto& [bdf, node] : inputs.gpuNodes) deviceOfNode.emplace(node.nodeId, node.deviceIndex);

    const uint32_t n = inputs.gpuCount;
    // Every row starts as "no relation": a GPU without a layout node still
    // answers level 8 and distance 9999 rather than reading past a row.
    m_topoMatrix.assign(n, std::vector<uint32_t>(n, DK_SML_TOPOLOGY_UNKNOWN));
    m_distanceMatrix.assign(n, std::vector<uint32_t>(n, DK_SML_DISTANCE_UNREACHABLE));
    m_gpuNumaAffinity.assign(n, {});
    for (uint32_t i = 0; i < n; ++i) {
        m_topoMatrix[i][i] = DK_SML_TOPOLOGY_SAME_DEVICE;
        m_distanceMatrix[i][i] = 0;
    }
    // The far end of an interconnect record by node id: the first node of that
    // id in bus-id order.
    std::unordered_map<uint32_t, const std::pair<const std::string, DkGpuNodeInfo>*> nodeById;
    for (const auto& entry : inputs.gpuNodes) nodeById.emplace(entry.second.nodeId, &entry);
    std::vector<DkLinkAttr> directLinks, indirectLinks;
    for (const auto& [bdf, node] : inputs.gpuNodes) {
        if (node.deviceIndex >= n) continue;
        m_topologyIds[node.deviceIndex] = node.topologyId;
        directLinks.clear();
        indirectLinks.clear();
        ReadNodeLinks(DeviceOf(inputs, node.deviceIndex), directLinks, indirectLinks);
        // Indirect first, so that a direct record for the same peer wins.
        FillGpuTopoInfo(node.deviceIndex, indirectLinks, deviceOfNode);
        FillGpuTopoInfo(node.deviceIndex, directLinks, deviceOfNode);
        std::vector<DkSmlDravikLinkRemoteInfo>& remotes = m_remoteLinks[node.deviceIndex];
        for (const DkLinkAttr& link : directLinks) {
            if (!IsInterconnectType(link.type)) continue;
            DkSmlDravikLinkRemoteInfo remote{};
            remote.remoteDeviceIndex = UINT32_MAX;
            remote.remoteDeviceType = DK_SML_EX_DRAVIK_LINK_DEVICE_TYPE_UNKNOWN;
            const auto peer = nodeById.find(link.to);
            if (peer != nodeById.end()) {
                remote.remoteDeviceIndex = peer->second->second.deviceIndex;
                remote.remoteDeviceType = DK_SML_EX_DRAVIK_LINK_DEVICE_TYPE_GPU;
                std::strncpy(remote.remoteBdfId, peer->second->first.c_str(), sizeof(remote.remoteBdfId) - 1);
            }
            remotes.push_back(remote);
        }
    }
    for (uint32_t ni = 0; ni < inputs.niNodes.size(); ++ni) {
        m_niTopoMatrix.emplace_back(n + inputs.niNodes.size(), DK_SML_TOPOLOGY_UNKNOWN);
        FillNiTopoInfo(inputs, ni);
    }
}

void DkTopology::GenerateSocketDeviceMap(const DkTopologyInputs& inputs) {
    m_deviceTopologyMap.clear();
    m_socketMap.clear();
    std::string scratch;
    for (uint32_t index = 0; index < inputs.gpuCount; ++index) {
        const auto it = inputs.devices.find(index);
        if (it == inputs.devices.end() || !it->second || it->second->IsVf()) continue;
        if (it->second->FetchDriverData(0, DRAVIK_SMI_SHOWTOPOLOGY, scratch) != DK_SML_SUCCESS) continue;
        uint32_t position = 0, socket = 0;
        DkTextLines lines(scratch);
        std::string_view line;
        if (!lines.Next(line)) continue;
        line = TrimView(line, " \t\r");
        const size_t blank = line.find_first_of(" \t");
        if (blank == std::string_view::npos || !ExtractNumber(line.substr(0, blank), position) ||
            !ExtractNumber(line.substr(blank), socket)) {
            continue;
        }
        m_deviceTopologyMap[index] = position;
        m_socketMap[socket].push_back(index);
    }
}

std::shared_ptr<DkTopology> CreateTopology(DkSysUtils* sysUtils, const DkTopologyInputs& inputs) {
    bool dkk6Board = false;
    for (const auto& [index, device] : inputs.devices) {
        if (device && !device->IsVf()) {
            dkk6Board = device->IsDkk6Series();
            break;
        }
    }
    auto topology = std::make_shared<DkTopology>(sysUtils, dkk6Board);
    topology->GenerateTopoTable(inputs);
    topology->GenerateSocketDeviceMap(inputs);
    return topology;
}

}  // namespace dksml
