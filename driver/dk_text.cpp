// Text access and parsing helpers.
#include "driver/dk_text.h"

#include <fcntl.h>
#include <locale.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace dksml {

// ---------------------------------------------------------------------------
// Lines
// ---------------------------------------------------------------------------

bool DkTextLines::Next(std::string_view& line) {
    if (m_done || m_rest.empty()) {
        m_done = true;
        return false;
    }
    const std::size_t nl = m_rest.find('\n');
    if (nl == std::string_view::npos) {
        line = m_rest;
        m_rest = {};
        m_done = true;
    } else {
        line = m_rest.substr(0, nl);
        m_rest.remove_prefix(nl + 1);
    }
    return true;
}

// ---------------------------------------------------------------------------
// Files and environment
// ---------------------------------------------------------------------------

bool CheckIfFileExist(const std::string& path) { return ::access(path.c_str(), F_OK) == 0; }
bool CheckIfFileExist(const char* path) { return path != nullptr && ::access(path, F_OK) == 0; }
bool CheckIfFileReadable(const std::string& path) { return ::access(path.c_str(), R_OK) == 0; }
bool CheckIfFileWritable(const std::string& path) { return ::access(path.c_str(), W_OK) == 0; }

std::string GetEnv(const char* name, std::string_view suffix, std::string_view fallback) {
    const char* value = name != nullptr ? secure_getenv(name) : nullptr;
    std::string result;
    if (value != nullptr) {
        result.reserve(std::strlen(value) + suffix.size());
        result.append(value);
    } else {
        result.reserve(fallback.size() + suffix.size());
        result.append(fallback);
    }
    result.append(suffix);
    return result;
}

DkSmlReturn ReadFileText(const std::string& path, std::string& text) { return ReadFileText(path.c_str(), text); }

namespace {

// The status of a failed open: an absent entry (or a path through a
// non-directory) is "not supported", anything else "cannot be read".
DkSmlReturn OpenFailure(int err) {
    return err == ENOENT || err == ENOTDIR ? DK_SML_ERROR_NOT_SUPPORTED : DK_SML_ERROR_SYSFS;
}

// Whether an opened descriptor is a regular file no larger than the cap.
bool IsReadableRegularFile(int fd) {
    struct stat st {};
    return ::fstat(fd, &st) == 0 && S_ISREG(st.st_mode) &&
           static_cast<unsigned long long>(st.st_size) <= c_maxAttributeBytes;
}

// Reads an opened descriptor and closes it, never more than
// c_maxAttributeBytes. sysfs serves an attribute in one read, so a short
// non-empty first read is the whole text and is taken as it is: checking the
// file's type as well would add a system call to every scalar query. When the
// first read leaves it open (nothing came back, or the buffer filled up) only
// a regular file within the cap is read on: a FIFO without a writer, a null
// or endless device, a directory and an oversized file answer
// DK_SML_ERROR_SYSFS at once. sysfs reports a size of 4096 for every
// attribute, so st_size only refuses oversized regular files early.
DkSmlReturn ReadOpenedFile(int fd, std::string& text) {
    char first[8192];
    ssize_t n;
    do {
        n = ::read(fd, first, sizeof first);
    } while (n < 0 && errno == EINTR);
    if (n < 0 || ((n == 0 || static_cast<std::size_t>(n) == sizeof first) && !IsReadableRegularFile(fd))) {
        ::close(fd);
        return DK_SML_ERROR_SYSFS;
    }
    if (static_cast<std::size_t>(n) < sizeof first) {
        ::close(fd);
        text.assign(first, static_cast<std::size_t>(n));  // no allocation once `text` has grown
        return DK_SML_SUCCESS;
    }
    // A large file: grow a separate buffer so `text` changes only on success.
    std::string whole(first, sizeof first);
    for (;;) {
        const std::size_t len = whole.size();
        if (len > c_maxAttributeBytes) {
            ::close(fd);
            return DK_SML_ERROR_SYSFS;
        }
        whole.resize(std::min(len * 2, c_maxAttributeBytes + 1));
        const ssize_t got = ::read(fd, whole.data() + len, whole.size() - len);
        if (got < 0 && errno == EINTR) {
            whole.resize(len);
            continue;
        }
        if (got < 0) {
            ::close(fd);
            return DK_SML_ERROR_SYSFS;
        }
        whole.resize(len + static_cast<std::size_t>(got));
        if (got == 0) break;
    }
    ::close(fd);
    text = std::move(whole);
    return DK_SML_SUCCESS;
}

// O_NONBLOCK: opening a FIFO must not wait for a writer.
constexpr int c_readOpenFlags = O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY;

}  // namespace

