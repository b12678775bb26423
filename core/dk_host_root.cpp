#include "core/dk_host_root.h"

#include <climits>
#include <cstdlib>
#include <sys/stat.h>
#include <utility>

namespace dksml {
namespace {

std::string& RootStorage() {
    static std::string root;
    return root;
}

std::string NormaliseRoot(const char* value) {
    if (value == nullptr || *value == '\0') return {};
    struct stat st {};
    if (stat(value, &st) != 0 || !S_ISDIR(st.st_mode)) return {};
    // Resolve it once so that realpath results inside it can be recognised.
    char resolved[PATH_MAX];
    std::string root = realpath(value, resolved) != nullptr ? resolved : value;
    while (root.size() > 1 && root.back() == '/') root.pop_back();
    return root == "/" ? std::string{} : root;
}

}  // namespace

// Rewritten only when it changed: a rediscovery under the same root then
// leaves the string that readers of the previous pass use untouched.
void LoadHostRoot() {
    std::string root = NormaliseRoot(secure_getenv("DK_SMI_FSROOT"));
    if (root != RootStorage()) RootStorage() = std::move(root);
}

const std::string& HostRoot() { return RootStorage(); }

bool IsSimulatedHost() { return !RootStorage().empty(); }

std::string HostPath(std::string_view hostPath) {
    const std::string& root = RootStorage();
    std::string path;
    path.reserve(root.size() + hostPath.size());
    path.append(root).append(hostPath);
    return path;
}

std::string StripHostRoot(std::string_view resolvedPath) {
    const std::string& root = RootStorage();
    if (root.empty() || resolvedPath.substr(0, root.size()) != root) return std::string(resolvedPath);
    std::string_view rest = resolvedPath.substr(root.size());
    if (rest.empty()) return "/";
    if (rest.front() != '/') return std::string(resolvedPath);  // a sibling such as /root2
    return std::string(rest);
}

std::string RealHostPath(std::string_view hostPath) {
    char resolved[PATH_MAX];
    if (realpath(HostPath(hostPath).c_str(), resolved) == nullptr) return {};
    return StripHostRoot(resolved);
}

}  // namespace dksml
