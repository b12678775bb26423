#include <string>

#include "vhost/vhost_fs.h"
#include "vhost/vhost_writers.h"

namespace dksml::vhost {
namespace {

namespace fs = std::filesystem;

constexpr const char* c_debugDir = "/sys/kernel/debug/dkcd/";

// Modules every host of ours has loaded, whatever its GPUs.
constexpr const char* c_baseModules =
    "nvme 61440 2 - Live 0x0000000000000000\n"
    "nvme_core 204800 3 nvme, Live 0x0000000000000000\n"
    "ahci 49152 0 - Live 0x0000000000000000\n"
    "ipmi_si 86016 0 - Live 0x0000000000000000\n";
constexpr const char* c_driverModules =
    "dravik 12582912 4 - Live 0x0000000000000000\n"
    "dkgvm 98304 1 dravik, Live 0x0000000000000000\n"
    "drm_ttm_helper 16384 1 dravik, Live 0x0000000000000000\n";

void WriteModules(const fs::path& root, const HostSpec& host) {
    WriteText(root, "/proc/modules", std::string(c_baseModules) + (host.driverLoaded ? c_driverModules : ""));
}

void WriteRenderNodes(const fs::path& root, const HostSpec& host) {
    MakeDirectory(root, "/dev/dri/by-path");
    for (const DeviceSpec& device : host.devices) {
        if (!device.IsGpu() || device.card < 0) continue;
        const std::string card = "/dev/dri/card" + std::to_string(device.card);
        const std::string render = "/dev/dri/renderD" + std::to_string(128 + device.card);
        WriteText(root, card, "");
        WriteText(root, render, "");
        LinkRelative(root, "/dev/dri/by-path/pci-" + device.busId + "-card", card);
        LinkRelative(root, "/dev/dri/by-path/pci-" + device.busId + "-render", render);
    }
}

void WriteProcess(const fs::path& root, const ProcessSpec& process) {
    const std::string dir = c_debugDir + std::string("proc/") + std::to_string(process.pid) + "/";
    if (process.driverDir) WriteClientDirectory(root, dir, process);
    const std::string host = "/proc/" + std::to_string(process.pid) + "/";
    WriteText(root, host + "comm", process.name.substr(0, 15) + "\n");
    MakeDirectory(root, host + "fd");
    if (process.holdsDeviceNode) LinkRelative(root, host + "fd/3", "/dev/dkcd");
}

void WriteDriverFiles(const fs::path& root, const HostSpec& host) {
    if (!host.driverLoaded) return;
    WriteText(root, "/sys/devices/virtual/dkcd/dkcd/manager/system_maintenance",
              std::to_string(host.operatingMode) + "\n");
    WriteText(root, "/dev/dkcd", "");
    WriteText(root, std::string(c_debugDir) + "reg_dump", "0x00000000\n");
    WriteText(root, std::string(c_debugDir) + "select_gpu_id", "0\n");
    MakeDirectory(root, std::string(c_debugDir) + "proc");
    for (const ProcessSpec& process : host.processes) WriteProcess(root, process);
}

void WriteExtraFiles(const fs::path& root, const HostSpec& host) {
    for (const auto& [path, text] : host.files) {
        if (text) {
            WriteText(root, path, *text);
        } else {
            RemovePath(root, path);
        }
    }
}

}  // namespace

void WriteSystemFiles(const fs::path& root, const HostSpec& host) {
    WriteModules(root, host);
    WriteRenderNodes(root, host);
    WriteDriverFiles(root, host);
    WriteExtraFiles(root, host);
}

}  // namespace dksml::vhost
