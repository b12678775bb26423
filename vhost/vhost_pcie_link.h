// PCI Express link defaults and their sysfs text, in one place for the
// profile parser and the PCI writer.
#pragma once

#include <string>

#include <nlohmann/json.hpp>

#include "vhost/vhost_profile.h"

namespace dksml::vhost {

// Link of a function whose profile states none: x-series GPUs run Gen5 x16,
// every other function Gen4 x16. Bridges default to Gen5 x16.
PcieLinkSpec DefaultFunctionLink(int brand);
PcieLinkSpec DefaultBridgeLink();

// A profile "pcie" object ({"max_gen", "max_width", "gen", "width"}; current
// values default to the maximum ones) over `base`. Throws std::runtime_error
// naming `where` for out-of-range values.
PcieLinkSpec ParsePcieLink(const nlohmann::json& value, PcieLinkSpec base, const std::string& where);

// "32.0 GT/s PCIe" as the kernel writes max_link_speed/current_link_speed.
std::string LinkSpeedText(unsigned generation);

}  // namespace dksml::vhost