DkSmlReturn ReadFileText(const char* path, std::string& text) {
    if (path == nullptr) return DK_SML_ERROR_SYSFS;
    const int fd = ::open(path, c_readOpenFlags);
    if (fd < 0) return DK_SML_ERROR_SYSFS;
    return ReadOpenedFile(fd, text);
}

DkSmlReturn WriteFileTextAt(int dirFd, const char* name, std::string_view text, bool create, bool newline) {
    if (name == nullptr) return DK_SML_ERROR_SYSFS;
    const int fd = ::openat(dirFd, name, O_WRONLY | O_TRUNC | O_NONBLOCK | O_CLOEXEC | O_NOCTTY | (create ? O_CREAT : 0),
                            0666);
    if (fd < 0) return OpenFailure(errno);
    // The value and its newline in one write: the driver parses each write on its own.
    char end = '\n';
    iovec parts[2] = {{const_cast<char*>(text.data()), text.size()}, {&end, 1}};
    const int count = newline ? 2 : 1;
    std::size_t left = text.size() + (newline ? 1 : 0);
    int first = 0;
    bool ok = true;
    while (left > 0) {
        const ssize_t w = ::writev(fd, parts + first, count - first);
        if (w < 0 && errno == EINTR) continue;
        if (w <= 0) {
            ok = false;
            break;
        }
        std::size_t done = static_cast<std::size_t>(w);
        left -= done;
        while (first < count && done >= parts[first].iov_len) done -= parts[first++].iov_len;
        if (first < count) {
            parts[first].iov_base = static_cast<char*>(parts[first].iov_base) + done;
            parts[first].iov_len -= done;
        }
    }
    if (::close(fd) != 0) ok = false;
    return ok ? DK_SML_SUCCESS : DK_SML_ERROR_SYSFS_WRITE;
}

DkSmlReturn ReadFileTextAt(int dirFd, const char* name, std::string& text) {
    if (name == nullptr) return DK_SML_ERROR_SYSFS;
    if (dirFd < 0 && dirFd != AT_FDCWD && name[0] != '/') return DK_SML_ERROR_NOT_SUPPORTED;
    const int fd = ::openat(dirFd, name, c_readOpenFlags);
    if (fd < 0) return OpenFailure(errno);
    return ReadOpenedFile(fd, text);
}

// ---------------------------------------------------------------------------
// Value extractors
// ---------------------------------------------------------------------------

std::string_view ExtractRawValueStr(std::string_view line) { return line; }

std::string_view ExtractValueStrByColon(std::string_view line) {
    const std::size_t colon = line.find(':');
    return colon == std::string_view::npos ? line : line.substr(colon + 1);
}

std::string_view ExtractValueStrSeparatedBySpace(std::string_view line) {
    const std::size_t blank = line.find(' ');
    return blank == std::string_view::npos ? line : line.substr(blank + 1);
}

// ---------------------------------------------------------------------------
// Internals
// ---------------------------------------------------------------------------

namespace detail {
namespace {

locale_t CLocale() {
    static const locale_t loc = ::newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr));
    return loc;
}

inline bool IsDigit(char c) { return c >= '0' && c <= '9'; }

