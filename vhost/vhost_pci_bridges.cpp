#include "vhost/vhost_pci_bridges.h"

#include <algorithm>
#include <map>
#include <stdexcept>

#include "vhost/vhost_pcie_link.h"

namespace dksml::vhost {
namespace {

[[noreturn]] void Fail(const std::string& bridge, const std::string& what) {
    throw std::runtime_error("profile: bridge " + bridge + ": " + what);
}

PciePortType PortTypeAt(size_t depth) {
    if (depth == 0) return PciePortType::RootPort;
    return depth % 2 == 1 ? PciePortType::UpstreamPort : PciePortType::DownstreamPort;
}

void AddBelow(BridgeSpec& bridge, const DeviceSpec& device, const std::string& child, size_t lastBelow) {
    const unsigned secondary = BusNumberOf(child);
    if (bridge.subordinateBus == 0 && bridge.secondaryBus == 0) {
        bridge.secondaryBus = static_cast<uint8_t>(secondary);
        bridge.numaNode = device.numaNode;
        bridge.localCpuList = device.localCpuList;
    } else if (bridge.secondaryBus != secondary) {
        Fail(bridge.busId, "its children sit on two buses (" + child + " and one on bus " +
                               std::to_string(bridge.secondaryBus) + ")");
    }
    if (secondary <= BusNumberOf(bridge.busId)) Fail(bridge.busId, "child " + child + " is not on a higher bus");
    const std::vector<std::string>& path = device.bridges;
    unsigned highest = BusNumberOf(device.busId);
    for (size_t i = lastBelow; i < path.size(); ++i) highest = std::max(highest, BusNumberOf(path[i]));
    bridge.subordinateBus = static_cast<uint8_t>(std::max<unsigned>(bridge.subordinateBus, highest));
}

}  // namespace

unsigned BusNumberOf(const std::string& busId) { return std::stoul(busId.substr(5, 2), nullptr, 16); }

std::vector<BridgeSpec> CollectBridges(const HostSpec& host) {
    std::map<std::string, BridgeSpec> bridges;
    for (const DeviceSpec& device : host.devices) {
        std::string path = "/sys/devices/" + device.rootComplex;
        for (size_t depth = 0; depth < device.bridges.size(); ++depth) {
            const std::string& busId = device.bridges[depth];
            path += "/" + busId;
            auto [it, added] = bridges.try_emplace(busId);
            BridgeSpec& bridge = it->second;
            if (added) {
                bridge.busId = busId;
                bridge.path = path;
                bridge.portType = PortTypeAt(depth);
                const auto link = host.bridgeLinks.find(busId);
                bridge.link = link == host.bridgeLinks.end() ? DefaultBridgeLink() : link->second;
            } else if (bridge.path != path) {
                Fail(busId, "placed under two parents (" + bridge.path + " and " + path + ")");
            }
            const bool last = depth + 1 == device.bridges.size();
            AddBelow(bridge, device, last ? device.busId : device.bridges[depth + 1], depth + 1);
        }
    }
    for (const auto& [busId, link] : host.bridgeLinks) {
        if (!bridges.contains(busId)) Fail(busId, "has a link in bridge_links but no device lists it");
    }
    std::vector<BridgeSpec> result;
    for (auto& [busId, bridge] : bridges) result.push_back(std::move(bridge));
    return result;
}

}  // namespace dksml::vhost
