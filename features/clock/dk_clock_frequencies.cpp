// Whole-record clock readings: every IP's frequencies, and the real-clock
// report with the clock states.
#include <string>

#include "core/idk_device.h"
#include "features/clock/dk_clock.h"
#include "features/clock/dk_clock_labels.h"
#include "features/clock/dk_clock_text.h"

namespace dksml {
namespace {

// Fills each member from its label; a label the driver did not print leaves
// the member at count 0. At most DK_SML_CLOCK_MAX_VALUES values are taken, and
// the count says how many were.
void FillFrequencies(const DkKeyValueMap& labels, DkSmlClocksFreqForAll& all) {
    all = DkSmlClocksFreqForAll{};
    for (const DkClockMember& member : c_clockMembers) {
        auto line = labels.find(member.clockLabel);
        if (line == labels.end()) continue;
        DkSmlClockFreq& slot = all.*member.freq;
        slot.count = CopyClockValues(line->second, slot.freq, DK_SML_CLOCK_MAX_VALUES);
    }
}

// The state lines ("csc status: 1 0 ...") fill the status record exactly as
// the clock lines fill the frequency record: the count, then up to nine
// states as the driver prints them. States get no vendor offset.
void FillStatus(const DkKeyValueMap& labels, DkSmlClockStatusForAll& status) {
    status = DkSmlClockStatusForAll{};
    for (const DkClockMember& member : c_clockMembers) {
        auto line = labels.find(member.statusLabel);
        if (line == labels.end()) continue;
        DkSmlClockStatus& slot = status.*member.status;
        slot.count = CopyClockValues(line->second, slot.status, DK_SML_CLOCK_MAX_VALUES);
    }
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

DkSmlReturn ReadNonEmptyClockLabels(IDkDevice& device, unsigned int dieId, DkKeyValueMap& labels) {
    DkSmlReturn result = ReadClockLabels(device, dieId, labels);
    if (result != DK_SML_SUCCESS) return result;
    return labels.empty() ? DK_SML_ERROR_SYSFS : DK_SML_SUCCESS;
}

}  // namespace

DkSmlReturn DkClock::GetClocksFreq(IDkDevice* device, DkSmlClocksFreqForAll* all) {
    return GetDieClocksFreq(device, 0, all);
}

DkSmlReturn DkClock::GetDieClocksFreq(IDkDevice* device, unsigned int dieId, DkSmlClocksFreqForAll* all) {
    if (device == nullptr || all == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (device->IsVf()) return DK_SML_ERROR_NOT_SUPPORTED;

    DkKeyValueMap labels;
    DkSmlReturn result = ReadNonEmptyClockLabels(*device, dieId, labels);
    if (result != DK_SML_SUCCESS) return result;

    FillFrequencies(labels, *all);
    ApplyVendorOffset(*device, *all);
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

    DkKeyValueMap labels;
    result = ReadNonEmptyClockLabels(*device, dieId, labels);
    if (result != DK_SML_SUCCESS) return result;

    FillFrequencies(labels, *all);
    FillStatus(labels, *status);
    ApplyVendorOffset(*device, *all);
    return DK_SML_SUCCESS;
}

}  // namespace dksml
