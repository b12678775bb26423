// One IP's clock frequencies into a caller-sized array.
//
// The answer is the line whose label contains "<ip> clock", the smallest
// such label in byte order when several do, a label printed twice keeping
// its last line. Boards that print one "xpu clock" line carry the video and
// ccx clocks in it (encoder, four decoders, then ccx), and those replace any
// "vpue clock", "vpud clock" or "ccx clock" lines. The text is the thread's
// scratch and is walked in place: nothing is allocated.
#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>
#include <string_view>

#include "core/idk_device.h"
#include "features/clock/dk_clock.h"
#include "features/clock/dk_clock_labels.h"
#include "features/clock/dk_clock_text.h"
#include "features/temperature/dk_telemetry_gate.h"

namespace dksml {
namespace {

// One line's numbers as far as the walk keeps them.
struct DkClockLine {
    std::string_view label;
    int64_t values[c_kvVisitMaxNumbers] = {};
    std::size_t count = 0;
    bool found = false;
    bool fromXpu = false;  // a share of the "xpu clock" line, not a line of the text

    void Take(std::string_view lineLabel, const int64_t* numbers, std::size_t n, bool xpuShare = false) {
        label = lineLabel;
        fromXpu = xpuShare;
        count = std::min(n, c_kvVisitMaxNumbers);
        std::copy(numbers, numbers + count, values);
        found = true;
    }
};

// The lines an "xpu clock" line replaces, with the slice of its six values each gets.
struct DkXpuShare {
    std::string_view label;
    std::size_t first;
    std::size_t count;
};
constexpr DkXpuShare c_xpuShares[] = {
    {c_vpueClockLabel, 0, 1},
    {c_vpudClockLabel, 1, 4},
    {c_ccxClockLabel, 5, 1},
};

bool IsXpuShare(std::string_view label) {
    for (const DkXpuShare& share : c_xpuShares)
        if (label == share.label) return true;
    return false;
}

// The smallest label wins; the same label printed again replaces its line.
void Consider(DkClockLine& best, std::string_view wanted, std::string_view label, const int64_t* numbers,
              std::size_t count, bool xpuShare = false) {
    if (label.find(wanted) == std::string_view::npos) return;
    if (!best.found || label <= best.label) best.Take(label, numbers, count, xpuShare);
}

// The IP's line, or 3 when there is none; 1 when the xpu line is not six
// values; the parse status when the text is malformed.
DkSmlReturn FindIpLine(std::string_view text, std::string_view wanted, DkClockLine& best) {
    DkClockLine xpu;
    DkSmlReturn result = VisitKeyValue(text, [&](std::string_view label, const int64_t* numbers, std::size_t count) {
        if (label == c_xpuClockLabel) xpu.Take(label, numbers, count);
    });
    if (result != DK_SML_SUCCESS) return result;
    if (xpu.found && xpu.count != c_xpuClockValueCount) return DK_SML_ERROR_FAILURE;

    VisitKeyValue(text, [&](std::string_view label, const int64_t* numbers, std::size_t count) {
        if (!xpu.found || !IsXpuShare(label)) Consider(best, wanted, label, numbers, count);
    });
    if (xpu.found) {
        for (const DkXpuShare& share : c_xpuShares)
            Consider(best, wanted, share.label, xpu.values + share.first, share.count, true);
    }
    return best.found ? DK_SML_SUCCESS : DK_SML_ERROR_NOT_SUPPORTED;
}

// The whole line a label of `text` sits on.
std::string_view LineOf(std::string_view text, std::string_view label) {
    const std::size_t at = static_cast<std::size_t>(label.data() - text.data());
    const std::size_t newline = at == 0 ? std::string_view::npos : text.rfind('\n', at - 1);
    const std::size_t start = newline == std::string_view::npos ? 0 : newline + 1;
    const std::size_t end = text.find('\n', at);
    return text.substr(start, end == std::string_view::npos ? std::string_view::npos : end - start);
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

    std::string_view text;
    DkSmlReturn result = FetchClockText(*device, dieId, text);
    if (result != DK_SML_SUCCESS) return result;

    char wanted[32];
    const std::string_view name = c_clockIpNames[ip];
    const std::size_t length = name.size() + c_clockLabelSuffix.size();
    std::copy(name.begin(), name.end(), wanted);
    std::copy(c_clockLabelSuffix.begin(), c_clockLabelSuffix.end(), wanted + name.size());

    DkClockLine line;
    result = FindIpLine(text, std::string_view(wanted, length), line);
    if (result != DK_SML_SUCCESS) return result;
    const int64_t* values = line.values;
    std::size_t size = line.count;
    // A line of more numbers than the walk keeps is parsed again whole; no
    // driver prints that many, so only then is anything allocated.
    DkKeyValueList longLine;
    if (size == c_kvVisitMaxNumbers && !line.fromXpu && ParseKeyValue(LineOf(text, line.label), longLine) == DK_SML_SUCCESS &&
        !longLine.empty()) {
        values = longLine.front().second.data();
        size = longLine.front().second.size();
    }

    // The count tells the caller the size it needs even when it is too small.
    const uint32_t capacity = *count;
    *count = static_cast<uint32_t>(size);
    if (capacity < size) return DK_SML_ERROR_INSUFFICIENT_SIZE;
    if (freqs == nullptr && size != 0) return DK_SML_ERROR_INVALID_INPUT;

    const uint32_t copied = CopyClockValues(values, size, freqs, capacity);
    if (IsTelemetryBrand(device->GetDeviceBrand())) {
        AddValueForArray(freqs, copied, VendorClockOffset(device->GetVendorId()));
    }
    return DK_SML_SUCCESS;
}

}  // namespace dksml
