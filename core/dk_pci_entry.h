// One PCI function as the scan sees it: an entry of the search directory
// whose files are opened relative to that directory's descriptor, so that a
// function costs one open per file and no path from the root.
#pragma once

#include <cstddef>
#include <cstring>
#include <string_view>

namespace dksml {

struct DkPciEntry {
    int dirFd = -1;         // the search directory, or the function's own
    std::string_view name;  // the function's entry ("0000:03:00.0"), at most NAME_MAX;
                            // empty when dirFd is the function's own directory

    // "name/file" ("file" when name is empty), NUL-terminated, in a buffer
    // that holds any entry name.
    struct Path {
        char text[320];
        const char* c_str() const { return text; }
    };
    Path File(const char* file) const {
        Path path;
        const std::size_t fileSize = std::strlen(file);
        const std::size_t prefix = name.empty() ? 0 : name.size() + 1;
        if (prefix + fileSize >= sizeof path.text) {
            path.text[0] = '\0';
            return path;
        }
        if (prefix != 0) {
            std::memcpy(path.text, name.data(), name.size());
            path.text[name.size()] = '/';
        }
        std::memcpy(path.text + prefix, file, fileSize + 1);
        return path;
    }
    // The entry itself ("." when dirFd is the function's own directory).
    Path Self() const {
        if (name.empty()) return File(".");
        Path path;
        path.text[0] = '\0';
        if (name.size() >= sizeof path.text) return path;
        std::memcpy(path.text, name.data(), name.size());
        path.text[name.size()] = '\0';
        return path;
    }
};

}  // namespace dksml
