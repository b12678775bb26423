// One PCI function as the scan sees it: an entry of the search directory
// whose files are opened relative to that directory's descriptor, so that a
// function costs one open per file and no path from the root.
#pragma once

#include <cstddef>
#include <cstdio>
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
        const int n = name.empty() ? std::snprintf(path.text, sizeof path.text, "%s", file)
                                   : std::snprintf(path.text, sizeof path.text, "%.*s/%s",
                                                   static_cast<int>(name.size()), name.data(), file);
        if (n < 0 || static_cast<std::size_t>(n) >= sizeof path.text) path.text[0] = '\0';
        return path;
    }
    // The entry itself ("." when dirFd is the function's own directory).
    Path Self() const {
        Path path;
        if (name.empty()) return File(".");
        const int n = std::snprintf(path.text, sizeof path.text, "%.*s", static_cast<int>(name.size()), name.data());
        if (n < 0 || static_cast<std::size_t>(n) >= sizeof path.text) path.text[0] = '\0';
        return path;
    }
};

}  // namespace dksml
