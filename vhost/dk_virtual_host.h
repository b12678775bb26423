// The virtual host: writes a complete, realistic driver tree (PCI function
// directories, per-die attribute directories, layout nodes, manager
// directory, /proc, /dev/dri/by-path, NUMA files, debugfs) into a directory
// from a declarative JSON profile. Run the library on it by pointing
// DK_SMI_FSROOT at that directory.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

namespace dksml::vhost {

// Directory of the profiles shipped with the project ("server", "guest",
// "no-driver", "empty").
std::filesystem::path ProfileDirectory();

// A shipped profile by name, or a profile file by path. Throws
// std::runtime_error when it cannot be read or parsed.
nlohmann::json LoadProfile(std::string_view nameOrPath);

// Writes the tree of `profile` into `root` (created when missing; existing
// content is removed first). Throws std::runtime_error on an invalid profile.
void WriteHost(const nlohmann::json& profile, const std::filesystem::path& root);

// A host in a fresh temporary directory, with DK_SMI_FSROOT pointing at it for
// the object's lifetime (restored and the directory removed on destruction).
class ScopedHost {
public:
    explicit ScopedHost(const nlohmann::json& profile);
    explicit ScopedHost(std::string_view profileName);
    // A literal names a shipped profile (a JSON string would be ambiguous).
    explicit ScopedHost(const char* profileName) : ScopedHost(std::string_view(profileName)) {}
    explicit ScopedHost(const std::string& profileName) : ScopedHost(std::string_view(profileName)) {}
    ~ScopedHost();
    ScopedHost(const ScopedHost&) = delete;
    ScopedHost& operator=(const ScopedHost&) = delete;

    const std::filesystem::path& Root() const { return m_root; }
    // Root + absolute host path ("/sys/bus/pci/devices/...").
    std::filesystem::path Path(std::string_view hostPath) const;
    // Overwrites (or creates, with parents) a file at a host path.
    void WriteFile(std::string_view hostPath, std::string_view content) const;
    // Removes a file or directory tree at a host path.
    void Remove(std::string_view hostPath) const;
    // Reads a file at a host path ("" when absent).
    std::string ReadFile(std::string_view hostPath) const;

private:
    std::filesystem::path m_root;
    std::string m_previousRoot;
    bool m_hadPreviousRoot = false;
};

}  // namespace dksml::vhost
