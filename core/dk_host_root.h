// The one place that turns an absolute host path ("/sys/...", "/proc/...",
// "/dev/...", "/opt/...", "/lib/firmware/...") into the path the library
// actually touches. On a real machine the root is empty. When DK_SMI_FSROOT
// names a directory, the library behaves as if that directory were "/", which
// lets tests, the command-line tool and users' CI run the real library on a
// simulated host.
#pragma once

#include <string>
#include <string_view>

namespace dksml {

// Reads DK_SMI_FSROOT (secure_getenv) once more; called at every initialisation.
void LoadHostRoot();

// The current root without a trailing slash ("" on a real machine).
const std::string& HostRoot();

// True when a host root is in force (a simulated host).
bool IsSimulatedHost();

// Root + absolute host path. `hostPath` must start with '/'.
std::string HostPath(std::string_view hostPath);

// The inverse for paths the library resolved itself (realpath): a path inside
// the root is reported as it would look on a real host; others pass unchanged.
std::string StripHostRoot(std::string_view resolvedPath);

// realpath() of a host path, reported relative to the root; empty on failure.
std::string RealHostPath(std::string_view hostPath);

}  // namespace dksml
