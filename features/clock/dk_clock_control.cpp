// Clock control (spread spectrum, forced clocks and dividers, local clock
// debug) is not offered by this library version; every slot answers
// DK_SML_ERROR_NOT_SUPPORTED so that
// callers can tell it apart from a driver error.
#include "features/clock/dk_clock.h"

namespace dksml {

DkSmlReturn DkClock::GetClockSsMode(IDkDevice*, uint32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkClock::GetDieClockSsMode(IDkDevice*, unsigned int, uint32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkClock::SetClockSsMode(IDkDevice*, uint32_t) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkClock::SetDieClockSsMode(IDkDevice*, unsigned int, uint32_t) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkClock::DisableClockSsMode(IDkDevice*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkClock::DisableDieClockSsMode(IDkDevice*, unsigned int) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkClock::SetClockIp(IDkDevice*, DkSmlClockIp, uint32_t) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkClock::SetDieClockIp(IDkDevice*, unsigned int, DkSmlClockIp, uint32_t) {
    return DK_SML_ERROR_NOT_SUPPORTED;
}
DkSmlReturn DkClock::SetClockDid(IDkDevice*, DkSmlClockIp, uint32_t) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkClock::SetDieClockDid(IDkDevice*, unsigned int, DkSmlClockIp, uint32_t) {
    return DK_SML_ERROR_NOT_SUPPORTED;
}
DkSmlReturn DkClock::StartClockDebugLocal(IDkDevice*, uint32_t) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkClock::StartDieClockDebugLocal(IDkDevice*, unsigned int, uint32_t) {
    return DK_SML_ERROR_NOT_SUPPORTED;
}

}  // namespace dksml
