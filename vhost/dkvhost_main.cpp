// dkvhost: writes the driver tree of a host profile into a directory.
//   dkvhost write PROFILE DIR   PROFILE is a shipped profile name or a file
//   dkvhost list                lists the shipped profiles
//   dkvhost gather OUT [--root DIR] [--no-process-names]
//                               snapshots this host's driver tree
//   dkvhost diff A B            attribute files that differ between snapshots
#include <algorithm>
#include <exception>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include "vhost/dk_virtual_host.h"
#include "vhost/vhost_gather.h"

namespace {

namespace fs = std::filesystem;

constexpr int c_usageError = 2;

int Usage() {
    std::cerr << "usage: dkvhost write PROFILE DIR   write the tree of PROFILE (a shipped name or a file) into DIR\n"
                 "       dkvhost list                list the shipped profiles\n"
                 "       dkvhost gather OUT [--root DIR] [--no-process-names]\n"
                 "                                   copy what the library reads on this host (or under DIR)\n"
                 "                                   into OUT, a directory or a .tar.gz\n"
                 "       dkvhost diff A B            show the files that differ between two snapshots\n";
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

// gather OUT [--root DIR] [--no-process-names], options in any order after OUT.
int Gather(const std::vector<std::string>& args) {
    dksml::vhost::GatherOptions options;
    std::string out;
    for (size_t i = 1; i < args.size(); ++i) {
        if (args[i] == "--root" && i + 1 < args.size()) {
            options.sourceRoot = args[++i];
        } else if (args[i] == "--no-process-names") {
            options.keepProcessNames = false;
        } else if (out.empty() && !args[i].starts_with("-")) {
            out = args[i];
        } else {
            return Usage();
        }
    }
    if (out.empty()) return Usage();
    const dksml::vhost::GatherSummary summary = dksml::vhost::Gather(options, out);
    std::cout << "gathered " << summary.files << " files and " << summary.links << " links into " << out << "\n";
    if (summary.unreadable != 0)
        std::cout << summary.unreadable << " could not be read; see " << dksml::vhost::c_manifestName << "\n";
    std::cout << "replay with DK_SMI_FSROOT=DIR (a .tar.gz unpacked into DIR)\n";
    return 0;
}

// Exit 0 when the snapshots hold the same files, 1 when they differ.
int Diff(const std::string& a, const std::string& b) {
    const unsigned differences = dksml::vhost::DiffSnapshots(a, b, std::cout);
    std::cout << differences << (differences == 1 ? " difference\n" : " differences\n");
    return differences == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> args(argv + 1, argv + argc);
    try {
        if (args.size() == 1 && args[0] == "list") return List();
        if (args.size() == 3 && args[0] == "write") return Write(args[1], args[2]);
        if (!args.empty() && args[0] == "gather") return Gather(args);
        if (args.size() == 3 && args[0] == "diff") return Diff(args[1], args[2]);
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
