// Key-value parsing: "label: value" lines as the driver writes them, split,
// collected into containers or visited without allocation.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "dksml.h"
#include "driver/dk_text_lines.h"

namespace dksml {

// false when the line has no ':'; else tag = up to and including the first
// ':' and value = the rest (both views into `line`).
bool ExtractTagValue(std::string_view line, std::string_view& tag, std::string_view& value);

// Lines of "label: integers". A line without ':' or with an empty label fails
// the parse with DK_SML_ERROR_SYSFS; a line whose value part contains
// "not support", or that holds no integer, is skipped. Labels are trimmed of
// blanks and tabs.
using DkKeyValueList = std::vector<std::pair<std::string, std::vector<int64_t>>>;  // file order
using DkKeyValueMap = std::map<std::string, std::vector<int64_t>, std::less<>>;     // by label
// Appends every kept line to `out` in file order; status as above.
DkSmlReturn ParseKeyValue(std::string_view text, DkKeyValueList& out);
// Enters every kept line into `out` by label; status as above.
DkSmlReturn ParseKeyValue(std::string_view text, DkKeyValueMap& out);

// The same walk without building anything, for scalar queries: calls
// `visit(label, numbers, count)` for every line ParseKeyValue would keep, in
// file order, with the line's first c_kvVisitMaxNumbers numbers in a stack
// array (`count` says how many of them were kept). Returns ParseKeyValue's
// status; lines before a malformed one have been visited already, so callers
// collect into a local result and commit it only on success.
inline constexpr std::size_t c_kvVisitMaxNumbers = 32;
template <typename Visit>
DkSmlReturn VisitKeyValue(std::string_view text, Visit&& visit);

// Every number of every labelled row appended to `out` (T: int, unsigned
// int). An empty value part stops with DK_SML_ERROR_SYSFS; rows containing
// "not support" are skipped.
template <typename T>
DkSmlReturn ParseValueAfterColon(std::string_view text, std::vector<T>& out);

}  // namespace dksml

#include "driver/dk_text_impl.h"