template <typename F>
ScanStatus NumGetFloatImpl(std::string_view s, std::size_t& pos, F& v) {
    const std::size_t n = s.size();
    std::size_t i = pos;
    while (i < n && IsStreamSpace(s[i])) ++i;
    if (i >= n) {
        pos = n;
        return ScanStatus::NoInput;
    }
    // What num_get::_M_extract_float accumulates ("C" locale, no grouping).
    std::string xtrc;
    if (s[i] == '+' || s[i] == '-') {
        xtrc.push_back(s[i]);
        ++i;
    }
    bool foundMantissa = false;
    while (i < n) {
        const char c = s[i];
        if (c != '0') break;
        if (!foundMantissa) {
            xtrc.push_back('0');
            foundMantissa = true;
        }
        ++i;
    }
    bool foundDec = false;
    bool foundSci = false;
    while (i < n) {
        const char c = s[i];
        if (IsDigit(c)) {
            xtrc.push_back(c);
            foundMantissa = true;
        } else if (c == '.' && !foundDec && !foundSci) {
            xtrc.push_back('.');
            foundDec = true;
        } else if ((c == 'e' || c == 'E') && !foundSci && foundMantissa) {
            xtrc.push_back('e');
            foundSci = true;
            ++i;
            if (i >= n) break;
            const char sign = s[i];
            if (sign == '+' || sign == '-') {
                xtrc.push_back(sign);
            } else {
                continue;  // look at this character again
            }
        } else {
            break;
        }
        ++i;
    }
    pos = i;
    // __convert_to_v: strtof/strtod in the "C" locale; the whole accumulated
    // text must convert; an infinite result fails with the largest value.
    const char* start = xtrc.c_str();
    char* end = const_cast<char*>(start);
    const int savedErrno = errno;
    F value;
    if constexpr (std::is_same_v<F, float>) {
        value = ::strtof_l(start, &end, CLocale());
    } else {
        value = ::strtod_l(start, &end, CLocale());
    }
    errno = savedErrno;
    if (end == start || *end != '\0') {
        v = 0;
        return ScanStatus::Failed;
    }
    if (value == std::numeric_limits<F>::infinity()) {
        v = std::numeric_limits<F>::max();
        return ScanStatus::Failed;
    }
    if (value == -std::numeric_limits<F>::infinity()) {
        v = -std::numeric_limits<F>::max();
        return ScanStatus::Failed;
    }
    v = value;
    return ScanStatus::Ok;
}

}  // namespace

ScanStatus NumGetFloat(std::string_view s, std::size_t& pos, float& v) { return NumGetFloatImpl(s, pos, v); }
ScanStatus NumGetFloat(std::string_view s, std::size_t& pos, double& v) { return NumGetFloatImpl(s, pos, v); }

DkSmlReturn WriteWholeFile(const std::string& path, std::string_view data) {
    const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NONBLOCK | O_CLOEXEC | O_NOCTTY, 0666);
    if (fd < 0) return DK_SML_ERROR_SYSFS;
    bool ok = true;
    std::size_t off = 0;
    while (off < data.size()) {
        const ssize_t w = ::write(fd, data.data() + off, data.size() - off);
        if (w < 0) {
            if (errno == EINTR) continue;
            ok = false;
            break;
        }
        if (w == 0) {
            ok = false;
            break;
        }
        off += static_cast<std::size_t>(w);
    }
    if (::close(fd) != 0) ok = false;
    return ok ? DK_SML_SUCCESS : DK_SML_ERROR_SYSFS_WRITE;
}

DkSmlReturn ReadOneValueFailure(std::string_view extracted) {
    return ContainsNotSupport(extracted) ? DK_SML_ERROR_NOT_SUPPORTED : DK_SML_ERROR_SYSFS;
}

}  // namespace detail

