#include "features/hbm/dk_hbm.h"

namespace dksml {

// The driver side of these operations is not wired up in this version: each
// answers DK_SML_ERROR_NOT_SUPPORTED so callers see a clear status.

DkSmlReturn DkHbm::GetHbmBandWidth(IDkDevice*, uint32_t*, DkSmlBandwidthInfo*) { return DK_SML_ERROR_NOT_SUPPORTED; }

}  // namespace dksml
