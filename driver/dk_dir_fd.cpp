// Closing and moving owned directory descriptors.
#include "driver/dk_dir_fd.h"

#include <fcntl.h>
#include <unistd.h>

namespace dksml {

DkDirFd& DkDirFd::operator=(DkDirFd&& other) noexcept {
    if (this != &other) {
        if (m_fd >= 0) ::close(m_fd);
        m_fd = other.m_fd;
        m_errno = other.m_errno;
        other.m_fd = -1;
    }
    return *this;
}

DkDirFd DkDirFd::OpenSubdir(const char* name) const {
    if (m_fd < 0) return DkDirFd(-1, m_errno);
    const int fd = ::openat(m_fd, name, O_PATH | O_DIRECTORY | O_CLOEXEC);
    return DkDirFd(fd, fd < 0 ? errno : 0);
}

DkDirFd::~DkDirFd() {
    if (m_fd >= 0) ::close(m_fd);
}

}  // namespace dksml
