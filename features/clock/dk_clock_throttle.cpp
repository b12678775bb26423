// Throttle reasons from "pmdecsrc": a die's mask, and the device's OR of all
// dies (a device is held down when any of its dies is).
#include <string>
#include <string_view>

#include "core/idk_device.h"
#include "driver/dk_text.h"
#include "features/clock/dk_clock.h"

namespace dksml {

DkSmlReturn DkClock::GetCurrentClocksThrottleReason(IDkDevice* device, uint64_t* mask) {
    if (device == nullptr || mask == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (device->IsVf()) return DK_SML_ERROR_NOT_SUPPORTED;

    *mask = 0;
    const uint32_t dieCount = device->GetDieCount();
    for (unsigned int die = 0; die < dieCount; ++die) {
        uint64_t dieMask = 0;
        DkSmlReturn result = GetDieCurrentClocksThrottleReason(device, die, &dieMask);
        if (result != DK_SML_SUCCESS) return result;
        *mask |= dieMask;
    }
    return DK_SML_SUCCESS;
}

DkSmlReturn DkClock::GetDieCurrentClocksThrottleReason(IDkDevice* device, unsigned int dieId, uint64_t* mask) {
    if (device == nullptr || mask == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (device->IsVf()) return DK_SML_ERROR_NOT_SUPPORTED;

    thread_local std::string text;  // reused: no allocation once grown
    DkSmlReturn result = device->FetchDriverData(dieId, DRAVIK_SMI_PMDECSRC, text);
    if (result != DK_SML_SUCCESS) return result;

    DkTextLines lines(text);
    std::string_view firstLine;
    if (!lines.Next(firstLine)) return DK_SML_ERROR_SYSFS;

    unsigned long long value = 0;
    result = ProcessValueByColon(firstLine, &value);
    if (result != DK_SML_SUCCESS) return result;
    *mask = value;
    return DK_SML_SUCCESS;
}

}  // namespace dksml
