// The default text of every per-die driver attribute of a GPU function, as the
// driver of its model family prints it. Profiles override or drop entries.
#pragma once

#include <map>
#include <string>

#include "vhost/vhost_profile.h"

namespace dksml::vhost {

struct DieContext {
    const DeviceSpec& device;
    unsigned die = 0;
    bool virtualMachine = false;  // the host is a guest: "showvmtype" reads "guest"
};

// Attribute file name (in smi/ or smi1/) to its text.
std::map<std::string, std::string> DefaultDieAttributes(const DieContext& context);

}  // namespace dksml::vhost
