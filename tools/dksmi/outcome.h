// Exit codes and the verdict on a snapshot: whether there is anything to
// show, and if not, what to tell the operator.
#pragma once

#include <optional>
#include <string>

#include "options.h"
#include "snapshot.h"

namespace dksmi {

enum ExitCode : int {
    kExitOk = 0,
    kExitFailure = 1,           // unexpected internal failure
    kExitUsage = 2,             // bad command line
    kExitDriverNotLoaded = 3,   // GPUs present, kernel driver not loaded
    kExitNoGpu = 4,             // no GPU found at all
    kExitNoSuchDevice = 5,      // -i names an index that does not exist
    kExitNoUsableGpu = 6,       // GPUs present, none can be served (driver loaded)
    kExitRefused = 7,           // dksmi set: not root, or the device refused a setting
};

struct Outcome {
    int exitCode = kExitOk;
    std::string message;        // empty on success
};

Outcome Judge(const Snapshot& snapshot, const Options& options);

}  // namespace dksmi
