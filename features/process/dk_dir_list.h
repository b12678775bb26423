// A directory listing in version order ("2" before "10"), as the driver's
// numbered directories are meant to be read. Owns the scandir() result.
#pragma once

#include <dirent.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace dksml {

class DkDirList {
public:
    // Lists `path` (a filesystem path, host root applied); "." and ".." are left out.
    explicit DkDirList(const std::string& path);
    ~DkDirList();
    DkDirList(const DkDirList&) = delete;
    DkDirList& operator=(const DkDirList&) = delete;

    bool Opened() const { return m_count >= 0; }
    std::size_t Size() const { return m_count > 0 ? static_cast<std::size_t>(m_count) : 0; }
    std::string_view Name(std::size_t i) const { return m_entries[i]->d_name; }

private:
    dirent** m_entries = nullptr;
    int m_count = -1;
};

// An entry name made only of decimal digits whose value fits in 32 bits.
bool ParseDecimalName(std::string_view name, uint32_t& value);

// Leading decimal digits of `text` (at least one), rejecting values above `limit`.
bool ParseLeadingDecimal(std::string_view text, uint64_t limit, uint64_t& value);

}  // namespace dksml
