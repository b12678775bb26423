// Snapshot archives: .tar.gz files made and read by the system's tar command
// (run directly, no shell), and scratch directories that clean up after
// themselves.
#pragma once

#include <filesystem>

namespace dksml::vhost {

bool IsArchiveName(const std::filesystem::path& path);

// Packs the content of `dir` (not the directory itself) into `archive`.
void PackArchive(const std::filesystem::path& dir, const std::filesystem::path& archive);

// Unpacks `archive` into the existing directory `dir`.
void UnpackArchive(const std::filesystem::path& archive, const std::filesystem::path& dir);

// A fresh directory under the system's temporary directory, removed with its
// content on destruction.
class ScratchDirectory {
public:
    ScratchDirectory();
    ~ScratchDirectory();
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;
    const std::filesystem::path& Path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

}  // namespace dksml::vhost
