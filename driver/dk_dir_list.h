// Directory listings: a path listed in version or byte order (owning the
// scandir() result), and the names below an opened directory descriptor.
#pragma once

#include <dirent.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "dksml.h"
#include "driver/dk_host_tree.h"

namespace dksml {

class DkDirList {
public:
    // Lists `path` (a filesystem path, host root applied); "." and ".." are left out.
    explicit DkDirList(const std::string& path, DkListOrder order = DkListOrder::Version);
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

// Names in the directory `name` relative to `dirFd` ("." for the directory
// itself), "." and ".." left out, in the order the filesystem gives them;
// `names` is replaced on success. DK_SML_ERROR_NOT_SUPPORTED when it is
// absent, DK_SML_ERROR_SYSFS when it cannot be listed.
DkSmlReturn ListDirectoryAt(int dirFd, const char* name, std::vector<std::string>& names);

}  // namespace dksml
