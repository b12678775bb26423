// Kept for completeness: text helpers of the driver access layer that no code
// of the library calls today (the fuzz targets and tests still exercise them).
// They keep the throwing error style: each throws a DkSmlReturn value, never
// anything else, and the caller catches it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "dksml.h"
#include "driver/dk_text_lines.h"

namespace dksml {

// True when the process may read `path` (access R_OK); no status.
bool CheckIfFileReadable(const std::string& path);

// The part after the first ' ' (the whole line when there is none); a view.
std::string_view ExtractValueStrSeparatedBySpace(std::string_view line);

// "Key: value" lines flattened into "Key:value;Key:value;" (values trimmed of
// blanks and tabs) in the caller's `buffer` of `size` bytes, truncated to
// size - 1 characters; DK_SML_ERROR_SYSFS for a line without ':'.
DkSmlReturn GetKVData(std::string_view text, char* buffer, std::size_t size);
// GetKVData on the remaining lines; throws DK_SML_ERROR_SYSFS where it fails.
void GetData(DkTextLines& lines, char* buffer, std::size_t size);

// Throwing readers: each takes one line from the cursor and throws
// DK_SML_ERROR_SYSFS when there is none; a failed conversion throws as stoi
// (DK_SML_ERROR_NOT_SUPPORTED for "not support" text) or stoul/stol below do.
void GetValue(DkTextLines& lines, std::string& out);             // text after ':', untrimmed
void GetValue(DkTextLines& lines, unsigned short& out);          // after ':', 0..65535
void GetValue(DkTextLines& lines, unsigned int& out, int base);  // after a required ':'
void GetValue(DkTextLines& lines, int& out);                     // after ':'
void GetValue(DkTextLines& lines, long& out);                    // after ':'
void GetValue(DkTextLines& lines, unsigned long& out);           // after ':'
void GetValueSpace(DkTextLines& lines, unsigned int& out);       // after the first blank
void GetValueD(DkTextLines& lines, int& out);                    // whole line, base 0
void GetValueD(DkTextLines& lines, unsigned int& out);           // whole line, base 0
void GetValueD(DkTextLines& lines, unsigned long& out);          // whole line, base 10

// After ':' up to `count` decimal numbers into the caller's `values`; slots
// past the failing one keep `fill`, the failing slot gets the stream's failure
// value (0 when there was no number, the type's limit on overflow). Throws
// DK_SML_ERROR_SYSFS when no line is left.
template <typename T>
void GetArrayValue(DkTextLines& lines, T* values, std::size_t count, T fill);
// The same with hexadecimal numbers ("0x" optional).
void GetHexArrayValue(DkTextLines& lines, unsigned int* values, std::size_t count, unsigned int fill);

// Standard conversions (leading white space, optional sign, trailing text
// ignored, result must fit); each throws DK_SML_ERROR_SYSFS on failure.
unsigned long stoul(std::string_view text, int base = 10);
long stol(std::string_view text);
float stof(std::string_view text);

// Guards against argument-dependent lookup of the std:: functions (see stoi
// in dk_text_numbers.h).
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

}  // namespace dksml

#include "driver/dk_text_impl.h"
