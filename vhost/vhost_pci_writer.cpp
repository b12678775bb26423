#include <cstdio>
#include <string>

#include "vhost/vhost_attributes.h"
#include "vhost/vhost_fs.h"
#include "vhost/vhost_writers.h"

namespace dksml::vhost {
namespace {

namespace fs = std::filesystem;

constexpr const char* c_devicesLinkDir = "/sys/bus/pci/devices/";
constexpr const char* c_driversDir = "/sys/bus/pci/drivers/";

std::string HexId(uint32_t value) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%04x\n", value);
    return text;
}

std::string MaxLinkSpeed(const DeviceSpec& device) {
    return device.brand == 4 ? "32.0 GT/s PCIe\n" : "16.0 GT/s PCIe\n";
}

// Root and switch ports: enough for the maximum-link comparison and for
// telling bridges from endpoints.
void WriteBridges(const fs::path& root, const DeviceSpec& device) {
    std::string path = "/sys/devices/" + device.rootComplex;
    for (const std::string& bridge : device.bridges) {
        path += "/" + bridge;
        WriteText(root, path + "/vendor", "0x8086\n");
        WriteText(root, path + "/device", "0x347a\n");
        WriteText(root, path + "/class", "0x060400\n");
        WriteText(root, path + "/max_link_speed", "32.0 GT/s PCIe\n");
        WriteText(root, path + "/max_link_width", "16\n");
        LinkRelative(root, c_devicesLinkDir + bridge, path);
    }
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
    WriteText(root, dir + "/sriov_totalvfs", "8\n");
    WriteText(root, dir + "/sriov_numvfs", std::to_string(vfCount) + "\n");
    WriteText(root, dir + "/model", "native\n");
    if (vfCount > 0) WriteText(root, dir + "/gpuvf", GpuvfText(host, device));
}

void WriteFunction(const fs::path& root, const HostSpec& host, const DeviceSpec& device) {
    const std::string dir = PciDevicePath(device);
    WriteBridges(root, device);
    WriteText(root, dir + "/vendor", HexId(device.vendorId));
    WriteText(root, dir + "/device", HexId(device.deviceId));
    WriteText(root, dir + "/subsystem_vendor", HexId(device.subsystemVendorId));
    WriteText(root, dir + "/subsystem_device", HexId(device.subsystemDeviceId));
    WriteText(root, dir + "/class", device.pciClass + "\n");
    WriteText(root, dir + "/numa_node", std::to_string(device.numaNode) + "\n");
    WriteText(root, dir + "/local_cpulist", device.localCpuList + "\n");
    WriteText(root, dir + "/max_link_speed", MaxLinkSpeed(device));
    WriteText(root, dir + "/max_link_width", "16\n");
    WriteText(root, dir + "/current_link_speed", MaxLinkSpeed(device));
    WriteText(root, dir + "/current_link_width", "16\n");
    WriteText(root, dir + "/enable", "1\n");
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
    for (const DeviceSpec& device : host.devices) WriteFunction(root, host, device);
    for (const DeviceSpec& device : host.devices) WriteDeviceFiles(root, device);
}

}  // namespace dksml::vhost
