// IDkHostTree over the host root: the host path is placed under the root
// here, the only place (with dk_host_root) that builds filesystem paths.
#include "core/dk_host_tree.h"

#include <sys/stat.h>
#include <unistd.h>

#include <climits>

#include "core/dk_file_text.h"
#include "core/dk_host_root.h"
#include "driver/dk_dir_list.h"
#include "driver/dk_text.h"

namespace dksml {
namespace {

class DkRootedHostTree final : public IDkHostTree {
public:
    bool List(std::string_view hostPath, DkListOrder order, std::vector<std::string>& names) const override {
        names.clear();
        const DkDirList list(HostPath(hostPath), order);
        for (std::size_t i = 0; i < list.Size(); ++i) names.emplace_back(list.Name(i));
        return list.Opened();
    }

    DkSmlReturn ReadText(std::string_view hostPath, std::string& text) const override {
        return ReadFileText(HostPath(hostPath), text);
    }

    DkEntryKind Kind(std::string_view hostPath) const override {
        struct stat info {};
        if (::lstat(HostPath(hostPath).c_str(), &info) != 0) return DkEntryKind::Absent;
        if (S_ISDIR(info.st_mode)) return DkEntryKind::Directory;
        return S_ISREG(info.st_mode) ? DkEntryKind::File : DkEntryKind::Other;
    }

    bool Exists(std::string_view hostPath) const override { return CheckIfFileExist(HostPath(hostPath)); }

    bool DirectoryOpens(std::string_view hostPath) const override {
        return dksml::DirectoryOpens(HostPath(hostPath));
    }

    std::string Resolve(std::string_view hostPath) const override { return RealHostPath(hostPath); }

    std::string ResolveLink(std::string_view hostPath) const override {
        if (IsSimulatedHost()) {
            char target[PATH_MAX];
            const ssize_t length = ::readlink(HostPath(hostPath).c_str(), target, sizeof(target) - 1);
            if (length > 0 && target[0] == '/')
                return RealHostPath(std::string_view(target, static_cast<std::size_t>(length)));
        }
        return RealHostPath(hostPath);
    }
};

}  // namespace

const IDkHostTree& CurrentHostTree() {
    static const DkRootedHostTree tree;
    return tree;
}

}  // namespace dksml
