#include "features/clock/dk_clock_text.h"

#include <algorithm>
#include <limits>
#include <string>

#include "core/idk_device.h"

namespace dksml {

DkSmlReturn ReadClockLabels(IDkDevice& device, unsigned int dieId, DkKeyValueMap& labels) {
    std::string text;
    DkSmlReturn result = device.FetchDriverData(dieId, DRAVIK_SMI_SHOWCLOCKS, text);
    if (result != DK_SML_SUCCESS) return result;
    return ParseKeyValue(text, labels);
}

DkSmlReturn FetchClockText(IDkDevice& device, unsigned int dieId, std::string_view& text) {
    thread_local std::string scratch;
    DkSmlReturn result = device.FetchDriverData(dieId, DRAVIK_SMI_SHOWCLOCKS, scratch);
    if (result == DK_SML_SUCCESS) text = scratch;
    return result;
}

uint32_t CopyClockValues(const std::vector<int64_t>& values, uint32_t* slots, std::size_t capacity) {
    return CopyClockValues(values.data(), values.size(), slots, capacity);
}

uint32_t CopyClockValues(const int64_t* values, std::size_t count, uint32_t* slots, std::size_t capacity) {
    const std::size_t copied = std::min(count, capacity);
    constexpr int64_t maxValue = std::numeric_limits<uint32_t>::max();
    for (std::size_t i = 0; i < copied; ++i) {
        slots[i] = static_cast<uint32_t>(std::clamp<int64_t>(values[i], 0, maxValue));
    }
    return static_cast<uint32_t>(copied);
}

}  // namespace dksml
