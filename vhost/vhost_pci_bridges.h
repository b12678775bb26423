// The PCI bridges (root ports and switch ports) a profile implies through its
// devices' "bridges" lists, with the bus numbers their nesting gives.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "vhost/vhost_config_space.h"
#include "vhost/vhost_profile.h"

namespace dksml::vhost {

struct BridgeSpec {
    std::string busId;
    std::string path;            // host path of its directory under /sys/devices
    uint8_t secondaryBus = 0;    // the bus of the functions directly below it
    uint8_t subordinateBus = 0;  // the highest bus number below it
    PciePortType portType = PciePortType::RootPort;
    int numaNode = -1;           // those of the first function below it
    std::string localCpuList;
    PcieLinkSpec link;
};

// Root ports come first in a list, then alternately upstream and downstream
// switch ports. Throws std::runtime_error when one bridge is placed under two
// parents, has its children on two buses, or sits on a bus at or below its own.
std::vector<BridgeSpec> CollectBridges(const HostSpec& host);

unsigned BusNumberOf(const std::string& busId);

}  // namespace dksml::vhost
