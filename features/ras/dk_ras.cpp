#include "features/ras/dk_ras.h"

namespace dksml {

// The driver side of these operations is not wired up in this version: each
// answers DK_SML_ERROR_NOT_SUPPORTED so callers see a clear status.

DkSmlReturn DkRas::GetRasErrorData(IDkDevice*, DkSmlRasErrorData*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkRas::GetDieRasErrorData(IDkDevice*, unsigned int, DkSmlRasErrorData_v2*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkRas::GetRasStatusData(IDkDevice*, uint32_t*, uint32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }

}  // namespace dksml
