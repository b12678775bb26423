#include "features/dpm/dk_dpm.h"

namespace dksml {

// The driver side of these operations is not wired up in this version: each
// answers DK_SML_ERROR_NOT_SUPPORTED so callers see a clear status.

DkSmlReturn DkDpm::GetDpmClockInfo(IDkDevice*, DkSmlDpmInfoForAll*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDpm::GetDieDpmClockInfo(IDkDevice*, unsigned int, DkSmlDpmInfoForAll*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDpm::GetDpmIpClockInfo(IDkDevice*, DkSmlDpmIp, DkSmlDpmPerfLevel*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDpm::GetDieDpmIpClockInfo(IDkDevice*, unsigned int, DkSmlDpmIp, DkSmlDpmPerfLevel*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDpm::GetDpmVddInfo(IDkDevice*, DkSmlDpmInfoForAll*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDpm::GetDieDpmVddInfo(IDkDevice*, unsigned int, DkSmlDpmInfoForAll*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDpm::GetDpmIpVddInfo(IDkDevice*, DkSmlDpmIp, DkSmlDpmPerfLevel*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDpm::GetDieDpmIpVddInfo(IDkDevice*, unsigned int, DkSmlDpmIp, DkSmlDpmPerfLevel*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDpm::GetDpmCurPerfLevel(IDkDevice*, DkSmlDpmForAll*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDpm::GetDieDpmCurPerfLevel(IDkDevice*, unsigned int, DkSmlDpmForAll*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDpm::GetCurrentDpmIpPerfLevel(IDkDevice*, DkSmlDpmIp, uint32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDpm::GetCurrentDieDpmIpPerfLevel(IDkDevice*, unsigned int, DkSmlDpmIp, uint32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDpm::SetDpmPerfLevel(IDkDevice*, DkSmlDpmIp, uint32_t) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDpm::SetDieDpmPerfLevel(IDkDevice*, unsigned int, DkSmlDpmIp, uint32_t) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDpm::GetDpmMaxPerfLevel(IDkDevice*, DkSmlDpmForAll*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDpm::GetDieDpmMaxPerfLevel(IDkDevice*, unsigned int, DkSmlDpmForAll*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDpm::GetDpmIpMaxPerfLevel(IDkDevice*, DkSmlDpmIp, uint32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDpm::GetDieDpmIpMaxPerfLevel(IDkDevice*, unsigned int, DkSmlDpmIp, uint32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDpm::GetAllDpmMaxPerfLevel(IDkDevice*, DkSmlDpmMaxForAll*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDpm::GetDieAllDpmMaxPerfLevel(IDkDevice*, unsigned int, DkSmlDpmMaxForAll*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDpm::SetDpmMaxPerfLevel(IDkDevice*, DkSmlDpmIp, uint32_t) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDpm::SetDieDpmMaxPerfLevel(IDkDevice*, unsigned int, DkSmlDpmIp, uint32_t) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDpm::SetK3XcoreMaxPerfLevel(IDkDevice*, uint32_t) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDpm::SetK3DieXcoreMaxPerfLevel(IDkDevice*, unsigned int, uint32_t) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDpm::SetDpmPerfLevelRotation(IDkDevice*, DkSmlDpmIp) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDpm::GetDpmInterval(IDkDevice*, DkSmlDpmInterval*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDpm::GetDieDpmInterval(IDkDevice*, unsigned int, DkSmlDpmInterval*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDpm::SetDpmInterval(IDkDevice*, DkSmlDpmIp, uint16_t) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDpm::SetDieDpmInterval(IDkDevice*, unsigned int, DkSmlDpmIp, uint16_t) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDpm::GetDpmCounter(IDkDevice*, DkSmlDpmCounterForAll*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDpm::GetDieDpmCounter(IDkDevice*, unsigned int, DkSmlDpmCounterForAll*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDpm::ClearDpmCounter(IDkDevice*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDpm::ClearDieDpmCounter(IDkDevice*, unsigned int) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDpm::GetDpmMaxLevel(IDkDevice*, DkSmlDpmMaxForAll*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDpm::SetDpmMaxLevel(IDkDevice*, DkSmlDpmIp, uint32_t) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDpm::GetDpmBackup(IDkDevice*, DkSmlDpmInfoForAll*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDpm::SetDpmBackup(IDkDevice*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDpm::GetDpmCurrent(IDkDevice*, DkSmlDpmInfoForAll*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDpm::GetDpmHide(IDkDevice*, DkSmlDpmIp, uint32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDpm::SetDpmHide(IDkDevice*, DkSmlDpmIp, uint32_t) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDpm::SetDpmInfo(IDkDevice*, DkSmlDpmIp, uint32_t, uint32_t) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkDpm::GetDpmParam(IDkDevice*, DkSmlDpmIp, DkSmlDpmPerfLevel*) { return DK_SML_ERROR_NOT_SUPPORTED; }

}  // namespace dksml
