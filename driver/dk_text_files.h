// File access: existence checks, the environment, and whole-file reads and
// single-write updates of attribute files. Paths are host paths the caller
// has already placed under the host root; text buffers are the caller's.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "dksml.h"

namespace dksml {

// True when `path` exists (access F_OK); no status.
bool CheckIfFileExist(const std::string& path);
// True when `path` is non-null and exists (access F_OK); no status.
bool CheckIfFileExist(const char* path);
// True when the process may write `path` (access W_OK); no status.
bool CheckIfFileWritable(const std::string& path);

// The variable's value when set (secure_getenv), else `fallback`; `suffix`
// appended in both cases. Returns a new string.
std::string GetEnv(const char* name, std::string_view suffix, std::string_view fallback);

// Largest file the readers accept, in bytes; a larger one answers
// DK_SML_ERROR_SYSFS instead of being read without end.
inline constexpr std::size_t c_maxAttributeBytes = std::size_t{1} << 20;

// Whole file into `text` with one open, one read (more only when the first
// filled its buffer), one close; at most c_maxAttributeBytes, and the open
// never blocks. When the first read is empty or fills its buffer, only a
// regular file is accepted. DK_SML_ERROR_SYSFS when it
// cannot be opened or read; `text` is changed only on success and keeps its
// capacity.
DkSmlReturn ReadFileText(const std::string& path, std::string& text);
// As above for a C string path (null: DK_SML_ERROR_SYSFS).
DkSmlReturn ReadFileText(const char* path, std::string& text);

// The same for `name` relative to the directory descriptor `dirFd` (not
// taken over), with the open's errno mapped: DK_SML_ERROR_NOT_SUPPORTED when
// the file (or the directory, dirFd < 0) is absent, DK_SML_ERROR_SYSFS when it
// exists but cannot be opened or read.
DkSmlReturn ReadFileTextAt(int dirFd, const char* name, std::string& text);

// `text` + "\n" in one write to the existing file `name` relative to `dirFd`
// (truncated first): DK_SML_ERROR_NOT_SUPPORTED absent, DK_SML_ERROR_SYSFS
// unopenable, DK_SML_ERROR_SYSFS_WRITE refused by the driver.
// With `create`, an absent file is created (mode 0666 less the umask) as
// WriteSysfs does; a driver directory refuses that with DK_SML_ERROR_SYSFS.
// Without `newline` the text is written verbatim (a file whose whole content
// is the value, such as a slice's alias).
DkSmlReturn WriteFileTextAt(int dirFd, const char* name, std::string_view text, bool create = false,
                            bool newline = true);

// Opens `path` with truncation (DK_SML_ERROR_SYSFS when it cannot), writes the
// values separated by one blank and followed by "\n" in a single write,
// closes; DK_SML_ERROR_SYSFS_WRITE when the write or close fails. Integers and
// enumerations in decimal, bool as 0/1, floating values with six significant
// digits, strings and character arrays as they are.
template <typename... T>
DkSmlReturn WriteSysfs(const std::string& path, const T&... values);

}  // namespace dksml

#include "driver/dk_text_impl.h"