namespace {

// A NUL-terminated copy of a view for the C conversion functions.
class CString {
public:
    explicit CString(std::string_view text) {
        if (text.size() < sizeof m_small) {
            if (!text.empty()) std::memcpy(m_small, text.data(), text.size());
            m_small[text.size()] = '\0';
            m_ptr = m_small;
        } else {
            m_big.assign(text);
            m_ptr = m_big.c_str();
        }
    }
    const char* c_str() const { return m_ptr; }

private:
    char m_small[128];
    std::string m_big;
    const char* m_ptr;
};

bool ValidBase(int base) { return base == 0 || (base >= 2 && base <= 36); }

// std::stol / std::stoul / std::stof semantics without exceptions.
bool StrToLong(std::string_view text, long& out, int base) {
    if (!ValidBase(base)) return false;
    const CString s(text);
    char* end = const_cast<char*>(s.c_str());
    const int savedErrno = errno;
    errno = 0;
    const long value = std::strtol(s.c_str(), &end, base);
    const bool range = errno == ERANGE;
    errno = savedErrno;
    if (end == s.c_str() || range) return false;
    out = value;
    return true;
}

bool StrToULong(std::string_view text, unsigned long& out, int base) {
    if (!ValidBase(base)) return false;
    const CString s(text);
    char* end = const_cast<char*>(s.c_str());
    const int savedErrno = errno;
    errno = 0;
    const unsigned long value = std::strtoul(s.c_str(), &end, base);
    const bool range = errno == ERANGE;
    errno = savedErrno;
    if (end == s.c_str() || range) return false;
    out = value;
    return true;
}

bool StrToFloat(std::string_view text, float& out) {
    const CString s(text);
    char* end = const_cast<char*>(s.c_str());
    const int savedErrno = errno;
    errno = 0;
    const float value = std::strtof(s.c_str(), &end);
    const bool range = errno == ERANGE;
    errno = savedErrno;
    if (end == s.c_str() || range) return false;
    out = value;
    return true;
}

std::string_view NextLineOrThrow(DkTextLines& lines) {
    std::string_view line;
    if (!lines.Next(line)) throw DK_SML_ERROR_SYSFS;
    return line;
}

DkSmlReturn FlattenKeyValues(DkTextLines& lines, std::string& result) {
    std::string_view line;
    while (lines.Next(line)) {
        std::string_view tag;
        std::string_view value;
        if (!ExtractTagValue(line, tag, value)) return DK_SML_ERROR_SYSFS;
        value = TrimView(value, c_kvTrimSet);
        result.append(tag).append(value).push_back(';');
    }
    return DK_SML_SUCCESS;
}

void CopyToBuffer(const std::string& text, char* buffer, std::size_t size) {
    if (buffer == nullptr || size == 0) return;
    const std::size_t n = std::min(text.size(), size - 1);
    std::memcpy(buffer, text.data(), n);
    buffer[n] = '\0';
}

// ParseKeyValue core: calls `record(label, numbers)` for every kept line.
template <typename Record>
DkSmlReturn ParseKeyValueLines(std::string_view text, Record&& record) {
    DkTextLines lines(text);
    std::string_view line;
    while (lines.Next(line)) {
        const std::size_t colon = line.find(':');
        if (colon == std::string_view::npos) return DK_SML_ERROR_SYSFS;
        const std::string_view label = TrimView(line.substr(0, colon), c_kvTrimSet);
        if (label.empty()) return DK_SML_ERROR_SYSFS;
        const std::string_view value = line.substr(colon + 1);
        if (detail::ContainsNotSupport(value)) continue;
        // Numbers go to a small local array first so that the list is
        // allocated once, at its final size, in the common case.
        int64_t local[16];
        std::size_t count = 0;
        std::vector<int64_t> numbers;
        std::size_t pos = 0;
        int64_t number = 0;
        while (detail::Scan<int64_t>(value, pos, number) == detail::ScanStatus::Ok) {
            if (count < std::size(local)) {
                local[count++] = number;
            } else {
                if (numbers.empty()) numbers.assign(local, local + count);
                numbers.push_back(number);
            }
        }
        if (count == 0) continue;
        if (numbers.empty()) numbers.assign(local, local + count);
        record(label, std::move(numbers));
    }
    return DK_SML_SUCCESS;
}

}  // namespace

