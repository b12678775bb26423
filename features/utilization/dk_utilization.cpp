#include "features/utilization/dk_utilization.h"

namespace dksml {

// The driver side of these operations is not wired up in this version: each
// answers DK_SML_ERROR_NOT_SUPPORTED so callers see a clear status.

DkSmlReturn DkUtilization::GetMemoryInfo(IDkDevice*, DkSmlMemoryInfo*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkUtilization::GetDieMemoryInfo(IDkDevice*, unsigned int, DkSmlMemoryInfo*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkUtilization::GetXcoreApUsageInfo(IDkDevice*, uint32_t*, uint32_t*, uint32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkUtilization::GetDieXcoreApUsageInfo(IDkDevice*, unsigned int, uint32_t*, uint32_t*, uint32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkUtilization::GetDeviceUsage(IDkDevice*, DkSmlUsageIp, int32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkUtilization::GetDieUsage(IDkDevice*, unsigned int, DkSmlUsageIp, int32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkUtilization::GetApUsageToggle(IDkDevice*, uint32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkUtilization::GetDieApUsageToggle(IDkDevice*, unsigned int, uint32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkUtilization::SetApUsageToggle(IDkDevice*, bool) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkUtilization::SetDieApUsageToggle(IDkDevice*, unsigned int, bool) { return DK_SML_ERROR_NOT_SUPPORTED; }

}  // namespace dksml
