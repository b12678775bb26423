#include "features/device_reset/dk_device_reset.h"

namespace dksml {

// The driver side of these operations is not wired up in this version: each
// answers DK_SML_ERROR_NOT_SUPPORTED so callers see a clear status.

DkSmlReturn DkDeviceReset::FunctionLevelReset(IDkDevice*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDeviceReset::FunctionLevelResetVfFromPf(IDkDevice*, uint32_t) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDeviceReset::Reset(const DkSmlDeviceInfo&, const std::string&) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDeviceReset::ForceReset(const DkSmlDeviceInfo&, const std::string&) { return DK_SML_ERROR_NOT_SUPPORTED; }

}  // namespace dksml
