// Closing and moving owned directory descriptors.
#include "driver/dk_dir_fd.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <atomic>

namespace dksml {
namespace {

// Kept directories may take a quarter of the descriptor limit; the rest is
// the caller's and the reads'. With the common soft limit of 1024 that is 256
// directories (64 GPUs with all four kept); past them queries open by path.
constexpr rlim_t c_keptShareDivisor = 4;
// Without a limit, or when it cannot be read.
constexpr long c_unlimitedBudget = 1L << 20;

std::atomic<long> g_keptDirectories{0};
std::atomic<long> g_keptBudget{c_unlimitedBudget};

}  // namespace

void DkDirFd::RefreshKeptBudget() {
    rlimit limit{};
    long budget = c_unlimitedBudget;
    if (::getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY)
        budget = static_cast<long>(limit.rlim_cur / c_keptShareDivisor);
    g_keptBudget.store(budget, std::memory_order_relaxed);
}

void DkDirFd::KeepOrRelease() {
    if (m_fd < 0 || m_kept) return;
    const long budget = g_keptBudget.load(std::memory_order_relaxed);
    if (g_keptDirectories.fetch_add(1, std::memory_order_relaxed) < budget) {
        m_kept = true;
        return;
    }
    g_keptDirectories.fetch_sub(1, std::memory_order_relaxed);
    ::close(m_fd);
    m_fd = -1;
    m_errno = c_notKeptErrno;
}

void DkDirFd::Close() {
    if (m_fd >= 0) ::close(m_fd);
    if (m_kept) g_keptDirectories.fetch_sub(1, std::memory_order_relaxed);
    m_fd = -1;
    m_kept = false;
}

DkDirFd& DkDirFd::operator=(DkDirFd&& other) noexcept {
    if (this != &other) {
        Close();
        m_fd = other.m_fd;
        m_errno = other.m_errno;
        m_kept = other.m_kept;
        other.m_fd = -1;
        other.m_kept = false;
    }
    return *this;
}

DkDirFd DkDirFd::OpenPath(const std::string& path) {
    if (path.empty()) return {};
    const int fd = ::open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    return DkDirFd(fd, fd < 0 ? errno : 0);
}

const DkDirFd& DkDirFd::OrOpenedAt(const std::string& path, DkDirFd& scratch) const {
    if (IsOpen() || !IsPresent()) return *this;
    scratch = OpenPath(path);
    return scratch;
}

DkDirFd DkDirFd::OpenSubdir(const char* name) const {
    if (m_fd < 0) return DkDirFd(-1, m_errno);
    const int fd = ::openat(m_fd, name, O_PATH | O_DIRECTORY | O_CLOEXEC);
    return DkDirFd(fd, fd < 0 ? errno : 0);
}

DkDirFd::~DkDirFd() { Close(); }

}  // namespace dksml