// ---------------------------------------------------------------------------
// Key/value text
// ---------------------------------------------------------------------------

bool ExtractTagValue(std::string_view line, std::string_view& tag, std::string_view& value) {
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos) return false;
    tag = line.substr(0, colon + 1);
    value = line.substr(colon + 1);
    return true;
}

DkSmlReturn GetKVData(std::string_view text, char* buffer, std::size_t size) {
    DkTextLines lines(text);
    std::string result;
    const DkSmlReturn ret = FlattenKeyValues(lines, result);
    if (ret != DK_SML_SUCCESS) return ret;
    CopyToBuffer(result, buffer, size);
    return DK_SML_SUCCESS;
}

void GetData(DkTextLines& lines, char* buffer, std::size_t size) {
    std::string result;
    const DkSmlReturn ret = FlattenKeyValues(lines, result);
    if (ret != DK_SML_SUCCESS) throw ret;
    CopyToBuffer(result, buffer, size);
}

DkSmlReturn ParseKeyValue(std::string_view text, DkKeyValueList& out) {
    DkKeyValueList result;
    const DkSmlReturn ret = ParseKeyValueLines(text, [&](std::string_view label, std::vector<int64_t>&& numbers) {
        result.emplace_back(std::string(label), std::move(numbers));
    });
    if (ret != DK_SML_SUCCESS) return ret;
    out = std::move(result);
    return DK_SML_SUCCESS;
}

DkSmlReturn ParseKeyValue(std::string_view text, DkKeyValueMap& out) {
    DkKeyValueMap result;
    const DkSmlReturn ret = ParseKeyValueLines(text, [&](std::string_view label, std::vector<int64_t>&& numbers) {
        // A label printed twice keeps its last list.
        result.insert_or_assign(std::string(label), std::move(numbers));
    });
    if (ret != DK_SML_SUCCESS) return ret;
    out = std::move(result);
    return DK_SML_SUCCESS;
}

// ---------------------------------------------------------------------------
// Throwing readers
// ---------------------------------------------------------------------------

void GetValue(DkTextLines& lines, std::string& out) {
    const std::string_view line = NextLineOrThrow(lines);
    out.assign(ExtractValueStrByColon(line));
}

void GetValue(DkTextLines& lines, unsigned short& out) {
    const std::string_view line = NextLineOrThrow(lines);
    const int value = stoi(ExtractValueStrByColon(line), 10);
    if (value < 0 || value > 65535) throw DK_SML_ERROR_SYSFS;
    out = static_cast<unsigned short>(value);
}

void GetValue(DkTextLines& lines, unsigned int& out, int base) {
    const std::string_view line = NextLineOrThrow(lines);
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos) throw DK_SML_ERROR_SYSFS;
    out = static_cast<unsigned int>(stoi(line.substr(colon + 1), base));
}

void GetValue(DkTextLines& lines, int& out) {
    const std::string_view line = NextLineOrThrow(lines);
    out = stoi(ExtractValueStrByColon(line), 10);
}

void GetValue(DkTextLines& lines, long& out) {
    const std::string_view line = NextLineOrThrow(lines);
    out = stol(ExtractValueStrByColon(line));
}

void GetValue(DkTextLines& lines, unsigned long& out) {
    const std::string_view line = NextLineOrThrow(lines);
    out = stoul(ExtractValueStrByColon(line), 10);
}

void GetValueSpace(DkTextLines& lines, unsigned int& out) {
    const std::string_view line = NextLineOrThrow(lines);
    out = static_cast<unsigned int>(stoi(ExtractValueStrSeparatedBySpace(line), 10));
}

void GetValueD(DkTextLines& lines, int& out) {
    const std::string_view line = NextLineOrThrow(lines);
    out = stoi(line, 0);
}

void GetValueD(DkTextLines& lines, unsigned int& out) {
    const std::string_view line = NextLineOrThrow(lines);
    out = static_cast<unsigned int>(stoi(line, 0));
}

