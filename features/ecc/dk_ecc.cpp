#include "features/ecc/dk_ecc.h"

namespace dksml {

// The driver side of these operations is not wired up in this version: each
// answers DK_SML_ERROR_NOT_SUPPORTED so callers see a clear status.

DkSmlReturn DkEcc::GetEccState(IDkDevice*, uint32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkEcc::SetEccState(IDkDevice*, uint32_t) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkEcc::GetTotalEccErrors(IDkDevice*, DkSmlEccErrorCount*) { return DK_SML_ERROR_NOT_SUPPORTED; }

}  // namespace dksml
