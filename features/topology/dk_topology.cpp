#include "features/topology/dk_topology.h"

namespace dksml {

// The tables are not built in this version: every query answers
// DK_SML_ERROR_NOT_SUPPORTED and the identifiers report "unknown".

DkTopology::DkTopology(DkSysUtils* sysUtils, bool useDkk6PeerTable)
    : m_sysUtils(sysUtils), m_useDkk6PeerTable(useDkk6PeerTable) {}

void DkTopology::GenerateTopoTable() {}
void DkTopology::GenerateSocketDeviceMap() {}

DkSmlReturn DkTopology::GetDeviceTopology(uint32_t, uint32_t, DkSmlGpuTopologyLevel*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkTopology::GetDeviceDistance(uint32_t, uint32_t, uint32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkTopology::GetCpuAffinity(uint32_t, uint32_t, uint32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkTopology::GetCpuAffinityStr(uint32_t, uint32_t, char*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkTopology::GetNodeAffinity(uint32_t, uint32_t, uint32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkTopology::SetCpuAffinity(uint32_t) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkTopology::ClearCpuAffinity(uint32_t) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkTopology::GetNiTopology(uint32_t, uint32_t, DkSmlGpuTopologyLevel*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkTopology::GetDravikLinkRemoteInfo(uint32_t, uint32_t, DkSmlDravikLinkRemoteInfo*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkTopology::GetLocalAndRemoteUuid(uint32_t, DkSmlUuidPair*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkTopology::GetLocalAndMultipleRemoteUuid(uint32_t, uint32_t*, DkSmlUuidPair*) { return DK_SML_ERROR_NOT_SUPPORTED; }

uint32_t DkTopology::GetTopologyId(uint32_t) { return UINT32_MAX; }
uint32_t DkTopology::GetDeviceDravikLinkNumber(uint32_t) { return 0; }

void DkTopology::SetTopologyIdForTest(uint32_t, uint32_t) {}
void DkTopology::SetSocketDeviceMap(uint32_t, uint32_t) {}

}  // namespace dksml
