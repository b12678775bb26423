// Text access and parsing helpers: the only code that turns the driver's
// attribute text into numbers. Their acceptance rules, separators and status
// codes are the library's contract with the driver.
//
// Hot paths read a file with one open/read/close into a buffer and walk it as
// std::string_view lines (DkTextLines); no streams, no regex, no exceptions on
// success. The throwing readers (GetValue family) throw a DkSmlReturn value on
// failure only; the feature service that calls them catches it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "dksml.h"

namespace dksml {

// The driver writes this into an attribute instead of a value when the device
// lacks the feature; a failed conversion of such text answers 3, not 4.
inline constexpr std::string_view c_notSupportMarker = "not support";
// Blanks trimmed from key/value text.
inline constexpr std::string_view c_kvTrimSet = " \t";

// ---------------------------------------------------------------------------
// Lines
// ---------------------------------------------------------------------------

// Cursor over text that yields lines the way std::getline does: the newline
// is dropped, a final line without newline is still a line, and text that
// ends in "\n" has no empty line after it.
class DkTextLines {
public:
    explicit DkTextLines(std::string_view text) : m_rest(text) {}
    bool Next(std::string_view& line);
    bool AtEnd() const { return m_done || m_rest.empty(); }

private:
    std::string_view m_rest;
    bool m_done = false;
};

// ---------------------------------------------------------------------------
// Files and environment
// ---------------------------------------------------------------------------

bool CheckIfFileExist(const std::string& path);
bool CheckIfFileExist(const char* path);
bool CheckIfFileReadable(const std::string& path);
bool CheckIfFileWritable(const std::string& path);

// The variable's value when set, else `fallback`; `suffix` appended in both cases.
std::string GetEnv(const char* name, std::string_view suffix, std::string_view fallback);

// Largest file the readers accept; a larger one answers 4 instead of being
// read without end.
inline constexpr std::size_t c_maxAttributeBytes = std::size_t{1} << 20;

// Whole file into `text` with one open, one read (more only when the first
// filled its buffer), one close. Only regular files up to c_maxAttributeBytes
// are read; the open never blocks. 4 when it cannot be opened or read; `text`
// is changed only on success and reuses its capacity.
DkSmlReturn ReadFileText(const std::string& path, std::string& text);
DkSmlReturn ReadFileText(const char* path, std::string& text);

// The same for `name` relative to the directory descriptor `dirFd`, with the
// open's errno mapped: 3 when the file (or the directory, dirFd < 0) is
// absent, 4 when it exists but cannot be opened or read.
DkSmlReturn ReadFileTextAt(int dirFd, const char* name, std::string& text);

// `text` + "\n" written in one write to the existing file `name` relative to
// `dirFd` (truncated first): 3 absent, 4 unopenable, 5 refused by the driver.
DkSmlReturn WriteFileTextAt(int dirFd, const char* name, std::string_view text);

// ---------------------------------------------------------------------------
// Value extractors
// ---------------------------------------------------------------------------

using ValueExtractor = std::string_view (*)(std::string_view line);

std::string_view ExtractRawValueStr(std::string_view line);               // line as is
std::string_view ExtractValueStrByColon(std::string_view line);           // after first ':'
std::string_view ExtractValueStrSeparatedBySpace(std::string_view line);  // after first ' '

// ---------------------------------------------------------------------------
// Reading one value per line (never throw)
// ---------------------------------------------------------------------------

// Formatted extraction of one number from text with the rules of
// `std::istream >> T`: leading white space skipped, decimal, stops at the
// first character that cannot belong to the number, trailing text ignored.
// Supported T: int, unsigned int, long, unsigned long, long long,
// unsigned long long, short, unsigned short, float, double.
// Unsigned types accept a leading '-' and wrap as libstdc++ does ("-1" gives
// the maximum); overflow fails. `out` is left untouched on failure.
// (ReadSysfs also accepts bool and std::string outputs with the stream's rules:
// bool reads 0 or 1, std::string reads one blank-delimited word.)
template <typename T>
bool ExtractNumber(std::string_view text, T& out);

// One value of each output type from successive lines of `lines`.
// 4 when a line is missing; when no number can be extracted, 3 if the
// extracted text contains "not support", else 4. Values already stored stay.
template <typename... T>
DkSmlReturn ReadSysfs(DkTextLines& lines, ValueExtractor extractor, T&... out);

// The same on a file: 1 when `extractor` is null, 4 when the file cannot be read.
template <typename... T>
DkSmlReturn ReadSysfs(const std::string& path, ValueExtractor extractor, T&... out);

// Line parser: one line into one output.
template <typename T>
using LineParser = DkSmlReturn (*)(std::string_view line, T* out);

// For each output in order: next line (none: 4), parser result (first non-zero returned).
template <typename T>
DkSmlReturn ReadSysfs(DkTextLines& lines, LineParser<T> parser, T* out, std::size_t outCount = 1);
// The same on a file: 1 when `parser` is null, 4 when the file cannot be read.
template <typename T>
DkSmlReturn ReadSysfs(const std::string& path, LineParser<T> parser, T* out, std::size_t outCount = 1);

// One line from the cursor (none: 4), handed to the parser.
template <typename T>
DkSmlReturn ReadStringStream(DkTextLines& lines, LineParser<T> parser, T* out);

// Number after the first ':' (whole line when none) by formatted extraction;
// 4 when there is none. Does not look for "not support".
// Instantiated for int, unsigned int, long, unsigned long long.
template <typename T>
DkSmlReturn ProcessValueByColon(std::string_view line, T* out);

// Every number of every labelled row, appended to `out` (int, unsigned int).
// An empty value part stops with 4; rows containing "not support" are skipped.
template <typename T>
DkSmlReturn ParseValueAfterColon(std::string_view text, std::vector<T>& out);

// ---------------------------------------------------------------------------
// Key/value text
// ---------------------------------------------------------------------------

// false when the line has no ':'; else tag = up to and including the first
// ':' and value = the rest.
bool ExtractTagValue(std::string_view line, std::string_view& tag, std::string_view& value);

// "Key: value" lines flattened into "Key:value;Key:value;" (values trimmed of
// blanks and tabs), truncated to size - 1 characters. A line without ':' gives 4.
DkSmlReturn GetKVData(std::string_view text, char* buffer, std::size_t size);

// Lines of "label: integers". A line without ':' or with an empty label fails
// the parse with 4; a line whose value part contains "not support", or that
// holds no integer, is skipped. Labels are trimmed of blanks and tabs.
using DkKeyValueList = std::vector<std::pair<std::string, std::vector<int64_t>>>;  // file order
using DkKeyValueMap = std::map<std::string, std::vector<int64_t>, std::less<>>;     // by label
DkSmlReturn ParseKeyValue(std::string_view text, DkKeyValueList& out);
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

// ---------------------------------------------------------------------------
// Writing
// ---------------------------------------------------------------------------

// Opens with truncation (4 when it cannot), writes the values separated by one
// blank and followed by "\n" in a single write, closes; 5 when the write or
// close fails. Integers and enumerations in decimal, bool as 0/1, floating
// values with six significant digits, strings and character arrays as they are.
template <typename... T>
DkSmlReturn WriteSysfs(const std::string& path, const T&... values);

// ---------------------------------------------------------------------------
// Throwing readers: one line from the cursor, 4 thrown when there is none
// ---------------------------------------------------------------------------

void GetValue(DkTextLines& lines, std::string& out);               // after ':', untrimmed
void GetValue(DkTextLines& lines, unsigned short& out);            // stoi, 0..65535 else 4
void GetValue(DkTextLines& lines, unsigned int& out, int base);    // ':' required
void GetValue(DkTextLines& lines, int& out);
void GetValue(DkTextLines& lines, long& out);
void GetValue(DkTextLines& lines, unsigned long& out);
void GetValueSpace(DkTextLines& lines, unsigned int& out);         // after first blank
void GetValueD(DkTextLines& lines, int& out);                      // whole line, base 0
void GetValueD(DkTextLines& lines, unsigned int& out);             // whole line, base 0
void GetValueD(DkTextLines& lines, unsigned long& out);            // whole line, base 10

// After ':' up to `count` decimal (hex for GetHexArrayValue, "0x" optional)
// numbers; slots past the failing one keep `fill`, the failing slot gets the
// stream's failure value (0 when there was no number, the type's limit when
// the number overflowed).
template <typename T>
void GetArrayValue(DkTextLines& lines, T* values, std::size_t count, T fill);
void GetHexArrayValue(DkTextLines& lines, unsigned int* values, std::size_t count, unsigned int fill);

// GetKVData on the remaining lines; throws 4 where GetKVData returns 4.
void GetData(DkTextLines& lines, char* buffer, std::size_t size);

// ---------------------------------------------------------------------------
// Conversions
// ---------------------------------------------------------------------------

// Standard conversions (leading white space, optional sign, trailing text
// ignored, result must fit). stoi throws 3 when the text contains
// "not support", else 4; the others throw 4.
int stoi(std::string_view text, int base = 10);
unsigned long stoul(std::string_view text, int base = 10);
long stol(std::string_view text);
float stof(std::string_view text);

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
inline unsigned long stoul(const char* text, int base = 10) { return stoul(std::string_view(text), base); }
inline unsigned long stoul(std::string& text, int base = 10) { return stoul(std::string_view(text), base); }
inline unsigned long stoul(std::string&& text, int base = 10) { return stoul(std::string_view(text), base); }
inline unsigned long stoul(const std::string& text, int base = 10) { return stoul(std::string_view(text), base); }
inline long stol(const char* text) { return stol(std::string_view(text)); }
inline long stol(std::string& text) { return stol(std::string_view(text)); }
inline long stol(std::string&& text) { return stol(std::string_view(text)); }
inline long stol(const std::string& text) { return stol(std::string_view(text)); }
inline float stof(const char* text) { return stof(std::string_view(text)); }
inline float stof(std::string& text) { return stof(std::string_view(text)); }
inline float stof(std::string&& text) { return stof(std::string_view(text)); }
inline float stof(const std::string& text) { return stof(std::string_view(text)); }

// Non-throwing forms: true and `out` set on success, false and `out` untouched.
bool stoi_nt(std::string_view text, int& out, int base = 10);
bool stoul_nt(std::string_view text, unsigned long& out, int base = 10);
bool stof_nt(std::string_view text, float& out);
// Unsigned-long conversion cut to the low 32 bits on purpose ("-1" -> 4294967295).
bool stoui_nt(std::string_view text, unsigned int& out, int base = 10);

// ---------------------------------------------------------------------------
// Small utilities
// ---------------------------------------------------------------------------

bool IsNumber(std::string_view text);                          // non-empty, digits only
// Throws like stoi (3 for "not support", else 4) when the text is no number.
void GetBitState(std::string_view text, int* bits, std::size_t count);
std::string IntToHexString(int value);                          // "0x" + lower-case hex
template <typename T>
void AddValueForArray(T* values, std::size_t count, T delta);

std::string_view TrimView(std::string_view text, std::string_view set = c_kvTrimSet);

}  // namespace dksml

#include "driver/dk_text_impl.h"
