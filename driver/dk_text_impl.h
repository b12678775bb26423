// Template definitions of the text helpers (dk_text_*.h).
//
// The number scanner below reproduces libstdc++'s formatted extraction
// (`std::istream >> T` in the "C" locale: white space skipped by the sentry,
// optional sign, overflow detection, the int/short range check, and unsigned
// types wrapping a leading '-' so that "-1" read as unsigned int is
// 4294967295), which is what the driver's text has always been parsed with.
// The standard functions do not serve: std::from_chars rejects leading white
// space, '+' and the unsigned wrap, strtol and its kin need a NUL-terminated
// copy and honour the locale, and a stream allocates on every call.
#pragma once

#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "dksml.h"
#include "driver/dk_text_bits.h"
#include "driver/dk_text_files.h"
#include "driver/dk_text_key_value.h"
#include "driver/dk_text_lines.h"
#include "driver/dk_text_numbers.h"
#include "driver/dk_text_unused.h"

namespace dksml {
namespace detail {

// White space as the "C" locale's ctype classifies it (the stream sentry).
constexpr bool IsStreamSpace(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

inline bool ContainsNotSupport(std::string_view text) {
    return text.find(c_notSupportMarker) != std::string_view::npos;
}

// Outcome of one formatted extraction.
enum class ScanStatus {
    Ok,       // a value was read
    Failed,   // num_get ran and failed; the value holds what the stream stores
              // (0 when there was no number, the clamped limit on overflow)
    NoInput,  // only white space left: the stream's sentry fails and the value
              // is left untouched
};

inline int DigitValue(char c, int base) {
    if (c >= '0' && c <= '9') return c - '0';
    if (base == 16) {
        if (c >= 'a' && c <= 'f') return c - 'a' + 10;
        if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    }
    return -1;
}

// num_get::_M_extract_int for base 10 (std::dec) or 16 (std::hex).
template <typename V>
ScanStatus NumGetInteger(std::string_view s, std::size_t& pos, V& v, int base) {
    using U = std::make_unsigned_t<V>;
    const std::size_t n = s.size();
    std::size_t i = pos;
    while (i < n && IsStreamSpace(s[i])) ++i;
    if (i >= n) {
        pos = n;
        return ScanStatus::NoInput;
    }
    bool negative = false;
    if (s[i] == '-' || s[i] == '+') {
        negative = s[i] == '-';
        ++i;
    }
    bool foundZero = false;
    int sepPos = 0;
    while (i < n) {
        const char c = s[i];
        if (c == '0' && (!foundZero || base == 10)) {
            foundZero = true;
            ++sepPos;
        } else if (foundZero && (c == 'x' || c == 'X') && base == 16) {
            foundZero = false;
            sepPos = 0;
        } else {
            break;
        }
        ++i;
        if (i < n && !foundZero) break;
    }
    const U maxv = (negative && std::is_signed_v<V>)
                       ? static_cast<U>(U(0) - static_cast<U>(std::numeric_limits<V>::min()))
                       : static_cast<U>(std::numeric_limits<V>::max());
    const U smax = static_cast<U>(maxv / static_cast<U>(base));
    U result = 0;
    bool overflow = false;
    while (i < n) {
        const int d = DigitValue(s[i], base);
        if (d < 0) break;
        if (result > smax) {
            overflow = true;
        } else {
            result = static_cast<U>(result * static_cast<U>(base));
            overflow |= result > static_cast<U>(maxv - static_cast<U>(d));
            result = static_cast<U>(result + static_cast<U>(d));
            ++sepPos;
        }
        ++i;
    }
    pos = i;
    if (sepPos == 0 && !foundZero) {
        v = 0;
        return ScanStatus::Failed;
    }
    if (overflow) {
        v = (negative && std::is_signed_v<V>) ? std::numeric_limits<V>::min()
                                              : std::numeric_limits<V>::max();
        return ScanStatus::Failed;
    }
    v = negative ? static_cast<V>(static_cast<U>(U(0) - result)) : static_cast<V>(result);
    return ScanStatus::Ok;
}

// num_get::_M_extract_float followed by strtof/strtod in the "C" locale.
ScanStatus NumGetFloat(std::string_view s, std::size_t& pos, float& v);
ScanStatus NumGetFloat(std::string_view s, std::size_t& pos, double& v);

template <typename T>
inline constexpr bool c_isScannable =
    std::is_same_v<T, int> || std::is_same_v<T, unsigned int> || std::is_same_v<T, long> ||
    std::is_same_v<T, unsigned long> || std::is_same_v<T, long long> ||
    std::is_same_v<T, unsigned long long> || std::is_same_v<T, short> ||
    std::is_same_v<T, unsigned short> || std::is_same_v<T, float> || std::is_same_v<T, double> ||
    std::is_same_v<T, bool> || std::is_same_v<T, std::string>;

// One `stream >> value` starting at `pos`; `pos` moves past what was consumed.
// `base` is 10 (std::dec) or 16 (std::hex) and applies to integers only.
template <typename T>
ScanStatus Scan(std::string_view s, std::size_t& pos, T& value, int base = 10) {
    static_assert(c_isScannable<T>, "unsupported type for formatted extraction");
    if constexpr (std::is_same_v<T, int> || std::is_same_v<T, short>) {
        // basic_istream::operator>>(int&/short&) reads a long and range-checks.
        long l = 0;
        const ScanStatus st = NumGetInteger<long>(s, pos, l, base);
        if (st == ScanStatus::NoInput) return st;
        if (l < std::numeric_limits<T>::min()) {
            value = std::numeric_limits<T>::min();
            return ScanStatus::Failed;
        }
        if (l > std::numeric_limits<T>::max()) {
            value = std::numeric_limits<T>::max();
            return ScanStatus::Failed;
        }
        value = static_cast<T>(l);
        return st;
    } else if constexpr (std::is_same_v<T, bool>) {
        long l = -1;
        const ScanStatus st = NumGetInteger<long>(s, pos, l, base);
        if (st == ScanStatus::NoInput) return st;
        if (l == 0 || l == 1) {
            value = l == 1;
            return st;
        }
        value = true;
        return ScanStatus::Failed;
    } else if constexpr (std::is_floating_point_v<T>) {
        return NumGetFloat(s, pos, value);
    } else if constexpr (std::is_same_v<T, std::string>) {
        std::size_t i = pos;
        while (i < s.size() && IsStreamSpace(s[i])) ++i;
        if (i >= s.size()) {
            pos = s.size();
            return ScanStatus::NoInput;
        }
        std::size_t j = i;
        while (j < s.size() && !IsStreamSpace(s[j])) ++j;
        value.assign(s.data() + i, j - i);
        pos = j;
        return ScanStatus::Ok;
    } else {
        return NumGetInteger<T>(s, pos, value, base);
    }
}

// Value formatting for WriteSysfs (std::ostream rules).
template <typename T>
void AppendValue(std::string& out, const T& v) {
    using D = std::remove_cv_t<T>;
    if constexpr (std::is_same_v<D, bool>) {
        out.push_back(v ? '1' : '0');
    } else if constexpr (std::is_same_v<D, char>) {
        out.push_back(v);  // ostream << char writes the character
    } else if constexpr (std::is_enum_v<D>) {
        AppendValue(out, static_cast<std::underlying_type_t<D>>(v));
    } else if constexpr (std::is_integral_v<D>) {
        // signed/unsigned char are written as numbers here (never as characters).
        char buf[32];
        const auto res = std::to_chars(buf, buf + sizeof buf, v);
        out.append(buf, res.ptr);
    } else if constexpr (std::is_floating_point_v<D>) {
        char buf[64];
        const int len = std::snprintf(buf, sizeof buf, "%.*g", 6, static_cast<double>(v));
        if (len > 0) out.append(buf, static_cast<std::size_t>(len) < sizeof buf ? len : sizeof buf - 1);
    } else if constexpr (std::is_array_v<D>) {
        static_assert(std::is_same_v<std::remove_cv_t<std::remove_extent_t<D>>, char>,
                      "only character arrays can be written");
        out.append(v, strnlen(v, std::extent_v<D>));
    } else if constexpr (std::is_same_v<std::decay_t<D>, const char*> ||
                         std::is_same_v<std::decay_t<D>, char*>) {
        if (v != nullptr) out.append(v);
    } else {
        out.append(std::string_view(v));  // std::string, std::string_view
    }
}

// One open (O_WRONLY|O_CREAT|O_TRUNC), one write of `data`, one close.
DkSmlReturn WriteWholeFile(const std::string& path, std::string_view data);

DkSmlReturn ReadOneValueFailure(std::string_view extracted);

}  // namespace detail

// ---------------------------------------------------------------------------

template <typename T>
bool ExtractNumber(std::string_view text, T& out) {
    static_assert(std::is_arithmetic_v<T> && !std::is_same_v<T, bool>, "ExtractNumber: number types only");
    std::size_t pos = 0;
    T value{};
    if (detail::Scan<T>(text, pos, value) != detail::ScanStatus::Ok) return false;
    out = value;
    return true;
}

namespace detail {
template <typename T>
DkSmlReturn ReadOneValue(DkTextLines& lines, ValueExtractor extractor, T& out) {
    std::string_view line;
    if (!lines.Next(line)) return DK_SML_ERROR_SYSFS;
    const std::string_view extracted = extractor(line);
    std::size_t pos = 0;
    T value{};
    if (Scan<T>(extracted, pos, value) != ScanStatus::Ok) return ReadOneValueFailure(extracted);
    out = std::move(value);
    return DK_SML_SUCCESS;
}
}  // namespace detail

template <typename... T>
DkSmlReturn ReadSysfs(DkTextLines& lines, ValueExtractor extractor, T&... out) {
    static_assert(sizeof...(T) > 0, "ReadSysfs needs at least one output");
    if (extractor == nullptr) return DK_SML_ERROR_FAILURE;
    DkSmlReturn ret = DK_SML_SUCCESS;
    // Left to right; the first failure ends the read.
    (void)((((ret = detail::ReadOneValue(lines, extractor, out)) == DK_SML_SUCCESS) && ...));
    return ret;
}

template <typename... T>
DkSmlReturn ReadSysfs(const std::string& path, ValueExtractor extractor, T&... out) {
    if (extractor == nullptr) return DK_SML_ERROR_FAILURE;
    std::string text;
    if (ReadFileText(path, text) != DK_SML_SUCCESS) return DK_SML_ERROR_SYSFS;
    DkTextLines lines(text);
    return ReadSysfs(lines, extractor, out...);
}

template <typename T>
DkSmlReturn ReadSysfs(DkTextLines& lines, LineParser<T> parser, T* out, std::size_t outCount) {
    if (parser == nullptr) return DK_SML_ERROR_FAILURE;
    for (std::size_t i = 0; i < outCount; ++i) {
        std::string_view line;
        if (!lines.Next(line)) return DK_SML_ERROR_SYSFS;
        const DkSmlReturn ret = parser(line, out + i);
        if (ret != DK_SML_SUCCESS) return ret;
    }
    return DK_SML_SUCCESS;
}

template <typename T>
DkSmlReturn ReadSysfs(const std::string& path, LineParser<T> parser, T* out, std::size_t outCount) {
    if (parser == nullptr) return DK_SML_ERROR_FAILURE;
    std::string text;
    if (ReadFileText(path, text) != DK_SML_SUCCESS) return DK_SML_ERROR_SYSFS;
    DkTextLines lines(text);
    return ReadSysfs(lines, parser, out, outCount);
}

template <typename T>
DkSmlReturn ReadStringStream(DkTextLines& lines, LineParser<T> parser, T* out) {
    std::string_view line;
    if (!lines.Next(line)) return DK_SML_ERROR_SYSFS;
    if (parser == nullptr) return DK_SML_ERROR_FAILURE;
    return parser(line, out);
}

template <typename T>
DkSmlReturn ProcessValueByColon(std::string_view line, T* out) {
    T value{};
    if (!ExtractNumber(ExtractValueStrByColon(line), value)) return DK_SML_ERROR_SYSFS;
    if (out != nullptr) *out = value;
    return DK_SML_SUCCESS;
}

template <typename T>
DkSmlReturn ParseValueAfterColon(std::string_view text, std::vector<T>& out) {
    DkTextLines lines(text);
    std::string_view line;
    while (lines.Next(line)) {
        const std::string_view part = ExtractValueStrByColon(line);
        if (part.empty()) return DK_SML_ERROR_SYSFS;
        if (detail::ContainsNotSupport(part)) continue;
        std::size_t pos = 0;
        T value{};
        while (detail::Scan<T>(part, pos, value) == detail::ScanStatus::Ok) out.push_back(value);
    }
    return DK_SML_SUCCESS;
}

template <typename... T>
DkSmlReturn WriteSysfs(const std::string& path, const T&... values) {
    static_assert(sizeof...(T) > 0, "WriteSysfs needs at least one value");
    std::string line;
    line.reserve(64);
    bool first = true;
    (
        [&] {
            if (!first) line.push_back(' ');
            first = false;
            detail::AppendValue(line, values);
        }(),
        ...);
    line.push_back('\n');
    return detail::WriteWholeFile(path, line);
}

template <typename T>
void GetArrayValue(DkTextLines& lines, T* values, std::size_t count, T fill) {
    static_assert(std::is_same_v<T, int> || std::is_same_v<T, unsigned int>,
                  "GetArrayValue: int or unsigned int");
    std::string_view line;
    if (!lines.Next(line)) throw DK_SML_ERROR_SYSFS;
    const std::string_view part = ExtractValueStrByColon(line);
    for (std::size_t i = 0; i < count; ++i) values[i] = fill;
    std::size_t pos = 0;
    for (std::size_t i = 0; i < count; ++i) {
        T value{};
        const detail::ScanStatus st = detail::Scan<T>(part, pos, value, 10);
        if (st == detail::ScanStatus::Ok) {
            values[i] = value;
            continue;
        }
        values[i] = st == detail::ScanStatus::Failed ? value : T{0};
        break;
    }
}

template <typename T>
void AddValueForArray(T* values, std::size_t count, T delta) {
    for (std::size_t i = 0; i < count; ++i) {
        if constexpr (std::is_integral_v<T> && !std::is_same_v<T, bool>) {
            // Two's complement wrap instead of signed-overflow UB.
            using U = std::make_unsigned_t<T>;
            values[i] = static_cast<T>(static_cast<U>(static_cast<U>(values[i]) + static_cast<U>(delta)));
        } else {
            values[i] = static_cast<T>(values[i] + delta);
        }
    }
}

template <typename Visit>
DkSmlReturn VisitKeyValue(std::string_view text, Visit&& visit) {
    DkTextLines lines(text);
    std::string_view line;
    while (lines.Next(line)) {
        const std::size_t colon = line.find(':');
        if (colon == std::string_view::npos) return DK_SML_ERROR_SYSFS;
        const std::string_view label = TrimView(line.substr(0, colon), c_kvTrimSet);
        if (label.empty()) return DK_SML_ERROR_SYSFS;
        const std::string_view value = line.substr(colon + 1);
        if (detail::ContainsNotSupport(value)) continue;
        int64_t numbers[c_kvVisitMaxNumbers];
        std::size_t count = 0;
        std::size_t pos = 0;
        int64_t number = 0;
        bool any = false;
        while (detail::Scan<int64_t>(value, pos, number) == detail::ScanStatus::Ok) {
            any = true;
            if (count < c_kvVisitMaxNumbers) numbers[count++] = number;
        }
        if (any) visit(label, static_cast<const int64_t*>(numbers), count);
    }
    return DK_SML_SUCCESS;
}

}  // namespace dksml
