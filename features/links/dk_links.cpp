#include "features/links/dk_links.h"

namespace dksml {

// The driver side of these operations is not wired up in this version: each
// answers DK_SML_ERROR_NOT_SUPPORTED so callers see a clear status.

DkSmlReturn DkDravLink::GetDravLinkBandwidth(IDkDevice*, DkSmlDravikLinkType, uint32_t*, DkSmlDravikLinkBandwidth*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDravLink::GetDieDravLinkBandwidth(IDkDevice*, unsigned int, DkSmlDravikLinkType, uint32_t*, DkSmlDravikLinkBandwidth*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDravLink::GetDravLinkTrafficStat(IDkDevice*, DkSmlDravikLinkType, uint32_t*, DkSmlDravikLinkTrafficStat*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDravLink::GetDieDravLinkTrafficStat(IDkDevice*, unsigned int, DkSmlDravikLinkType, uint32_t*, DkSmlDravikLinkTrafficStat*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDravLink::GetDravLinkAer(IDkDevice*, uint32_t*, DkSmlDravikLinkAer*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDravLink::GetDieDravLinkAer(IDkDevice*, unsigned int, uint32_t*, DkSmlDravikLinkAer*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDravLink::GetDravLinkInfo(IDkDevice*, DkSmlDravikLinkInfo*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDravLink::GetDieDravLinkInfo(IDkDevice*, unsigned int, DkSmlDravikLinkInfo*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDravLink::GetDklkInfo(IDkDevice*, DkSmlDravikLinkInfo_v2*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDravLink::GetDravLinkTopo(IDkDevice*, uint32_t*, DkSmlDravikLinkTopo*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDravLink::GetDieDravLinkTopo(IDkDevice*, unsigned int, uint32_t*, DkSmlDravikLinkTopo*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDravLink::GetDravikLinkState(IDkDevice*, uint32_t*, char*, uint32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDravLink::GetDieDravikLinkState(IDkDevice*, unsigned int, uint32_t*, char*, uint32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDravLink::SetDravikLinkState(IDkDevice*, uint32_t) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDravLink::SetDieDravikLinkState(IDkDevice*, unsigned int, uint32_t) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDravLink::GetDravikLinkPortState(IDkDevice*, uint32_t*, uint32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDravLink::GetDieDravikLinkPortState(IDkDevice*, unsigned int, uint32_t*, uint32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }

}  // namespace dksml
