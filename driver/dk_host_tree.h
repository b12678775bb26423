// Walks of the host's own trees (the process table, the PCI device tree, the
// driver's per-client directories) for services that are not one device's
// requests. Paths are host paths ("/proc/12/fd"); the implementation places
// them under the host root, so a service never builds a filesystem path or
// opens a directory itself. Nothing here knows of devices.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "dksml.h"

namespace dksml {

// Listing order: version order ("2" before "10") for numbered directories,
// byte order for names.
enum class DkListOrder : unsigned char { Version, Alphabetical };

// What a path names, without following a final symbolic link.
enum class DkEntryKind : unsigned char { Absent, Directory, File, Other };

class IDkHostTree {
public:
    virtual ~IDkHostTree() = default;
    // Names in the directory, "." and ".." left out, replacing `names`; false
    // (and `names` empty) when it cannot be listed.
    virtual bool List(std::string_view hostPath, DkListOrder order, std::vector<std::string>& names) const = 0;
    // Whole text of a regular file (one read, never blocking): statuses as ReadFileText.
    virtual DkSmlReturn ReadText(std::string_view hostPath, std::string& text) const = 0;
    virtual DkEntryKind Kind(std::string_view hostPath) const = 0;
    // True when the path exists, symbolic links followed (access F_OK).
    virtual bool Exists(std::string_view hostPath) const = 0;
    // True when the path opens as a directory, symbolic links followed.
    virtual bool DirectoryOpens(std::string_view hostPath) const = 0;
    // The host path `hostPath` resolves to (symbolic links followed); "" when it does not.
    virtual std::string Resolve(std::string_view hostPath) const = 0;
    // As Resolve for a symbolic link whose absolute target names a host path
    // (a descriptor link to "/dev/..."): the target is resolved inside the host.
    virtual std::string ResolveLink(std::string_view hostPath) const = 0;
};

}  // namespace dksml