void GetValueD(DkTextLines& lines, unsigned long& out) {
    const std::string_view line = NextLineOrThrow(lines);
    out = stoul(line, 10);
}

void GetHexArrayValue(DkTextLines& lines, unsigned int* values, std::size_t count, unsigned int fill) {
    const std::string_view line = NextLineOrThrow(lines);
    const std::string_view part = ExtractValueStrByColon(line);
    for (std::size_t i = 0; i < count; ++i) values[i] = fill;
    std::size_t pos = 0;
    for (std::size_t i = 0; i < count; ++i) {
        unsigned int value = 0;
        const detail::ScanStatus st = detail::Scan<unsigned int>(part, pos, value, 16);
        if (st == detail::ScanStatus::Ok) {
            values[i] = value;
            continue;
        }
        values[i] = st == detail::ScanStatus::Failed ? value : 0u;
        break;
    }
}

// ---------------------------------------------------------------------------
// Conversions
// ---------------------------------------------------------------------------

bool stoi_nt(std::string_view text, int& out, int base) {
    long value = 0;
    if (!StrToLong(text, value, base)) return false;
    if (value < std::numeric_limits<int>::min() || value > std::numeric_limits<int>::max()) return false;
    out = static_cast<int>(value);
    return true;
}

bool stoul_nt(std::string_view text, unsigned long& out, int base) { return StrToULong(text, out, base); }

bool stof_nt(std::string_view text, float& out) { return StrToFloat(text, out); }

bool stoui_nt(std::string_view text, unsigned int& out, int base) {
    unsigned long value = 0;
    if (!StrToULong(text, value, base)) return false;
    out = static_cast<unsigned int>(value & 0xFFFFFFFFul);  // low 32 bits, on purpose
    return true;
}

int stoi(std::string_view text, int base) {
    int value = 0;
    if (!stoi_nt(text, value, base)) {
        throw detail::ContainsNotSupport(text) ? DK_SML_ERROR_NOT_SUPPORTED : DK_SML_ERROR_SYSFS;
    }
    return value;
}

unsigned long stoul(std::string_view text, int base) {
    unsigned long value = 0;
    if (!stoul_nt(text, value, base)) throw DK_SML_ERROR_SYSFS;
    return value;
}

long stol(std::string_view text) {
    long value = 0;
    if (!StrToLong(text, value, 10)) throw DK_SML_ERROR_SYSFS;
    return value;
}

float stof(std::string_view text) {
    float value = 0;
    if (!stof_nt(text, value)) throw DK_SML_ERROR_SYSFS;
    return value;
}

// ---------------------------------------------------------------------------
// Small utilities
// ---------------------------------------------------------------------------

bool IsNumber(std::string_view text) {
    if (text.empty()) return false;
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

void GetBitState(std::string_view text, int* bits, std::size_t count) {
    int value = stoi(text, 10);
    std::size_t i = 0;
    for (; i < count && value != 0; ++i) {
        bits[i] = value & 1;
        value >>= 1;  // arithmetic shift: a negative value keeps its sign bits
    }
    for (; i < count; ++i) bits[i] = 0;
}

std::string IntToHexString(int value) {
    char buf[16];
    const auto res = std::to_chars(buf, buf + sizeof buf, static_cast<uint32_t>(value), 16);
    std::string out = "0x";
    out.append(buf, res.ptr);
    return out;
}

std::string_view TrimView(std::string_view text, std::string_view set) {
    if (set == c_kvTrimSet) {
        // The common set without a memchr per character.
        std::size_t b = 0;
        std::size_t e = text.size();
        while (b < e && (text[b] == ' ' || text[b] == '\t')) ++b;
        while (e > b && (text[e - 1] == ' ' || text[e - 1] == '\t')) --e;
        return text.substr(b, e - b);
    }
    const std::size_t first = text.find_first_not_of(set);
    if (first == std::string_view::npos) return {};
    const std::size_t last = text.find_last_not_of(set);
    return text.substr(first, last - first + 1);
}

}  // namespace dksml
