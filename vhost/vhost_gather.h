// Snapshots of a real host: copies the part of a machine's file tree that the
// library reads into a directory (or a .tar.gz) that replays anywhere with
// DK_SMI_FSROOT, and compares two such snapshots.
#pragma once

#include <filesystem>
#include <iosfwd>
#include <string>

namespace dksml::vhost {

struct GatherOptions {
    std::filesystem::path sourceRoot = "/";  // the live host, or a tree that looks like one
    bool keepProcessNames = true;            // "name" and "comm" files of GPU client processes
};

struct GatherSummary {
    unsigned files = 0;
    unsigned links = 0;
    unsigned unreadable = 0;
};

// The file listing every path taken (and every one that could not be read),
// written at the top of the snapshot.
inline constexpr const char* c_manifestName = "dkvhost-manifest.txt";

// Copies the host's driver tree into `out`: a directory (emptied first) or,
// when the name ends in ".tar.gz", an archive. Throws std::runtime_error when
// the output cannot be written; unreadable source files are only recorded.
GatherSummary Gather(const GatherOptions& options, const std::filesystem::path& out);

// Lists the attribute files and links that differ between two snapshots
// (directories or .tar.gz). Returns the number of differences.
unsigned DiffSnapshots(const std::filesystem::path& a, const std::filesystem::path& b, std::ostream& report);

}  // namespace dksml::vhost
