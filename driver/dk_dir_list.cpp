// Directory listings by path and below an opened directory descriptor.
#include "driver/dk_dir_list.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <utility>

namespace dksml {
namespace {

int SkipDots(const dirent* entry) {
    const char* n = entry->d_name;
    return !(n[0] == '.' && (n[1] == '\0' || (n[1] == '.' && n[2] == '\0')));
}

}  // namespace

DkDirList::DkDirList(const std::string& path, DkListOrder order) {
    m_count = ::scandir(path.c_str(), &m_entries, SkipDots, order == DkListOrder::Version ? versionsort : alphasort);
}

DkDirList::~DkDirList() {
    for (int i = 0; i < m_count; ++i) std::free(m_entries[i]);
    std::free(m_entries);
}

DkSmlReturn ListDirectoryAt(int dirFd, const char* name, std::vector<std::string>& names) {
    if (name == nullptr) return DK_SML_ERROR_SYSFS;
    const int fd = ::openat(dirFd, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) return errno == ENOENT || errno == ENOTDIR ? DK_SML_ERROR_NOT_SUPPORTED : DK_SML_ERROR_SYSFS;
    std::vector<std::string> listed;
    const bool complete = ForEachDirEntry(fd, [&listed](std::string_view entry) { listed.emplace_back(entry); });
    ::close(fd);
    if (!complete) return DK_SML_ERROR_SYSFS;
    names = std::move(listed);
    return DK_SML_SUCCESS;
}

}  // namespace dksml
