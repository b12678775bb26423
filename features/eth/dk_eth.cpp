#include "features/eth/dk_eth.h"

namespace dksml {

// The driver side of these operations is not wired up in this version: each
// answers DK_SML_ERROR_NOT_SUPPORTED so callers see a clear status.

DkSmlReturn DkEth::GetEthThroughput(IDkDevice*, uint32_t*, DkSmlEthThroughput*) { return DK_SML_ERROR_NOT_SUPPORTED; }

}  // namespace dksml
