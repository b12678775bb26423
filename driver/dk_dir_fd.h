// Directory descriptors the driver layer reads through: an owned O_PATH
// descriptor that remembers why it failed to open, and the set of them a
// device's driver requests use.
#pragma once

#include <cerrno>

namespace dksml {

// An owned directory descriptor (O_PATH) and the errno of a failed open, so a
// reader can tell "absent" from "unopenable" without asking the filesystem again.
class DkDirFd {
public:
    DkDirFd() = default;
    DkDirFd(int fd, int openErrno) : m_fd(fd), m_errno(openErrno) {}
    DkDirFd(DkDirFd&& other) noexcept : m_fd(other.m_fd), m_errno(other.m_errno) { other.m_fd = -1; }
    DkDirFd& operator=(DkDirFd&& other) noexcept;
    DkDirFd(const DkDirFd&) = delete;
    DkDirFd& operator=(const DkDirFd&) = delete;
    ~DkDirFd();

    // The directory `name` inside this one (one lookup, O_PATH); when this
    // one is not open, neither is the result, with this one's errno.
    DkDirFd OpenSubdir(const char* name) const;

    int Get() const { return m_fd; }
    bool IsOpen() const { return m_fd >= 0; }
    int OpenErrno() const { return m_errno; }  // ENOENT when never opened

private:
    int m_fd = -1;
    int m_errno = ENOENT;
};

// The directories a device's driver requests are answered from.
struct DkDriverDirs {
    DkDirFd smi0;  // "smi/"  (die 0)
    DkDirFd smi1;  // "smi1/" (any other die)
    DkDirFd node;  // the layout node's directory (not open without one)
    DkDirFd function;  // the PCI function's own directory (slice and link files)
};

}  // namespace dksml
