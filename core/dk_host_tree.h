// The host tree under the host root in force at each call.
#pragma once

#include "driver/dk_host_tree.h"

namespace dksml {

// Stateless: every call applies the root current at that moment.
const IDkHostTree& CurrentHostTree();

}  // namespace dksml
