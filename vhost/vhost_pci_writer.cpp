#include <algorithm>
#include <array>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "core/dk_pci_ids.h"

#include "vhost/vhost_attributes.h"
#include "vhost/vhost_config_space.h"
#include "vhost/vhost_cpu_topology.h"
#include "vhost/vhost_fs.h"
#include "vhost/vhost_pci_bridges.h"
#include "vhost/vhost_pcie_link.h"
#include "vhost/vhost_writers.h"

namespace dksml::vhost {
namespace {

namespace fs = std::filesystem;

constexpr const char* c_devicesLinkDir = "/sys/bus/pci/devices/";
constexpr const char* c_driversDir = "/sys/bus/pci/drivers/";
constexpr uint16_t c_totalVfs = 8;

std::string HexId(uint32_t value) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%04x\n", value);
    return text;
}

std::string HexByte(uint32_t value) {
    char text[8];
    std::snprintf(text, sizeof text, "0x%02x\n", value & 0xffu);
    return text;
}

uint32_t ClassCode(const std::string& text) { return std::stoul(text, nullptr, 16) & 0xffffffu; }

// Ids of the bridges a profile implies: the platform's root ports, and a
// PCIe switch for switch ports.
struct BridgeIdentity {
    uint16_t vendorId;
    uint16_t deviceId;
};
constexpr std::array<std::pair<PciePortType, BridgeIdentity>, 3> c_bridgeIds{{
    {PciePortType::RootPort, {0x8086, 0x347a}},
    {PciePortType::UpstreamPort, {0x1000, 0xc030}},
    {PciePortType::DownstreamPort, {0x1000, 0xc030}},
}};
constexpr uint32_t c_bridgeClass = 0x060400;

BridgeIdentity BridgeIdentityOf(PciePortType type) {
    for (const auto& [portType, identity] : c_bridgeIds) {
        if (portType == type) return identity;
    }
    return c_bridgeIds.front().second;
}

// Sysfs "resource": one start/end/flags line per BAR, ROM and bridge window.
// No address space is assigned, so every line is empty.
std::string EmptyResourceText() {
    constexpr unsigned c_resourceLines = 13;
    std::string text;
    for (unsigned line = 0; line < c_resourceLines; ++line) {
        text += "0x0000000000000000 0x0000000000000000 0x0000000000000000\n";
    }
    return text;
}

// The files every function and bridge has for the link and its locality.
void WriteLinkAndLocality(const fs::path& root, const std::string& dir, const PcieLinkSpec& link, int numaNode,
                          const std::string& cpuList, unsigned cpuBits) {
    WriteText(root, dir + "/max_link_speed", LinkSpeedText(link.maxGeneration) + "\n");
    WriteText(root, dir + "/max_link_width", std::to_string(link.maxWidth) + "\n");
    WriteText(root, dir + "/current_link_speed", LinkSpeedText(link.generation) + "\n");
    WriteText(root, dir + "/current_link_width", std::to_string(link.width) + "\n");
    WriteText(root, dir + "/numa_node", std::to_string(numaNode) + "\n");
    WriteText(root, dir + "/local_cpulist", cpuList + "\n");
    WriteText(root, dir + "/local_cpus", CpuMaskText(ParseCpuList(cpuList), cpuBits) + "\n");
    WriteText(root, dir + "/resource", EmptyResourceText());
    WriteText(root, dir + "/irq", "0\n");
    WriteText(root, dir + "/enable", "1\n");
}

void WriteBridge(const fs::path& root, const BridgeSpec& bridge, unsigned cpuBits) {
    const BridgeIdentity identity = BridgeIdentityOf(bridge.portType);
    ConfigSpaceSpec config;
    config.vendorId = identity.vendorId;
    config.deviceId = identity.deviceId;
    config.classCode = c_bridgeClass;
    config.bridge = true;
    config.primaryBus = static_cast<uint8_t>(BusNumberOf(bridge.busId));
    config.secondaryBus = bridge.secondaryBus;
    config.subordinateBus = bridge.subordinateBus;
    config.portType = bridge.portType;
    config.portNumber = static_cast<uint8_t>(std::stoul(bridge.busId.substr(8, 2), nullptr, 16));
    config.maxLink = {bridge.link.maxGeneration, bridge.link.maxWidth};
    config.currentLink = {bridge.link.generation, bridge.link.width};
    WriteText(root, bridge.path + "/config", EncodeConfigSpace(config));
    WriteText(root, bridge.path + "/vendor", HexId(identity.vendorId));
    WriteText(root, bridge.path + "/device", HexId(identity.deviceId));
    WriteText(root, bridge.path + "/subsystem_vendor", HexId(0));
    WriteText(root, bridge.path + "/subsystem_device", HexId(0));
    WriteText(root, bridge.path + "/class", "0x060400\n");
    WriteText(root, bridge.path + "/revision", HexByte(0));
    WriteText(root, bridge.path + "/secondary_bus_number", std::to_string(bridge.secondaryBus) + "\n");
    WriteText(root, bridge.path + "/subordinate_bus_number", std::to_string(bridge.subordinateBus) + "\n");
    WriteLinkAndLocality(root, bridge.path, bridge.link, bridge.numaNode, bridge.localCpuList, cpuBits);
    LinkRelative(root, c_devicesLinkDir + bridge.busId, bridge.path);
}

unsigned VfCount(const HostSpec& host, const DeviceSpec& pf) {
    unsigned count = 0;
    for (const DeviceSpec& vf : host.devices) count += vf.parent == pf.busId ? 1 : 0;
    return count;
}

// Routing ids are bus << 8 | devfn; the first VF's distance from the PF and
// the step between VFs are what the SR-IOV capability advertises.
unsigned RoutingId(const std::string& busId) {
    const unsigned device = std::stoul(busId.substr(8, 2), nullptr, 16);
    const unsigned function = std::stoul(busId.substr(11, 1), nullptr, 16);
    return BusNumberOf(busId) << 8 | device << 3 | function;
}

std::optional<SriovState> SriovOf(const HostSpec& host, const DeviceSpec& device) {
    if (device.kind != FunctionKind::Physical) return std::nullopt;
    SriovState sriov;
    sriov.totalVfs = c_totalVfs;
    sriov.numVfs = static_cast<uint16_t>(VfCount(host, device));
    const DkProductRow* product = nullptr;
    for (const DkProductRow& row : c_productTable) {
        if (row.pfDeviceId == device.deviceId) product = &row;
    }
    sriov.vfDeviceId = static_cast<uint16_t>(product != nullptr ? product->vfDeviceId : device.deviceId);
    std::vector<unsigned> vfIds;
    for (const DeviceSpec& vf : host.devices) {
        if (vf.parent == device.busId) vfIds.push_back(RoutingId(vf.busId));
    }
    std::sort(vfIds.begin(), vfIds.end());
    if (!vfIds.empty()) {
        sriov.firstVfOffset = static_cast<uint16_t>(vfIds.front() - RoutingId(device.busId));
        sriov.vfStride = static_cast<uint16_t>(vfIds.size() > 1 ? vfIds[1] - vfIds[0] : 1);
    }
    return sriov;
}

void WriteConfigSpace(const fs::path& root, const HostSpec& host, const DeviceSpec& device) {
    ConfigSpaceSpec config;
    config.vendorId = static_cast<uint16_t>(device.vendorId);
    config.deviceId = static_cast<uint16_t>(device.deviceId);
    config.classCode = ClassCode(device.pciClass);
    config.revision = static_cast<uint8_t>(device.revision);
    config.subsystemVendorId = static_cast<uint16_t>(device.subsystemVendorId);
    config.subsystemDeviceId = static_cast<uint16_t>(device.subsystemDeviceId);
    config.maxLink = {device.link.maxGeneration, device.link.maxWidth};
    config.currentLink = {device.link.generation, device.link.width};
    config.sriov = SriovOf(host, device);
    WriteText(root, PciDevicePath(device) + "/config", EncodeConfigSpace(config));
}

void ApplyOverrides(std::map<std::string, std::string>& texts, const TextOverrides& overrides) {
    for (const auto& [name, text] : overrides) {
        if (text) {
            texts[name] = *text;
        } else {
            texts.erase(name);
        }
    }
}

void WriteDies(const fs::path& root, const HostSpec& host, const DeviceSpec& device) {
    const std::string dir = PciDevicePath(device);
    for (unsigned die = 0; die < device.dies.size(); ++die) {
        auto texts = DefaultDieAttributes({device, die, host.virtualMachine});
        ApplyOverrides(texts, device.attributes);
        ApplyOverrides(texts, device.dies[die].attributes);
        const std::string smi = dir + (die == 0 ? "/smi/" : "/smi1/");
        MakeDirectory(root, smi);
        for (const auto& [name, text] : texts) WriteText(root, smi + name, text);
    }
}

std::string GpuvfText(const HostSpec& host, const DeviceSpec& pf) {
    std::string text;
    unsigned number = 0;
    for (const DeviceSpec& vf : host.devices) {
        if (vf.parent != pf.busId) continue;
        text += "VF #" + std::to_string(number++) + "\nBusId: " + vf.busId + "\nVF State: Active\n\n";
    }
    return text;
}

void WriteSriov(const fs::path& root, const HostSpec& host, const DeviceSpec& device) {
    const std::string dir = PciDevicePath(device);
    if (device.kind == FunctionKind::Virtual) {
        if (const DeviceSpec* pf = host.FindDevice(device.parent)) LinkRelative(root, dir + "/physfn", PciDevicePath(*pf));
        return;
    }
    unsigned vfCount = 0;
    for (const DeviceSpec& vf : host.devices) {
        if (vf.parent != device.busId) continue;
        LinkRelative(root, dir + "/virtfn" + std::to_string(vfCount++), PciDevicePath(vf));
    }
    WriteText(root, dir + "/sriov_totalvfs", std::to_string(c_totalVfs) + "\n");
    WriteText(root, dir + "/sriov_numvfs", std::to_string(vfCount) + "\n");
    WriteText(root, dir + "/model", "native\n");
    if (vfCount > 0) WriteText(root, dir + "/gpuvf", GpuvfText(host, device));
}

void WriteFunction(const fs::path& root, const HostSpec& host, const DeviceSpec& device, unsigned cpuBits) {
    const std::string dir = PciDevicePath(device);
    WriteConfigSpace(root, host, device);
    WriteText(root, dir + "/vendor", HexId(device.vendorId));
    WriteText(root, dir + "/device", HexId(device.deviceId));
    WriteText(root, dir + "/subsystem_vendor", HexId(device.subsystemVendorId));
    WriteText(root, dir + "/subsystem_device", HexId(device.subsystemDeviceId));
    WriteText(root, dir + "/class", device.pciClass + "\n");
    WriteText(root, dir + "/revision", HexByte(device.revision));
    WriteLinkAndLocality(root, dir, device.link, device.numaNode, device.localCpuList, cpuBits);
    LinkRelative(root, c_devicesLinkDir + device.busId, dir);
    if (!device.driver.empty()) {
        const std::string driverDir = c_driversDir + device.driver;
        MakeDirectory(root, driverDir);
        LinkRelative(root, dir + "/driver", driverDir);
        LinkRelative(root, driverDir + "/" + device.busId, dir);
    }
    if (!device.IsGpu()) return;
    WriteSriov(root, host, device);
    if (host.driverLoaded) WriteDies(root, host, device);
}

void WriteDeviceFiles(const fs::path& root, const DeviceSpec& device) {
    const std::string dir = PciDevicePath(device);
    for (const auto& [relative, text] : device.files) {
        const std::string path = dir + "/" + relative;
        if (text) {
            WriteText(root, path, *text);
        } else {
            RemovePath(root, path);
        }
    }
}

}  // namespace

std::string PciDevicePath(const DeviceSpec& device) {
    std::string path = "/sys/devices/" + device.rootComplex;
    for (const std::string& bridge : device.bridges) path += "/" + bridge;
    return path + "/" + device.busId;
}

void WritePciTree(const fs::path& root, const HostSpec& host) {
    MakeDirectory(root, c_devicesLinkDir);
    MakeDirectory(root, c_driversDir);
    const unsigned cpuBits = PossibleCpuCount(host);
    for (const BridgeSpec& bridge : CollectBridges(host)) WriteBridge(root, bridge, cpuBits);
    for (const DeviceSpec& device : host.devices) WriteFunction(root, host, device, cpuBits);
    for (const DeviceSpec& device : host.devices) WriteDeviceFiles(root, device);
}

}  // namespace dksml::vhost
