// The one place that turns an absolute host path ("/sys/...", "/proc/...",
// "/dev/...", "/opt/...", "/lib/firmware/...") into something the library
// actually touches. On a real machine the root is "/". When DK_SMI_FSROOT
// names a directory, the library behaves as if that directory were "/", which
// lets tests, the command-line tool and users' CI run the real library on a
// simulated host.
//
// The root is a directory descriptor opened once per discovery (DkHostRoot).
// Devices keep the root they were discovered under together with their own
// directory descriptors (DkDeviceDirs), so a query never resolves a path from
// "/" and a device from an older discovery keeps reading its own host.
#pragma once

#include <cerrno>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

#include "driver/dk_dir_fd.h"

namespace dksml {

// One host root: its descriptor and its text. Immutable once made.
class DkHostRoot {
public:
    // The root named by DK_SMI_FSROOT (secure_getenv), or "/" when unset,
    // empty or not a directory.
    static std::shared_ptr<const DkHostRoot> FromEnvironment();
    // The given directory as root ("" or "/" mean the real host).
    static std::shared_ptr<const DkHostRoot> At(std::string_view directory);

    DkHostRoot(const DkHostRoot&) = delete;
    DkHostRoot& operator=(const DkHostRoot&) = delete;

    int Fd() const { return m_dir.Get(); }
    const std::string& Text() const { return m_text; }  // without trailing slash, "" on a real host
    bool IsSimulated() const { return !m_text.empty(); }

    // Root text + absolute host path, for code that still needs a path string.
    std::string Path(std::string_view hostPath) const;
    // An absolute host path as a path relative to Fd() ("." for "/").
    static std::string Relative(std::string_view hostPath);

    // Directory descriptor of a host path, opened relative to the root.
    DkDirFd OpenDir(std::string_view hostPath) const;
    // The same opened for reading (O_RDONLY), for a directory that is both
    // listed and read through: one open instead of two.
    DkDirFd OpenListing(std::string_view hostPath) const;
    // A host path with its last component resolved by one readlinkat inside
    // the root and ".." folded lexically: sysfs links point at real
    // directories, so this equals realpath() there without walking every
    // component. Writes the host path into `out` (NUL-terminated, no
    // allocation) and returns its length; 0 when the path is neither a link
    // nor an existing entry, or the result does not fit.
    std::size_t ResolveLink(std::string_view hostPath, char* out, std::size_t outSize) const;

    // First line of the site's chip-name override ("/opt/smi/etc/chipname"),
    // read on first use and kept with the root, so one discovery reads it
    // once however many devices it names. Empty when absent.
    const std::string& SiteChipName() const;

private:
    DkHostRoot(DkDirFd dir, std::string text) : m_dir(std::move(dir)), m_text(std::move(text)) {}
    DkDirFd m_dir;
    std::string m_text;
    mutable std::once_flag m_chipNameOnce;
    mutable std::string m_chipName;
};

// Descriptors a device reads through: its root, its own directory and the
// directories its driver requests use (the part the driver handler is given).
struct DkDeviceDirs : DkDriverDirs {
    std::shared_ptr<const DkHostRoot> root;
};

// Re-reads DK_SMI_FSROOT and opens the new root; called at every
// initialisation. Discovery takes CurrentHostRoot() once and hands it to the
// devices it creates.
void LoadHostRoot();
std::shared_ptr<const DkHostRoot> CurrentHostRoot();

// The current root without a trailing slash ("" on a real machine).
std::string HostRoot();

// True when a host root is in force (a simulated host).
bool IsSimulatedHost();

// Root + absolute host path. `hostPath` must start with '/'.
std::string HostPath(std::string_view hostPath);

// The inverse for paths the library resolved itself (realpath): a path inside
// the root is reported as it would look on a real host; others pass unchanged.
std::string StripHostRoot(std::string_view resolvedPath);

// realpath() of a host path, reported relative to the root; empty on failure.
std::string RealHostPath(std::string_view hostPath);

}  // namespace dksml
