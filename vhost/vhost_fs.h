// File system primitives of the tree writers. Every path argument named
// `hostPath` is an absolute path on the simulated host ("/sys/...") and is
// placed under `root`.
#pragma once

#include <filesystem>
#include <string_view>

namespace dksml::vhost {

std::filesystem::path UnderRoot(const std::filesystem::path& root, std::string_view hostPath);

// Creates the parent directories and writes `content` (truncating).
void WriteText(const std::filesystem::path& root, std::string_view hostPath, std::string_view content);

void MakeDirectory(const std::filesystem::path& root, std::string_view hostPath);

// A symbolic link at `linkHostPath` pointing at `targetHostPath`, stored as a
// relative path so that it resolves inside the root wherever the root lives.
void LinkRelative(const std::filesystem::path& root, std::string_view linkHostPath,
                  std::string_view targetHostPath);

void RemovePath(const std::filesystem::path& root, std::string_view hostPath);

}  // namespace dksml::vhost
