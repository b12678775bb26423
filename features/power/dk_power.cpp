#include "features/power/dk_power.h"

namespace dksml {

// The driver side of these operations is not wired up in this version: each
// answers DK_SML_ERROR_NOT_SUPPORTED so callers see a clear status.

DkSmlReturn DkPower::GetPmbusInfo(IDkDevice*, DkSmlPmbusUnit, DkSmlPmbusInfo*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkPower::GetDiePmbusInfo(IDkDevice*, unsigned int, DkSmlPmbusUnit, DkSmlPmbusInfo*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkPower::GetBoardElectricInfo(IDkDevice*, uint32_t*, DkSmlBoardWayElectricInfo*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkPower::GetPowerState(IDkDevice*, DkSmlDpmIp, int32_t*, uint32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkPower::GetDiePowerState(IDkDevice*, unsigned int, DkSmlDpmIp, int32_t*, uint32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkPower::GetPciPowerState(IDkDevice*, DkSmlPciPowerState*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkPower::GetPowerMode(IDkDevice*, uint32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkPower::GetDiePowerMode(IDkDevice*, unsigned int, uint32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkPower::SetPowerMode(IDkDevice*, uint32_t) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkPower::SetDiePowerMode(IDkDevice*, unsigned int, uint32_t) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkPower::GetBoardPowerLimitInfo(IDkDevice*, DkSmlBoardPowerLimitInfo*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkPower::SetBoardPowerLimit(IDkDevice*, uint32_t) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkPower::GetMasterDieBoardElectricInfo(IDkDevice*, std::vector<unsigned int>&) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkPower::GetBoardPowerLimit(IDkDevice*, uint32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }

}  // namespace dksml
