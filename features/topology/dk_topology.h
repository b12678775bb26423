// How closely GPUs (and network interfaces) are connected, which CPUs and
// NUMA nodes are local to a GPU, and which GPUs share a socket. The tables
// are built once at initialisation from discovery's link records; queries
// are lookups in memory. The system manager owns the one instance.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "core/dk_system_manager.h"
#include "dksml.h"

namespace dksml {

class DkSysUtils;

// One NUMA node as the PCI functions' "local_cpulist" files describe it.
struct DkNumaNodeInfo {
    uint32_t id = 0;
    std::string cpuList;      // the raw first line of the file
    std::set<uint32_t> cpus;
};

// One row of an interconnect peer table: the board position's link count and
// the number of links to each peer position.
struct DkLinkPeerRow {
    uint32_t linkCount = 0;
    std::unordered_map<uint32_t, uint32_t> peers;
};
using DkLinkPeerTable = std::unordered_map<uint32_t, DkLinkPeerRow>;

class DkTopology {
public:
    // `sysUtils` stays owned by the system manager, which outlives this
    // object; `useDkk6PeerTable` selects the DKK6 interconnect peer table.
    DkTopology(DkSysUtils* sysUtils, bool useDkk6PeerTable);
    virtual ~DkTopology() = default;

    // Building, run by the system manager after discovery.
    virtual void GenerateTopoTable(const DkTopologyInputs& inputs);
    virtual void GenerateSocketDeviceMap(const DkTopologyInputs& inputs);

    // Queries by device index.
    virtual DkSmlReturn GetDeviceTopology(uint32_t device1, uint32_t device2, DkSmlGpuTopologyLevel* level);
    virtual DkSmlReturn GetDeviceDistance(uint32_t device1, uint32_t device2, uint32_t* distance);
    virtual DkSmlReturn GetCpuAffinity(uint32_t device, uint32_t cpuSetSize, uint32_t* cpuSet);
    // The CPU set as a list of ranges ("0-31,64-95"); DK_SML_ERROR_INSUFFICIENT_SIZE when `size` cannot
    // hold it with its terminating zero.
    virtual DkSmlReturn GetCpuAffinityStr(uint32_t device, uint32_t size, char* text);
    virtual DkSmlReturn GetNodeAffinity(uint32_t device, uint32_t nodeSetSize, uint32_t* nodeSet);
    virtual DkSmlReturn SetCpuAffinity(uint32_t device);
    virtual DkSmlReturn ClearCpuAffinity(uint32_t device);
    virtual DkSmlReturn GetNiTopology(uint32_t ni, uint32_t peer, DkSmlGpuTopologyLevel* level);
    // The far end of the device's `link`-th interconnect record (types 4 and 5,
    // in the driver's order).
    virtual DkSmlReturn GetDravikLinkRemoteInfo(uint32_t device, uint32_t link, DkSmlDravikLinkRemoteInfo* info);
    // The driver publishes no unique ids of link peers yet: both answer
    // DK_SML_ERROR_NOT_SUPPORTED.
    virtual DkSmlReturn GetLocalAndRemoteUuid(uint32_t device, DkSmlUuidPair* pair);
    virtual DkSmlReturn GetLocalAndMultipleRemoteUuid(uint32_t device, uint32_t* count, DkSmlUuidPair* pairs);

    // 0xFFFFFFFF when the device has no layout node.
    virtual uint32_t GetTopologyId(uint32_t device);
    // Interconnect peers of the device's board position; 0 when unknown.
    virtual uint32_t GetDeviceDravikLinkNumber(uint32_t device);

    virtual void SetTopologyIdForTest(uint32_t device, uint32_t topologyId);
    virtual void SetSocketDeviceMap(uint32_t socket, uint32_t device);

    uint32_t GetGpuCount() const { return static_cast<uint32_t>(m_topoMatrix.size()); }
    uint32_t GetNiCount() const { return static_cast<uint32_t>(m_niTopoMatrix.size()); }
    const std::unordered_map<uint32_t, DkNumaNodeInfo>& GetNumaNodes() const { return m_numaNodes; }
    const std::unordered_map<uint32_t, std::vector<uint32_t>>& GetSocketMap() const { return m_socketMap; }
    // Switch name -> names beneath it; built on first use.
    const std::unordered_map<std::string, std::vector<std::string>>& GetVirtualSwitchMap();

    // The board data behind GetDeviceDravikLinkNumber.
    static const DkLinkPeerTable& Dkk6PeerTable();
    static const DkLinkPeerTable& Dkk1PeerTable();

private:
    struct NiEndpoint;
    void ParseNumaNodeInfo(const std::map<std::string, DkGpuNodeInfo>& gpuNodes);
    void FillGpuTopoInfo(uint32_t row, const std::vector<DkLinkAttr>& links,
                         const std::unordered_map<uint32_t, uint32_t>& deviceOfNode);
    void FillNiTopoInfo(const DkTopologyInputs& inputs, uint32_t ni);
    uint32_t GetLinkType(const NiEndpoint& ni, const std::string& peerBdf);
    uint32_t DetermineVirtualP2PLinkAvailability(const std::string& path1, const std::string& path2);
    std::set<uint32_t> CpusOf(uint32_t device) const;

    DkSysUtils* m_sysUtils;
    const DkLinkPeerTable& m_peerTable;
    std::string m_pciDevicesPath;
    std::unordered_map<uint32_t, DkNumaNodeInfo> m_numaNodes;
    std::vector<std::vector<uint32_t>> m_topoMatrix;
    std::vector<std::vector<uint32_t>> m_niTopoMatrix;
    std::vector<std::vector<uint32_t>> m_distanceMatrix;
    std::vector<std::set<uint32_t>> m_gpuNumaAffinity;
    std::unordered_map<uint32_t, uint32_t> m_deviceTopologyMap;           // device -> board position
    std::unordered_map<uint32_t, std::vector<uint32_t>> m_socketMap;      // socket -> devices
    std::unordered_map<uint32_t, uint32_t> m_topologyIds;                 // device -> layout topology id
    std::unordered_map<uint32_t, std::vector<DkSmlDravikLinkRemoteInfo>> m_remoteLinks;
    std::unordered_map<std::string, std::vector<std::string>> m_virtualSwitchMap;
};

// Builds and fills the topology object from one discovery pass.
std::shared_ptr<DkTopology> CreateTopology(DkSysUtils* sysUtils, const DkTopologyInputs& inputs);

}  // namespace dksml
