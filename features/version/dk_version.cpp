#include "features/version/dk_version.h"

namespace dksml {

// The driver side of these operations is not wired up in this version: each
// answers DK_SML_ERROR_NOT_SUPPORTED so callers see a clear status.

DkSmlReturn DkVersion::GetVersion(IDkDevice*, DkSmlVersion*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkVersion::GetDieVersion(IDkDevice*, unsigned int, DkSmlVersion*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkVersion::GetDieUnitVersion(IDkDevice*, unsigned int, DkSmlVersionUnit, char*, uint32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkVersion::GetBiosVersion(const std::string&, char*, uint32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkVersion::GetPptableVersion(IDkDevice*, char*, uint32_t) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkVersion::GetDiePptableVersion(IDkDevice*, unsigned int, char*, uint32_t) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkVersion::GetVornVersion(char*, uint32_t) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkVersion::GetDkqVornVersion(char*, uint32_t) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkVersion::GetDkkVornVersion(char*, uint32_t) { return DK_SML_ERROR_NOT_SUPPORTED; }

}  // namespace dksml
