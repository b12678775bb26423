// Whole-record clock readings: every IP's frequencies, and the real-clock
// report with the clock states.
#include <string>
#include <string_view>

#include "core/idk_device.h"
#include "features/clock/dk_clock.h"
#include "features/clock/dk_clock_labels.h"
#include "features/clock/dk_clock_text.h"

namespace dksml {
namespace {

// Fills each member from its label; a label the driver did not print leaves
// the member at count 0, and a label printed twice keeps its last line. At
// most DK_SML_CLOCK_MAX_VALUES values are taken, and the count says how many
// were. The state lines ("csc status: 1 0 ...") fill the status record the
// same way, without the vendor offset. Nothing is allocated: the text is the
// thread's scratch and the lines are walked in place. DK_SML_ERROR_SYSFS when
// no line holds a number.
DkSmlReturn ParseClocks(std::string_view text, DkSmlClocksFreqForAll& all, DkSmlClockStatusForAll* status) {
    bool anyLine = false;
    DkSmlReturn result = VisitKeyValue(text, [&](std::string_view label, const int64_t* values, std::size_t count) {
        anyLine = true;
        // Labels differ in their first letter or length far more often than
        // not: both are compared before the text.
        for (const DkClockMember& member : c_clockMembers) {
            if (member.clockLabel[0] != label[0]) continue;
            if (label == member.clockLabel) {
                DkSmlClockFreq& slot = all.*member.freq;
                slot.count = CopyClockValues(values, count, slot.freq, DK_SML_CLOCK_MAX_VALUES);
                return;
            }
            if (status != nullptr && label == member.statusLabel) {
                DkSmlClockStatus& slot = status->*member.status;
                slot.count = CopyClockValues(values, count, slot.status, DK_SML_CLOCK_MAX_VALUES);
                return;
            }
        }
    });
    if (result != DK_SML_SUCCESS) return result;
    return anyLine ? DK_SML_SUCCESS : DK_SML_ERROR_SYSFS;
}

void ApplyVendorOffset(const IDkDevice& device, DkSmlClocksFreqForAll& all) {
    const uint32_t offset = VendorClockOffset(device.GetVendorId());
    if (offset == 0) return;
    for (const DkClockMember& member : c_clockMembers) {
        if (!member.vendorAdjusted) continue;
        DkSmlClockFreq& slot = all.*member.freq;
        AddValueForArray(slot.freq, slot.count, offset);
    }
}

}  // namespace

DkSmlReturn DkClock::GetClocksFreq(IDkDevice* device, DkSmlClocksFreqForAll* all) {
    return GetDieClocksFreq(device, 0, all);
}

DkSmlReturn DkClock::GetDieClocksFreq(IDkDevice* device, unsigned int dieId, DkSmlClocksFreqForAll* all) {
    if (device == nullptr || all == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (device->IsVf()) return DK_SML_ERROR_NOT_SUPPORTED;

    std::string_view text;
    DkSmlReturn result = FetchClockText(*device, dieId, text);
    if (result != DK_SML_SUCCESS) return result;

    DkSmlClocksFreqForAll parsed{};
    result = ParseClocks(text, parsed, nullptr);
    if (result != DK_SML_SUCCESS) return result;
    ApplyVendorOffset(*device, parsed);
    *all = parsed;
    return DK_SML_SUCCESS;
}

DkSmlReturn DkClock::GetRealClocksFreq(IDkDevice* device, DkSmlClocksFreqForAll* all,
                                       DkSmlClockStatusForAll* status) {
    return GetDieRealClocksFreq(device, 0, all, status);
}

DkSmlReturn DkClock::GetDieRealClocksFreq(IDkDevice* device, unsigned int dieId, DkSmlClocksFreqForAll* all,
                                          DkSmlClockStatusForAll* status) {
    if (device == nullptr || all == nullptr || status == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (device->IsVf()) return DK_SML_ERROR_NOT_SUPPORTED;

    // The driver switches "showclocks" to the measured clocks on this write.
    DkSmlReturn result = device->SetDriverData(dieId, DRAVIK_SMI_SHOWCLOCKS, std::string(c_realClockSelector));
    if (result != DK_SML_SUCCESS) return result;

    std::string_view text;
    result = FetchClockText(*device, dieId, text);
    if (result != DK_SML_SUCCESS) return result;

    DkSmlClocksFreqForAll parsed{};
    DkSmlClockStatusForAll parsedStatus{};
    result = ParseClocks(text, parsed, &parsedStatus);
    if (result != DK_SML_SUCCESS) return result;
    ApplyVendorOffset(*device, parsed);
    *all = parsed;
    *status = parsedStatus;
    return DK_SML_SUCCESS;
}

}  // namespace dksml
