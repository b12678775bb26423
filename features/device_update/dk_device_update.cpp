#include "features/device_update/dk_device_update.h"

namespace dksml {

// The driver side of these operations is not wired up in this version: each
// answers DK_SML_ERROR_NOT_SUPPORTED so callers see a clear status.

DkSmlReturn DkDeviceUpdate::VbiosUpgrade(const DkSmlDeviceInfo&, uint32_t, const char*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDeviceUpdate::DumpVbios(IDkDevice*, const char*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDeviceUpdate::GetSriovState(IDkDevice*, uint32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }

}  // namespace dksml
