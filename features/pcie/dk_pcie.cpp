#include "features/pcie/dk_pcie.h"

namespace dksml {

// The driver side of these operations is not wired up in this version: each
// answers DK_SML_ERROR_NOT_SUPPORTED so callers see a clear status.

DkSmlReturn DkPcie::GetPcieInfo(IDkDevice*, DkSmlPcieInfo*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkPcie::GetPcieMaxLinkInfo(IDkDevice*, DkSmlPcieInfo*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkPcie::GetPcieThroughput(IDkDevice*, DkSmlPcieThroughput*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkPcie::GetPcieBandwidth(IDkDevice*, DkSmlPcieBandwidth*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkPcie::GetDeviceSlot(IDkDevice*, uint32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkPcie::GetPciDelay(IDkDevice*, uint32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkPcie::SetPciDelay(IDkDevice*, uint32_t) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkPcie::SetPciSpeed(IDkDevice*, DkSmlPciGen) { return DK_SML_ERROR_NOT_SUPPORTED; }

}  // namespace dksml
