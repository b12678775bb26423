#include "features/optical_module/dk_optical_module.h"

namespace dksml {

// The driver side of these operations is not wired up in this version: each
// answers DK_SML_ERROR_NOT_SUPPORTED so callers see a clear status.

DkSmlReturn DkOpticalModule::GetOpticalModuleStatus(IDkDevice*, uint32_t*, uint32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkOpticalModule::GetOpticalModuleInfo(IDkDevice*, uint32_t, char*, uint32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkOpticalModule::GetOpticalModulePower(IDkDevice*, uint32_t, uint32_t*, int32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }

}  // namespace dksml
