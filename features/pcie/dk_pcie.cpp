#include "features/pcie/dk_pcie.h"

#include <cctype>
#include <string>
#include <string_view>

#include "core/dk_host_root.h"
#include "core/idk_device.h"
#include "driver/dk_opcode.h"
#include "driver/dk_text.h"
#include "features/pcie/dk_smbios.h"

namespace dksml {
namespace {

constexpr const char* c_dmiTable = "/sys/firmware/dmi/tables/DMI";
constexpr const char* c_maxLinkSpeedFile = "/max_link_speed";
constexpr const char* c_maxLinkWidthFile = "/max_link_width";
constexpr const char* c_setPciDelayFile = "setpcidelay";
constexpr const char* c_setPciSpeedFile = "setpcispeed";
constexpr std::string_view c_guestRole = "guest";
constexpr uint32_t c_minPciDelay = 1;
constexpr uint32_t c_maxPciDelay = 10000;
// A slot whose speed the kernel cannot tell ("Unknown") does not limit the link.
constexpr float c_unknownSlotSpeed = 32.0f;
// The upstream bandwidth text lists rx bytes, tx bytes, rx packets,
// tx packets, max payload and replay count; throughput is the byte pair.
constexpr size_t c_rxBytesCounter = 0;
constexpr size_t c_txBytesCounter = 1;

struct DkSpeedGeneration {
    float speed;
    uint32_t generation;
};
constexpr DkSpeedGeneration c_speedGenerations[] = {{2.5f, 1}, {5.0f, 2}, {8.0f, 3}, {16.0f, 4}, {32.0f, 5}};

uint32_t GenerationOfSpeed(float speed) {
    for (const DkSpeedGeneration& row : c_speedGenerations) {
        if (row.speed == speed) return row.generation;
    }
    return 0;
}

thread_local std::string t_scratch;

// "16.0 GT/s PCIe": the number before the first blank. Text that does not
// start with a digit ("Unknown") is speed 0.
DkSmlReturn GetSpeed(std::string_view text, float& speed) {
    DkTextLines lines(text);
    std::string_view line;
    if (!lines.Next(line) || line.empty()) return DK_SML_ERROR_SYSFS;
    if (!std::isdigit(static_cast<unsigned char>(line.front()))) {
        speed = 0.0f;
        return DK_SML_SUCCESS;
    }
    const size_t blank = line.find(' ');
    if (blank == std::string_view::npos) return DK_SML_ERROR_SYSFS;
    return stof_nt(line.substr(0, blank), speed) ? DK_SML_SUCCESS : DK_SML_ERROR_SYSFS;
}

DkSmlReturn GetWidth(std::string_view text, uint32_t& width) {
    DkTextLines lines(text);
    std::string_view line;
    if (!lines.Next(line)) return DK_SML_ERROR_SYSFS;
    return ExtractNumber(line, width) ? DK_SML_SUCCESS : DK_SML_ERROR_SYSFS;
}

DkSmlReturn GetPcieMaxLinkSpeedWidth(const std::string& pciDir, DkSmlPcieInfo& info) {
    if (ReadFileText(HostPath(pciDir + c_maxLinkSpeedFile), t_scratch) != DK_SML_SUCCESS) return DK_SML_ERROR_SYSFS;
    DkSmlReturn result = GetSpeed(t_scratch, info.speed);
    if (result != DK_SML_SUCCESS) return result;
    if (info.speed == 0.0f) info.speed = c_unknownSlotSpeed;
    if (ReadFileText(HostPath(pciDir + c_maxLinkWidthFile), t_scratch) != DK_SML_SUCCESS) return DK_SML_ERROR_SYSFS;
    return GetWidth(t_scratch, info.width);
}

// The upstream port: the resolved PCI directory without its last component.
std::string GetBridgePath(const IDkDevice& device) {
    const std::string real = RealHostPath(device.GetDeviceDir());
    const size_t slash = real.rfind('/');
    if (real.empty() || slash == std::string::npos || slash == 0) return {};
    return real.substr(0, slash);
}

bool IsVmGuest(IDkDevice& device) {
    if (device.FetchDriverData(0, DRAVIK_SMI_SHOWVMTYPE, t_scratch) != DK_SML_SUCCESS) return false;
    DkTextLines lines(t_scratch);
    std::string_view line;
    return lines.Next(line) && TrimView(line, " \t\r") == c_guestRole;
}

DkSmlReturn CheckDelayPreconditions(const IDkDevice& device) {
    if (device.IsVf() || device.GetDeviceBrand() != DK_SML_BRAND_DKQ) return DK_SML_ERROR_NOT_SUPPORTED;
    return DK_SML_SUCCESS;
}

}  // namespace

DkSmlReturn DkPcie::GetPcieInfo(IDkDevice* device, DkSmlPcieInfo* info) {
    if (device == nullptr || info == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (device->IsVf()) return DK_SML_ERROR_NOT_SUPPORTED;
    DkSmlReturn result = device->FetchDriverData(0, DRAVIK_SMI_PCICURRENTLINKSPEED, t_scratch);
    if (result == DK_SML_SUCCESS) result = GetSpeed(t_scratch, info->speed);
    if (result != DK_SML_SUCCESS) return result;
    result = device->FetchDriverData(0, DRAVIK_SMI_PCICURRENTLINKWIDTH, t_scratch);
    if (result == DK_SML_SUCCESS) result = GetWidth(t_scratch, info->width);
    return result;
}

DkSmlReturn DkPcie::GetPcieMaxLinkInfo(IDkDevice* device, DkSmlPcieInfo* info) {
    if (device == nullptr || info == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (device->IsVf()) return DK_SML_ERROR_NOT_SUPPORTED;
    if (IsVmGuest(*device)) {
        // A guest sees an emulated bridge whose link says nothing about the slot.
        *info = DkSmlPcieInfo{};
        return DK_SML_SUCCESS;
    }
    const std::string bridge = GetBridgePath(*device);
    if (bridge.empty()) return DK_SML_ERROR_PCI_BRIDGE;
    DkSmlPcieInfo upstream{}, own{};
    DkSmlReturn result = GetPcieMaxLinkSpeedWidth(bridge, upstream);
    if (result == DK_SML_SUCCESS) result = GetPcieMaxLinkSpeedWidth(device->GetDeviceDir(), own);
    if (result != DK_SML_SUCCESS) return result;
    info->speed = upstream.speed < own.speed ? upstream.speed : own.speed;
    info->width = upstream.width < own.width ? upstream.width : own.width;
    return DK_SML_SUCCESS;
}

DkSmlReturn DkPcie::GetPcieBandwidth(IDkDevice* device, DkSmlPcieBandwidth* bandwidth) {
    if (device == nullptr || bandwidth == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (device->IsVf()) return DK_SML_ERROR_NOT_SUPPORTED;
    const DkSmlReturn result = device->FetchDriverData(0, DRAVIK_SMI_SHOWUPSTREAMBANDWIDTH, t_scratch);
    if (result != DK_SML_SUCCESS) return result;
    DkSmlPcieBandwidth parsed{};
    DkTextLines lines(t_scratch);
    for (uint32_t& counter : parsed.counters) {
        const DkSmlReturn line = ReadStringStream(lines, &ProcessValueByColon<unsigned int>, &counter);
        if (line != DK_SML_SUCCESS) return line;
    }
    *bandwidth = parsed;
    return DK_SML_SUCCESS;
}

DkSmlReturn DkPcie::GetPcieThroughput(IDkDevice* device, DkSmlPcieThroughput* throughput) {
    if (throughput == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    DkSmlPcieBandwidth bandwidth{};
    const DkSmlReturn result = GetPcieBandwidth(device, &bandwidth);
    if (result != DK_SML_SUCCESS) return result;
    throughput->rx = bandwidth.counters[c_rxBytesCounter];
    throughput->tx = bandwidth.counters[c_txBytesCounter];
    return DK_SML_SUCCESS;
}

DkSmlReturn DkPcie::GetDeviceSlot(IDkDevice* device, uint32_t* slot) {
    if (device == nullptr || slot == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (ReadFileText(HostPath(c_dmiTable), t_scratch) != DK_SML_SUCCESS) return DK_SML_ERROR_SYSFS;
    // Every function of a device sits in the slot of function 0.
    return FindDmiSlot(t_scratch, device->GetBdfIdUint() & ~7u, slot);
}

DkSmlReturn DkPcie::GetPciDelay(IDkDevice* device, uint32_t* delay) {
    if (device == nullptr || delay == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (const DkSmlReturn refused = CheckDelayPreconditions(*device)) return refused;
    if (device->FetchDriverData(0, DRAVIK_SMI_SHOWPCIDELAY, t_scratch) != DK_SML_SUCCESS) return DK_SML_ERROR_SYSFS;
    uint32_t value = 0;
    if (!ExtractNumber(std::string_view(t_scratch), value)) return DK_SML_ERROR_SYSFS;
    *delay = value;
    return DK_SML_SUCCESS;
}

DkSmlReturn DkPcie::SetPciDelay(IDkDevice* device, uint32_t delay) {
    if (device == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (const DkSmlReturn refused = CheckDelayPreconditions(*device)) return refused;
    if (delay < c_minPciDelay || delay > c_maxPciDelay) return DK_SML_ERROR_INVALID_INPUT;
    return WriteSysfs(device->GetSmiPath(0) + c_setPciDelayFile, delay);
}

DkSmlReturn DkPcie::SetPciSpeed(IDkDevice* device, DkSmlPciGen generation) {
    if (device == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (const DkSmlReturn refused = CheckDelayPreconditions(*device)) return refused;
    DkSmlPcieInfo maximum{};
    if (const DkSmlReturn result = GetPcieMaxLinkInfo(device, &maximum)) return result;
    const uint32_t requested = static_cast<uint32_t>(generation);
    if (requested == 0 || requested > GenerationOfSpeed(maximum.speed)) return DK_SML_ERROR_INVALID_INPUT;
    return WriteSysfs(device->GetSmiPath(0) + c_setPciSpeedFile, requested);
}

}  // namespace dksml
