// The virtual-host profiles the project ships, for tests that run over every
// one of them, and a whole-file read for comparing outputs with files.
#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "vhost/dk_virtual_host.h"

namespace dksml::test {

// Names of the profiles in the profile directory, sorted.
inline std::vector<std::string> ShippedProfiles() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(vhost::ProfileDirectory())) {
        if (entry.path().extension() == ".json") names.push_back(entry.path().stem().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

// The file's bytes; empty when it cannot be read.
inline std::string ReadWholeFile(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

}  // namespace dksml::test
