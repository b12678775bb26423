// Number conversion: formatted extraction of numbers from attribute text, the
// readers that take one value per line, and the standard-style conversions.
// Outputs are the caller's; on failure they are left as each function says.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "dksml.h"
#include "driver/dk_text_lines.h"

namespace dksml {

// One number from `text` with the rules of `std::istream >> T`: leading white
// space skipped, decimal, stops at the first character that cannot belong to
// the number, trailing text ignored. T: int, unsigned int, long, unsigned
// long, long long, unsigned long long, short, unsigned short, float, double.
// Unsigned types accept a leading '-' and wrap as libstdc++ does ("-1" gives
// the maximum); overflow fails. False and `out` untouched on failure.
// (ReadSysfs also accepts bool and std::string outputs with the stream's
// rules: bool reads 0 or 1, std::string reads one blank-delimited word.)
template <typename T>
bool ExtractNumber(std::string_view text, T& out);

// One value of each output type from successive lines of `lines`.
// DK_SML_ERROR_SYSFS when a line is missing; when no number can be extracted,
// DK_SML_ERROR_NOT_SUPPORTED if the extracted text contains "not support",
// else DK_SML_ERROR_SYSFS. Values already stored stay.
template <typename... T>
DkSmlReturn ReadSysfs(DkTextLines& lines, ValueExtractor extractor, T&... out);
// The same on a file: DK_SML_ERROR_FAILURE when `extractor` is null,
// DK_SML_ERROR_SYSFS when the file cannot be read.
template <typename... T>
DkSmlReturn ReadSysfs(const std::string& path, ValueExtractor extractor, T&... out);

// Line parser: one line into one output, returning its status.
template <typename T>
using LineParser = DkSmlReturn (*)(std::string_view line, T* out);

// For each of `outCount` outputs in order: the next line (none:
// DK_SML_ERROR_SYSFS) through the parser; the first non-success is returned.
template <typename T>
DkSmlReturn ReadSysfs(DkTextLines& lines, LineParser<T> parser, T* out, std::size_t outCount = 1);
// The same on a file: DK_SML_ERROR_FAILURE when `parser` is null,
// DK_SML_ERROR_SYSFS when the file cannot be read.
template <typename T>
DkSmlReturn ReadSysfs(const std::string& path, LineParser<T> parser, T* out, std::size_t outCount = 1);

// One line from the cursor (none: DK_SML_ERROR_SYSFS) handed to the parser;
// returns the parser's status.
template <typename T>
DkSmlReturn ReadStringStream(DkTextLines& lines, LineParser<T> parser, T* out);

// Number after the first ':' (whole line when none) by formatted extraction;
// DK_SML_ERROR_SYSFS when there is none (no "not support" check). T: int,
// unsigned int, long, unsigned long long.
template <typename T>
DkSmlReturn ProcessValueByColon(std::string_view line, T* out);

// Standard conversion to int (leading white space, optional sign, trailing
// text ignored, result must fit); throws DK_SML_ERROR_NOT_SUPPORTED when the
// text contains "not support", else DK_SML_ERROR_SYSFS.
int stoi(std::string_view text, int base = 10);

// Guard against argument-dependent lookup: inside namespace dksml an
// unqualified stoi(someStdString) would otherwise pick std::stoi, which throws
// std::invalid_argument instead of a DkSmlReturn. These overloads win for
// non-const and temporary strings and for string literals; a const
// std::string argument is ambiguous on purpose (a compile error, never the
// wrong function): write dksml::stoi(...) or pass a std::string_view.
inline int stoi(const char* text, int base = 10) { return stoi(std::string_view(text), base); }
inline int stoi(std::string& text, int base = 10) { return stoi(std::string_view(text), base); }
inline int stoi(std::string&& text, int base = 10) { return stoi(std::string_view(text), base); }
inline int stoi(const std::string& text, int base = 10) { return stoi(std::string_view(text), base); }

// Non-throwing conversions: true and `out` set on success, false and `out`
// untouched (same acceptance as the standard functions).
bool stoi_nt(std::string_view text, int& out, int base = 10);
// Unsigned long, as std::stoul accepts it; false and `out` untouched on failure.
bool stoul_nt(std::string_view text, unsigned long& out, int base = 10);
// Float, as std::stof accepts it; false and `out` untouched on failure.
bool stof_nt(std::string_view text, float& out);
// Unsigned-long conversion cut to the low 32 bits on purpose ("-1" ->
// 4294967295); false and `out` untouched on failure.
bool stoui_nt(std::string_view text, unsigned int& out, int base = 10);

// True when `text` is non-empty and decimal digits only.
bool IsNumber(std::string_view text);

}  // namespace dksml

#include "driver/dk_text_impl.h"
