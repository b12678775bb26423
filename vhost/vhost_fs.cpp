#include "vhost/vhost_fs.h"

#include <fstream>
#include <stdexcept>
#include <string>

namespace dksml::vhost {

namespace fs = std::filesystem;

fs::path UnderRoot(const fs::path& root, std::string_view hostPath) {
    if (hostPath.empty() || hostPath.front() != '/') {
        throw std::runtime_error("host path must be absolute: \"" + std::string(hostPath) + "\"");
    }
    return root / fs::path(hostPath).relative_path();
}

void WriteText(const fs::path& root, std::string_view hostPath, std::string_view content) {
    const fs::path path = UnderRoot(root, hostPath);
    fs::create_directories(path.parent_path());
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(content.data(), static_cast<std::streamsize>(content.size()));
    if (!out) throw std::runtime_error("cannot write " + path.string());
}

void MakeDirectory(const fs::path& root, std::string_view hostPath) {
    fs::create_directories(UnderRoot(root, hostPath));
}

void LinkRelative(const fs::path& root, std::string_view linkHostPath, std::string_view targetHostPath) {
    const fs::path link(linkHostPath);
    const fs::path target = fs::path(targetHostPath).lexically_relative(link.parent_path());
    const fs::path placed = UnderRoot(root, linkHostPath);
    fs::create_directories(placed.parent_path());
    fs::remove(placed);
    fs::create_symlink(target, placed);
}

void RemovePath(const fs::path& root, std::string_view hostPath) {
    fs::remove_all(UnderRoot(root, hostPath));
}

}  // namespace dksml::vhost
