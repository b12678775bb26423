// Directory listings: a path listed in version or byte order (owning the
// scandir() result), and the names below an opened directory descriptor,
// read with getdents64 into a buffer on the stack (no DIR, no allocation), so
// that one descriptor serves both the listing and the opens of its entries.
#pragma once

#include <dirent.h>
#include <unistd.h>

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

// Calls visit(name) for every entry of the directory open for reading on
// `fd` (O_RDONLY | O_DIRECTORY) but "." and ".."; the descriptor stays open
// and usable with openat. False when the directory cannot be read.
template <typename Visit>
bool ForEachDirEntry(int fd, Visit&& visit) {
    alignas(dirent64) char buffer[16384];
    for (;;) {
        const ssize_t got = ::getdents64(fd, buffer, sizeof buffer);
        if (got < 0) return false;
        if (got == 0) return true;
        for (std::size_t at = 0; at < static_cast<std::size_t>(got);) {
            const auto* entry = reinterpret_cast<const dirent64*>(buffer + at);
            at += entry->d_reclen;
            const std::string_view name = entry->d_name;
            if (name != "." && name != "..") visit(name);
        }
    }
}

// Names in the directory `name` relative to `dirFd` ("." for the directory
// itself), "." and ".." left out, in the order the filesystem gives them;
// `names` is replaced on success. DK_SML_ERROR_NOT_SUPPORTED when it is
// absent, DK_SML_ERROR_SYSFS when it cannot be listed.
DkSmlReturn ListDirectoryAt(int dirFd, const char* name, std::vector<std::string>& names);

}  // namespace dksml
