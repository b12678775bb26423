#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <string>

#include "vhost/dk_virtual_host.h"
#include "vhost/vhost_cpu_topology.h"
#include "vhost/vhost_profile.h"
#include "vhost/vhost_writers.h"

namespace dksml::vhost {

namespace fs = std::filesystem;

fs::path ProfileDirectory() {
    if (const char* overridden = std::getenv("DKVHOST_PROFILE_DIR"); overridden != nullptr && *overridden != '\0') {
        return overridden;
    }
    return DKVHOST_PROFILE_DIR;
}

nlohmann::json LoadProfile(std::string_view nameOrPath) {
    // A bare name is a shipped profile; anything with a slash or a .json
    // suffix is a file.
    fs::path path(nameOrPath);
    if (path.extension() != ".json" && path.filename() == path) path = ProfileDirectory() / (path.string() + ".json");
    std::ifstream in(path);
    if (!in) throw std::runtime_error("cannot read profile " + path.string());
    try {
        return nlohmann::json::parse(in);
    } catch (const nlohmann::json::parse_error& error) {
        throw std::runtime_error("profile " + path.string() + " is not valid JSON: " + error.what());
    }
}

void WriteHost(const nlohmann::json& profile, const fs::path& root) {
    const HostSpec host = ParseProfile(profile);  // validate before touching the directory
    if (fs::exists(root)) {
        for (const fs::directory_entry& entry : fs::directory_iterator(root)) fs::remove_all(entry.path());
    }
    fs::create_directories(root);
    WritePciTree(root, host);
    WriteCpuTopology(root, host);
    WriteLayout(root, host);
    WriteSliceGpus(root, host);
    WriteFirmwareTables(root, host);
    WriteSystemFiles(root, host);
    WriteComputeStack(root, host);
}

}  // namespace dksml::vhost
