#include "features/pcie/dk_pcie.h"

#include <cctype>
#include <string>
#include <string_view>

#include "core/idk_device.h"
#include "driver/dk_opcode.h"
#include "driver/dk_text.h"
#include "features/pcie/dk_smbios.h"

namespace dksml {
namespace {

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

// The maximum link of the function itself or of its upstream port.
struct DkMaxLinkFiles {
    dravik_smi_opcode speed;
    dravik_smi_opcode width;
};
constexpr DkMaxLinkFiles c_ownLink = {DRAVIK_SMI_MAXLINKSPEED, DRAVIK_SMI_MAXLINKWIDTH};
constexpr DkMaxLinkFiles c_upstreamLink = {DRAVIK_SMI_UPSTREAMMAXLINKSPEED, DRAVIK_SMI_UPSTREAMMAXLINKWIDTH};

DkSmlReturn GetPcieMaxLinkSpeedWidth(IDkDevice& device, const DkMaxLinkFiles& files, DkSmlPcieInfo& info) {
    if (device.FetchDriverData(0, files.speed, t_scratch) != DK_SML_SUCCESS) return DK_SML_ERROR_SYSFS;
    DkSmlReturn result = GetSpeed(t_scratch, info.speed);
    if (result != DK_SML_SUCCESS) return result;
    if (info.speed == 0.0f) info.speed = c_unknownSlotSpeed;
    if (device.FetchDriverData(0, files.width, t_scratch) != DK_SML_SUCCESS) return DK_SML_ERROR_SYSFS;
    return GetWidth(t_scratch, info.width);
}

// The upstream port is the directory above the function's resolved one; the
// handler answers DK_SML_ERROR_NOT_SUPPORTED only when there is none.
bool HasUpstreamPort(IDkDevice& device) {
    return device.FetchDriverData(0, DRAVIK_SMI_UPSTREAMPORT, t_scratch) != DK_SML_ERROR_NOT_SUPPORTED;
}

// Writes go through the handler, which answers DK_SML_ERROR_NOT_SUPPORTED when
// the file's directory is absent; callers have always seen DK_SML_ERROR_SYSFS
// for a file that cannot be opened for writing.
DkSmlReturn WriteRequest(IDkDevice& device, unsigned int dieId, dravik_smi_opcode op, uint32_t value) {
    const DkSmlReturn result = device.SetDriverData(dieId, op, std::to_string(value));
    return result == DK_SML_ERROR_NOT_SUPPORTED ? DK_SML_ERROR_SYSFS : result;
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
    if (!HasUpstreamPort(*device)) return DK_SML_ERROR_PCI_BRIDGE;
    DkSmlPcieInfo upstream{}, own{};
    DkSmlReturn result = GetPcieMaxLinkSpeedWidth(*device, c_upstreamLink, upstream);
    if (result == DK_SML_SUCCESS) result = GetPcieMaxLinkSpeedWidth(*device, c_ownLink, own);
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
    if (device->FetchDriverData(0, DRAVIK_SMI_DMITABLE, t_scratch) != DK_SML_SUCCESS) return DK_SML_ERROR_SYSFS;
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
    return WriteRequest(*device, 0, DRAVIK_SMI_SETPCIDELAY, delay);
}

DkSmlReturn DkPcie::SetPciSpeed(IDkDevice* device, DkSmlPciGen generation) {
    if (device == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (const DkSmlReturn refused = CheckDelayPreconditions(*device)) return refused;
    DkSmlPcieInfo maximum{};
    if (const DkSmlReturn result = GetPcieMaxLinkInfo(device, &maximum)) return result;
    const uint32_t requested = static_cast<uint32_t>(generation);
    if (requested == 0 || requested > GenerationOfSpeed(maximum.speed)) return DK_SML_ERROR_INVALID_INPUT;
    return WriteRequest(*device, 0, DRAVIK_SMI_SETPCISPEED, requested);
}

}  // namespace dksml
