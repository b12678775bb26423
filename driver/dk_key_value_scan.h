// Allocation-free forms of the key/value readers for the scalar telemetry
// paths: the attribute text goes into a per-thread buffer that keeps its
// capacity between calls, and the lines are walked as string views.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "driver/dk_text.h"

namespace dksml {

// Per-thread text buffer for one attribute read. A caller must be done with
// the text before the next fetch into the same buffer.
inline std::string& ScratchText() {
    thread_local std::string text;
    return text;
}

// Walks "label: integers" lines with the acceptance rules of ParseKeyValue
// and calls `visit(label, valueText)` for every line it would keep (at least
// one integer, no "not support"). Every line is checked even after the
// visitor found what it wanted, so a malformed line anywhere answers DK_SML_ERROR_SYSFS just
// as the container form does.
template <typename Visit>
DkSmlReturn ScanKeyValueLines(std::string_view text, Visit&& visit) {
    DkTextLines lines(text);
    std::string_view line;
    while (lines.Next(line)) {
        const std::size_t colon = line.find(':');
        if (colon == std::string_view::npos) return DK_SML_ERROR_SYSFS;
        const std::string_view label = TrimView(line.substr(0, colon), c_kvTrimSet);
        if (label.empty()) return DK_SML_ERROR_SYSFS;
        const std::string_view value = line.substr(colon + 1);
        if (detail::ContainsNotSupport(value)) continue;
        std::size_t pos = 0;
        int64_t first = 0;
        if (detail::Scan<int64_t>(value, pos, first) != detail::ScanStatus::Ok) continue;
        visit(label, value);
    }
    return DK_SML_SUCCESS;
}

}  // namespace dksml
