// Directory descriptors the driver layer reads through: an owned O_PATH
// descriptor that remembers why it failed to open, and the set of them a
// device's driver requests use.
#pragma once

#include <cerrno>
#include <string>

namespace dksml {

// An owned directory descriptor (O_PATH) and the errno of a failed open, so a
// reader can tell "absent" from "unopenable" without asking the filesystem again.
//
// Devices keep their directories open for their queries, but never more of
// them than a share of the process's descriptor limit: a host with hundreds
// of GPUs (and the previous discovery's devices, alive while a rediscovery
// runs) would otherwise take every descriptor the caller has. A directory
// past that budget is closed and marked present-but-not-kept; readers then
// open it by path for each read.
class DkDirFd {
public:
    DkDirFd() = default;
    DkDirFd(int fd, int openErrno) : m_fd(fd), m_errno(openErrno) {}
    DkDirFd(DkDirFd&& other) noexcept : m_fd(other.m_fd), m_errno(other.m_errno), m_kept(other.m_kept) {
        other.m_fd = -1;
        other.m_kept = false;
    }
    DkDirFd& operator=(DkDirFd&& other) noexcept;
    DkDirFd(const DkDirFd&) = delete;
    DkDirFd& operator=(const DkDirFd&) = delete;
    ~DkDirFd();

    // The directory at an absolute `path` (O_PATH); not open for an empty one.
    static DkDirFd OpenPath(const std::string& path);
    // The directory `name` inside this one (one lookup, O_PATH); when this
    // one is not open, neither is the result, with this one's errno.
    DkDirFd OpenSubdir(const char* name) const;
    // This descriptor, or, for a directory kept by path only (IsPresent
    // without IsOpen), its `path` opened into `scratch` for one access.
    const DkDirFd& OrOpenedAt(const std::string& path, DkDirFd& scratch) const;

    // Counts this open descriptor against the budget of kept directories;
    // past the budget it is closed instead and the directory marked present.
    void KeepOrRelease();
    // Reads the descriptor limit the budget is a share of; called at every
    // initialisation, so that a limit changed meanwhile is followed.
    static void RefreshKeptBudget();

    int Get() const { return m_fd; }
    bool IsOpen() const { return m_fd >= 0; }
    // Open, or released past the budget (or refused for want of descriptors):
    // the directory is there to be opened by path.
    bool IsPresent() const { return m_fd >= 0 || m_errno == c_notKeptErrno; }
    int OpenErrno() const { return m_errno; }  // ENOENT when never opened

private:
    // A directory not kept reports the errno of a process out of descriptors.
    static constexpr int c_notKeptErrno = EMFILE;

    void Close();

    int m_fd = -1;
    int m_errno = ENOENT;
    bool m_kept = false;  // counted against the budget
};

// The directories a device's driver requests are answered from.
struct DkDriverDirs {
    DkDirFd smi0;  // "smi/"  (die 0)
    DkDirFd smi1;  // "smi1/" (any other die)
    DkDirFd node;  // the layout node's directory (not open without one)
    DkDirFd function;  // the PCI function's own directory (slice and link files)
};

}  // namespace dksml
