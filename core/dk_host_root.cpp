#include "core/dk_host_root.h"

#include "core/dk_file_text.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <utility>
#include <vector>

namespace dksml {
namespace {

constexpr const char* c_rootEnvName = "DK_SMI_FSROOT";
constexpr const char* c_chipNameOverridePath = "/opt/smi/etc/chipname";
constexpr int c_dirOpenFlags = O_PATH | O_DIRECTORY | O_CLOEXEC;
constexpr int c_maxLinkHops = 40;  // the kernel's own limit (ELOOP)

// Appends the components of `path` to the host path out[0, len), folding
// "." and ".." lexically. False when the result would not fit.
bool FoldInto(std::string_view path, char* out, std::size_t size, std::size_t& len) {
    while (!path.empty()) {
        const std::size_t slash = path.find('/');
        const std::string_view part = path.substr(0, slash);
        path = slash == std::string_view::npos ? std::string_view{} : path.substr(slash + 1);
        if (part.empty() || part == ".") continue;
        if (part == "..") {
            while (len > 0 && out[len - 1] != '/') --len;
            if (len > 0) --len;
            continue;
        }
        if (len + 1 + part.size() >= size) return false;
        out[len++] = '/';
        std::memcpy(out + len, part.data(), part.size());
        len += part.size();
    }
    return true;
}

// One readlinkat; false when `rel` is no link.
bool ReadLinkAt(int dirFd, const char* rel, std::string& target) {
    char buf[PATH_MAX];
    const ssize_t n = ::readlinkat(dirFd, rel, buf, sizeof buf);
    if (n < 0 || static_cast<std::size_t>(n) >= sizeof buf) return false;
    target.assign(buf, static_cast<std::size_t>(n));
    return true;
}

std::mutex& CurrentRootMutex() {
    static std::mutex mutex;
    return mutex;
}

std::shared_ptr<const DkHostRoot>& CurrentRootStorage() {
    static std::shared_ptr<const DkHostRoot> root = DkHostRoot::At("");
    return root;
}

}  // namespace

std::shared_ptr<const DkHostRoot> DkHostRoot::FromEnvironment() {
    const char* value = secure_getenv(c_rootEnvName);
    return At(value != nullptr ? value : "");
}

std::shared_ptr<const DkHostRoot> DkHostRoot::At(std::string_view directory) {
    std::string text(directory);
    while (text.size() > 1 && text.back() == '/') text.pop_back();
    if (text == "/") text.clear();
    int fd = -1;
    if (!text.empty()) {
        fd = ::open(text.c_str(), c_dirOpenFlags);
        // Recognise resolved paths inside the root by its canonical spelling.
        char resolved[PATH_MAX];
        if (fd >= 0 && ::realpath(text.c_str(), resolved) != nullptr) text = resolved;
        if (text == "/") text.clear();
    }
    if (fd < 0) {
        text.clear();  // not a directory: the real host
        fd = ::open("/", c_dirOpenFlags);
    }
    const int err = fd < 0 ? errno : 0;
    return std::shared_ptr<const DkHostRoot>(new DkHostRoot(DkDirFd(fd, err), std::move(text)));
}

std::string DkHostRoot::Path(std::string_view hostPath) const {
    std::string path;
    path.reserve(m_text.size() + hostPath.size());
    path.append(m_text).append(hostPath);
    return path;
}

std::string DkHostRoot::Relative(std::string_view hostPath) {
    while (!hostPath.empty() && hostPath.front() == '/') hostPath.remove_prefix(1);
    return hostPath.empty() ? std::string(".") : std::string(hostPath);
}

DkDirFd DkHostRoot::OpenDir(std::string_view hostPath) const {
    const int fd = ::openat(Fd(), Relative(hostPath).c_str(), c_dirOpenFlags);
    return DkDirFd(fd, fd < 0 ? errno : 0);
}

DkDirFd DkHostRoot::OpenListing(std::string_view hostPath) const {
    const int fd = ::openat(Fd(), Relative(hostPath).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    return DkDirFd(fd, fd < 0 ? errno : 0);
}

std::size_t DkHostRoot::ResolveLink(std::string_view hostPath, char* out, std::size_t outSize) const {
    if (out == nullptr || outSize < 2) return 0;
    char rel[PATH_MAX];
    while (!hostPath.empty() && hostPath.front() == '/') hostPath.remove_prefix(1);
    if (hostPath.empty() || hostPath.size() >= sizeof rel) return 0;
    std::memcpy(rel, hostPath.data(), hostPath.size());
    rel[hostPath.size()] = '\0';
    char target[PATH_MAX];
    const ssize_t n = ::readlinkat(Fd(), rel, target, sizeof target);
    std::size_t len = 0;
    bool fits = true;
    if (n < 0 || static_cast<std::size_t>(n) >= sizeof target) {
        struct stat st {};
        if (::fstatat(Fd(), rel, &st, AT_SYMLINK_NOFOLLOW) != 0) return 0;
        fits = FoldInto(hostPath, out, outSize, len);
    } else {
        // A relative target is taken from the link's directory, an absolute
        // one from the root (the simulated host's "/").
        const std::string_view link(target, static_cast<std::size_t>(n));
        if (link.empty() || link.front() != '/') {
            const std::size_t slash = hostPath.rfind('/');
            fits = FoldInto(hostPath.substr(0, slash == std::string_view::npos ? 0 : slash), out, outSize, len);
        }
        fits = fits && FoldInto(link, out, outSize, len);
    }
    if (!fits) return 0;
    if (len == 0) out[len++] = '/';
    out[len] = '\0';
    return len;
}

const std::string& DkHostRoot::SiteChipName() const {
    std::call_once(m_chipNameOnce, [this] { m_chipName = ReadFirstLine(Path(c_chipNameOverridePath)); });
    return m_chipName;
}

void LoadHostRoot() {
    DkDirFd::RefreshKeptBudget();
    std::shared_ptr<const DkHostRoot> root = DkHostRoot::FromEnvironment();
    std::lock_guard<std::mutex> lock(CurrentRootMutex());
    CurrentRootStorage() = std::move(root);
}

std::shared_ptr<const DkHostRoot> CurrentHostRoot() {
    std::lock_guard<std::mutex> lock(CurrentRootMutex());
    return CurrentRootStorage();
}

// Discovery-time helpers below read the root text of the latest
// initialisation; queries go through the descriptors their device keeps.
std::string HostRoot() { return CurrentHostRoot()->Text(); }

bool IsSimulatedHost() { return !HostRoot().empty(); }

std::string HostPath(std::string_view hostPath) { return CurrentHostRoot()->Path(hostPath); }

std::string StripHostRoot(std::string_view resolvedPath) {
    const std::string root = HostRoot();
    if (root.empty() || resolvedPath.substr(0, root.size()) != root) return std::string(resolvedPath);
    std::string_view rest = resolvedPath.substr(root.size());
    if (rest.empty()) return "/";
    if (rest.front() != '/') return std::string(resolvedPath);  // a sibling such as /root2
    return std::string(rest);
}

// Every component resolved with readlinkat inside the root, the way the
// kernel would inside a chroot: a link can neither leave the root nor loop.
std::string RealHostPath(std::string_view hostPath) {
    const std::shared_ptr<const DkHostRoot> root = CurrentHostRoot();
    std::vector<std::string> pending;  // components still to walk, last first
    std::vector<std::string> done;
    auto push = [&pending](std::string_view path) {
        std::vector<std::string> parts;
        std::size_t start = 0;
        while (start <= path.size()) {
            const std::size_t slash = path.find('/', start);
            const std::size_t end = slash == std::string_view::npos ? path.size() : slash;
            if (end > start) parts.emplace_back(path.substr(start, end - start));
            start = end + 1;
        }
        pending.insert(pending.end(), parts.rbegin(), parts.rend());
    };
    push(hostPath);
    int hops = 0;
    std::string target;
    while (!pending.empty()) {
        std::string part = std::move(pending.back());
        pending.pop_back();
        if (part == ".") continue;
        if (part == "..") {
            if (!done.empty()) done.pop_back();
            continue;
        }
        std::string rel;
        for (const std::string& d : done) rel.append(d).append("/");
        rel.append(part);
        // fstatat first: most components are no links, and a readlinkat on
        // them would be a failing call per component.
        struct stat st {};
        if (::fstatat(root->Fd(), rel.c_str(), &st, AT_SYMLINK_NOFOLLOW) != 0) return {};
        if (S_ISLNK(st.st_mode)) {
            if (!ReadLinkAt(root->Fd(), rel.c_str(), target) || ++hops > c_maxLinkHops) return {};
            if (!target.empty() && target.front() == '/') done.clear();
            push(target);
            continue;
        }
        done.push_back(std::move(part));
    }
    std::string out;
    for (const std::string& d : done) out.append("/").append(d);
    return out.empty() ? "/" : out;
}

}  // namespace dksml
