// Listing a directory through a descriptor that discovery also opens the
// directory's entries through: one open serves both, and the entries are read
// with getdents64 into a buffer on the stack (no DIR, no allocation).
#pragma once

#include <dirent.h>

#include <cstddef>
#include <string_view>

namespace dksml {

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

}  // namespace dksml
