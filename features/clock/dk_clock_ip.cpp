// One IP's clock frequencies into a caller-sized array.
#include <cstddef>
#include <string>
#include <vector>

#include "core/idk_device.h"
#include "features/clock/dk_clock.h"
#include "features/clock/dk_clock_labels.h"
#include "features/clock/dk_clock_text.h"
#include "features/temperature/dk_telemetry_gate.h"

namespace dksml {
namespace {

// Boards that print one "xpu clock" line carry the video and ccx clocks in it:
// encoder, four decoders, then ccx. Any other shape of that line is a driver
// we do not understand.
DkSmlReturn RedistributeXpuClock(DkKeyValueMap& labels) {
    auto xpu = labels.find(c_xpuClockLabel);
    if (xpu == labels.end()) return DK_SML_SUCCESS;
    if (xpu->second.size() != c_xpuClockValueCount) return DK_SML_ERROR_FAILURE;

    const std::vector<int64_t> values = xpu->second;
    labels.insert_or_assign(std::string(c_vpueClockLabel), std::vector<int64_t>{values[0]});
    labels.insert_or_assign(std::string(c_vpudClockLabel), std::vector<int64_t>(values.begin() + 1, values.begin() + 5));
    labels.insert_or_assign(std::string(c_ccxClockLabel), std::vector<int64_t>{values[5]});
    return DK_SML_SUCCESS;
}

// First label (in map order) that contains the IP's label.
const std::vector<int64_t>* FindIpLine(const DkKeyValueMap& labels, DkSmlClockIp ip) {
    std::string wanted(c_clockIpNames[ip]);
    wanted += c_clockLabelSuffix;
    for (const auto& [label, values] : labels) {
        if (label.find(wanted) != std::string::npos) return &values;
    }
    return nullptr;
}

}  // namespace

DkSmlReturn DkClock::GetIpClocksFreq(IDkDevice* device, DkSmlClockIp ip, uint32_t* count, uint32_t* freqs) {
    return GetDieIpClocksFreq(device, 0, ip, count, freqs);
}

DkSmlReturn DkClock::GetDieIpClocksFreq(IDkDevice* device, unsigned int dieId, DkSmlClockIp ip,
                                        uint32_t* count, uint32_t* freqs) {
    if (device == nullptr || count == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (static_cast<std::size_t>(ip) >= c_clockIpNames.size()) return DK_SML_ERROR_INVALID_INPUT;
    if (device->IsVf()) return DK_SML_ERROR_NOT_SUPPORTED;

    DkKeyValueMap labels;
    DkSmlReturn result = ReadClockLabels(*device, dieId, labels);
    if (result != DK_SML_SUCCESS) return result;
    result = RedistributeXpuClock(labels);
    if (result != DK_SML_SUCCESS) return result;

    const std::vector<int64_t>* values = FindIpLine(labels, ip);
    if (values == nullptr) return DK_SML_ERROR_NOT_SUPPORTED;

    // The count tells the caller the size it needs even when it is too small.
    const uint32_t capacity = *count;
    *count = static_cast<uint32_t>(values->size());
    if (capacity < values->size()) return DK_SML_ERROR_INSUFFICIENT_SIZE;
    if (freqs == nullptr && !values->empty()) return DK_SML_ERROR_INVALID_INPUT;

    const uint32_t copied = CopyClockValues(*values, freqs, capacity);
    if (IsTelemetryBrand(device->GetDeviceBrand())) {
        AddValueForArray(freqs, copied, VendorClockOffset(device->GetVendorId()));
    }
    return DK_SML_SUCCESS;
}

}  // namespace dksml
