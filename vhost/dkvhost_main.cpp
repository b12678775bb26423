// dkvhost: writes the driver tree of a host profile into a directory.
//   dkvhost write PROFILE DIR   PROFILE is a shipped profile name or a file
//   dkvhost list                lists the shipped profiles
#include <algorithm>
#include <exception>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include "vhost/dk_virtual_host.h"

namespace {

namespace fs = std::filesystem;

constexpr int c_usageError = 2;

int Usage() {
    std::cerr << "usage: dkvhost write PROFILE DIR   write the tree of PROFILE (a shipped name or a file) into DIR\n"
                 "       dkvhost list                list the shipped profiles\n";
    return c_usageError;
}

int List() {
    const fs::path dir = dksml::vhost::ProfileDirectory();
    std::error_code error;
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(dir, error)) {
        if (entry.path().extension() == ".json") names.push_back(entry.path().stem().string());
    }
    if (error) {
        std::cerr << "dkvhost: cannot list profiles in " << dir.string() << ": " << error.message() << "\n";
        return 1;
    }
    std::sort(names.begin(), names.end());
    for (const std::string& name : names) {
        const nlohmann::json profile = dksml::vhost::LoadProfile(name);
        std::cout << name << "\t" << profile.value("description", "") << "\n";
    }
    return 0;
}

int Write(const std::string& profileName, const fs::path& dir) {
    dksml::vhost::WriteHost(dksml::vhost::LoadProfile(profileName), dir);
    std::cout << "wrote profile " << profileName << " to " << dir.string() << "\n"
              << "run the library on it with DK_SMI_FSROOT=" << fs::absolute(dir).string() << "\n";
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> args(argv + 1, argv + argc);
    try {
        if (args.size() == 1 && args[0] == "list") return List();
        if (args.size() == 3 && args[0] == "write") return Write(args[1], args[2]);
        if (args.size() == 1 && (args[0] == "-h" || args[0] == "--help")) {
            Usage();
            return 0;
        }
        return Usage();
    } catch (const std::exception& error) {
        std::cerr << "dkvhost: " << error.what() << "\n";
        return 1;
    }
}
