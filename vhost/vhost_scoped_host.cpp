#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

#include "vhost/dk_virtual_host.h"
#include "vhost/vhost_fs.h"

namespace dksml::vhost {

namespace fs = std::filesystem;

namespace {

constexpr const char* c_rootVariable = "DK_SMI_FSROOT";

fs::path MakeTemporaryDirectory() {
    std::string pattern = (fs::temp_directory_path() / "dkvhost-XXXXXX").string();
    std::vector<char> buffer(pattern.begin(), pattern.end());
    buffer.push_back('\0');
    if (mkdtemp(buffer.data()) == nullptr) throw std::runtime_error("cannot create a temporary host directory");
    return buffer.data();
}

}  // namespace

ScopedHost::ScopedHost(const nlohmann::json& profile) : m_root(MakeTemporaryDirectory()) {
    try {
        WriteHost(profile, m_root);
    } catch (...) {
        std::error_code ignored;
        fs::remove_all(m_root, ignored);
        throw;
    }
    if (const char* previous = std::getenv(c_rootVariable)) {
        m_hadPreviousRoot = true;
        m_previousRoot = previous;
    }
    setenv(c_rootVariable, m_root.c_str(), 1);
}

ScopedHost::ScopedHost(std::string_view profileName) : ScopedHost(LoadProfile(profileName)) {}

ScopedHost::~ScopedHost() {
    if (m_hadPreviousRoot) {
        setenv(c_rootVariable, m_previousRoot.c_str(), 1);
    } else {
        unsetenv(c_rootVariable);
    }
    std::error_code ignored;
    fs::remove_all(m_root, ignored);
}

fs::path ScopedHost::Path(std::string_view hostPath) const { return UnderRoot(m_root, hostPath); }

void ScopedHost::WriteFile(std::string_view hostPath, std::string_view content) const {
    WriteText(m_root, hostPath, content);
}

void ScopedHost::Remove(std::string_view hostPath) const { RemovePath(m_root, hostPath); }

std::string ScopedHost::ReadFile(std::string_view hostPath) const {
    std::ifstream in(Path(hostPath), std::ios::binary);
    if (!in) return {};
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

}  // namespace dksml::vhost
