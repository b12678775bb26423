// How closely GPUs (and network interfaces) are connected, which CPUs and
// NUMA nodes are local to a GPU, and which GPUs share a socket. The tables
// are built once at initialisation from discovery's link records; queries
// are lookups in memory. The system manager owns the one instance.
#pragma once

#include <cstdint>

#include "dksml.h"

namespace dksml {

class DkSysUtils;

class DkTopology {
public:
    // `sysUtils` stays owned by the system manager, which outlives this
    // object; `useDkk6PeerTable` selects the DKK6 interconnect peer table.
    DkTopology(DkSysUtils* sysUtils, bool useDkk6PeerTable);
    virtual ~DkTopology() = default;

    // Building, run by the system manager after discovery.
    virtual void GenerateTopoTable();
    virtual void GenerateSocketDeviceMap();

    // Queries by device index.
    virtual DkSmlReturn GetDeviceTopology(uint32_t device1, uint32_t device2, DkSmlGpuTopologyLevel* level);
    virtual DkSmlReturn GetDeviceDistance(uint32_t device1, uint32_t device2, uint32_t* distance);
    virtual DkSmlReturn GetCpuAffinity(uint32_t device, uint32_t cpuSetSize, uint32_t* cpuSet);
    virtual DkSmlReturn GetCpuAffinityStr(uint32_t device, uint32_t size, char* text);
    virtual DkSmlReturn GetNodeAffinity(uint32_t device, uint32_t nodeSetSize, uint32_t* nodeSet);
    virtual DkSmlReturn SetCpuAffinity(uint32_t device);
    virtual DkSmlReturn ClearCpuAffinity(uint32_t device);
    virtual DkSmlReturn GetNiTopology(uint32_t ni, uint32_t peer, DkSmlGpuTopologyLevel* level);
    virtual DkSmlReturn GetDravikLinkRemoteInfo(uint32_t device, uint32_t link, DkSmlDravikLinkRemoteInfo* info);
    virtual DkSmlReturn GetLocalAndRemoteUuid(uint32_t device, DkSmlUuidPair* pair);
    virtual DkSmlReturn GetLocalAndMultipleRemoteUuid(uint32_t device, uint32_t* count, DkSmlUuidPair* pairs);

    // 0xFFFFFFFF when the device has no layout node.
    virtual uint32_t GetTopologyId(uint32_t device);
    // Interconnect peers of the device's board position; 0 when unknown.
    virtual uint32_t GetDeviceDravikLinkNumber(uint32_t device);

    virtual void SetTopologyIdForTest(uint32_t device, uint32_t topologyId);
    virtual void SetSocketDeviceMap(uint32_t socket, uint32_t device);

private:
    DkSysUtils* m_sysUtils;
    bool m_useDkk6PeerTable;
};

}  // namespace dksml
