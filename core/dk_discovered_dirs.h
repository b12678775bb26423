// Directories discovery opens anyway while it reads a GPU function's files:
// the function's own directory (its id files, driver link and probes are
// then one lookup each instead of the bus link again per file), its "smi/"
// directory and its layout node's directory. The device adopts them, so
// none is opened a second time from the root.
#pragma once

#include "driver/dk_dir_fd.h"

namespace dksml {

struct DkDiscoveredDirs {
    DkDirFd function;  // the PCI function ("<search path>/<bus id>")
    DkDirFd smi0;      // its "smi/"
    DkDirFd node;      // its layout node; not open without one
};

}  // namespace dksml
