// Line access: a cursor over attribute text, the value extractors that pick
// the value part of one line, trimming and a "key: value" line walk.
// Everything here works on views into text the caller owns and allocates
// nothing; only the line walk answers a status.
#pragma once

#include <cstddef>
#include <string_view>

#include "dksml.h"

namespace dksml {

// The driver writes this into an attribute instead of a value when the device
// lacks the feature; a failed conversion of such text answers
// DK_SML_ERROR_NOT_SUPPORTED rather than DK_SML_ERROR_SYSFS.
inline constexpr std::string_view c_notSupportMarker = "not support";
// Blanks trimmed from key/value text.
inline constexpr std::string_view c_kvTrimSet = " \t";

// Cursor over text that yields lines the way std::getline does: the newline
// is dropped, a final line without newline is still a line, and text that
// ends in "\n" has no empty line after it. Views point into the caller's text,
// which must outlive the cursor.
class DkTextLines {
public:
    explicit DkTextLines(std::string_view text) : m_rest(text) {}
    // Next line into `line` (a view into the text); false when none is left.
    bool Next(std::string_view& line);
    // True when no line is left.
    bool AtEnd() const { return m_done || m_rest.empty(); }

private:
    std::string_view m_rest;
    bool m_done = false;
};

// Picks the value part of one line; returns a view into the line.
using ValueExtractor = std::string_view (*)(std::string_view line);

// The line as it is (view into the line).
std::string_view ExtractRawValueStr(std::string_view line);
// The part after the first ':' (the whole line when there is none); a view.
std::string_view ExtractValueStrByColon(std::string_view line);

// `text` without leading and trailing characters of `set`; a view into `text`.
std::string_view TrimView(std::string_view text, std::string_view set = c_kvTrimSet);

// Walks "key: value" lines, skipping blank ones: `visit(key, value)` gets the
// key trimmed of blanks and tabs and the raw text after the first ':';
// returning true stops the walk. DK_SML_ERROR_SYSFS when a non-blank line has
// no colon (the record is not what the driver prints), else DK_SML_SUCCESS.
template <typename Visit>
DkSmlReturn VisitColonLines(std::string_view text, Visit&& visit) {
    DkTextLines lines(text);
    std::string_view line;
    while (lines.Next(line)) {
        if (TrimView(line, " \t\r").empty()) continue;
        const std::size_t colon = line.find(':');
        if (colon == std::string_view::npos) return DK_SML_ERROR_SYSFS;
        if (visit(TrimView(line.substr(0, colon)), line.substr(colon + 1))) break;
    }
    return DK_SML_SUCCESS;
}

}  // namespace dksml
