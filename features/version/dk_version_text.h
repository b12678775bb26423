// The version copy rule and the firmware-text lookups shared by the version
// operations. Every function leaves a terminated text in the caller's buffer
// whenever the buffer has room for one character.
#pragma once

#include <cstdint>
#include <string_view>

#include "dksml.h"

namespace dksml {

inline constexpr std::string_view c_unknown = "unknown";
inline constexpr std::string_view c_fwNotSupport = "not support";

// Unit value -> key of the firmware text ("showfwinfo").
struct DkFwUnitRow {
    DkSmlVersionUnit unit;
    std::string_view key;
};
extern const DkFwUnitRow c_fwUnitName[9];

// "" for a unit without a firmware key.
std::string_view FwUnitKey(DkSmlVersionUnit unit);

// Copies `text` cut to `capacity` - 1 characters and terminates it (nothing
// when `capacity` is 0).
void PutText(std::string_view text, char* buffer, uint32_t capacity);

// A text given whole (the compute stack's version): copied when it fits,
// else "unknown" and DK_SML_ERROR_INSUFFICIENT_SIZE.
DkSmlReturn AnswerWholeText(std::string_view text, char* buffer, uint32_t size);

// The value of a version text: after the first ':' (the whole text when it
// has none), blanks and tabs trimmed at the start, blanks, tabs, carriage
// returns and newlines at the end.
std::string_view VersionValue(std::string_view text);

// The copy rule: "unknown" first; an empty value gives DK_SML_ERROR_SYSFS; the
// value is copied when *size > its length (DK_SML_SUCCESS), else
// DK_SML_ERROR_INSUFFICIENT_SIZE; *size becomes its length + 1.
DkSmlReturn CopyVersionValue(std::string_view value, char* buffer, uint32_t* size);

// Value of the first firmware line whose key contains `name`. DK_SML_ERROR_NOT_SUPPORTED
// when none, DK_SML_ERROR_SYSFS when a non-empty line has no colon.
DkSmlReturn FindFirmwareValue(std::string_view text, std::string_view name, std::string_view& value);

// Each of the nine keys into its field of `record` (exact key match); fields
// of absent keys keep what they hold. DK_SML_ERROR_SYSFS when a non-empty line has no
// colon.
DkSmlReturn FillFirmwareRecord(std::string_view text, DkSmlFwVersion& record);

// "unknown" in the first two fields, "not support" in the other seven.
void InitFirmwareRecord(DkSmlFwVersion& record);

}  // namespace dksml
