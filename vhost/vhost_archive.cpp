#include "vhost/vhost_archive.h"

#include <spawn.h>
#include <sys/wait.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

extern char** environ;

namespace dksml::vhost {
namespace {

namespace fs = std::filesystem;

constexpr const char* c_archiveSuffix = ".tar.gz";
constexpr const char* c_tarCommand = "tar";

// Runs tar with exactly these arguments (searched on PATH, no shell between).
void RunTar(std::vector<std::string> args) {
    args.insert(args.begin(), c_tarCommand);
    std::vector<char*> argv;
    for (std::string& arg : args) argv.push_back(arg.data());
    argv.push_back(nullptr);
    pid_t pid = 0;
    const int spawned = posix_spawnp(&pid, c_tarCommand, nullptr, nullptr, argv.data(), environ);
    if (spawned != 0) throw std::runtime_error(std::string("cannot run tar: ") + std::strerror(spawned));
    int status = 0;
    while (waitpid(pid, &status, 0) < 0) {
        if (errno != EINTR) throw std::runtime_error(std::string("waiting for tar: ") + std::strerror(errno));
    }
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        std::string command;
        for (const std::string& arg : args) command += (command.empty() ? "" : " ") + arg;
        throw std::runtime_error("tar failed: " + command);
    }
}

}  // namespace

bool IsArchiveName(const fs::path& path) {
    const std::string name = path.filename().string();
    const std::string suffix = c_archiveSuffix;
    return name.size() > suffix.size() && name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0;
}

void PackArchive(const fs::path& dir, const fs::path& archive) {
    // Names are stored as "./sys/...": numeric owners, so that unpacking as
    // another user on another machine gives the same tree.
    RunTar({"--create", "--gzip", "--numeric-owner", "--file", fs::absolute(archive).string(), "--directory",
            dir.string(), "."});
}

void UnpackArchive(const fs::path& archive, const fs::path& dir) {
    RunTar({"--extract", "--gzip", "--no-same-owner", "--file", fs::absolute(archive).string(), "--directory",
            dir.string()});
}

ScratchDirectory::ScratchDirectory() {
    std::string pattern = (fs::temp_directory_path() / "dkvhost-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr)
        throw std::runtime_error(std::string("cannot create a scratch directory: ") + std::strerror(errno));
    m_path = pattern;
}

ScratchDirectory::~ScratchDirectory() {
    std::error_code ignored;
    fs::remove_all(m_path, ignored);
}

}  // namespace dksml::vhost
