// The PCI scan: every function under the search path becomes a device, a
// limited device, a network interface or nothing.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/dk_device.h"
#include "driver/dk_dir_list.h"
#include "core/dk_discovered_dirs.h"
#include "core/dk_discovery_ni.h"
#include "core/dk_driver_data_handler_factory.h"
#include "core/dk_host_root.h"
#include "core/dk_pci_entry.h"
#include "core/dk_system_manager.h"
#include "core/dk_system_manager_state.h"
#include "driver/dk_text.h"

namespace dksml {

namespace {

constexpr uint32_t c_lastPfIndex = 99;
// A device answers through its driver only when these open and hold a line
// (files of its "smi/" directory).
constexpr const char* c_accessProbeFiles[] = {"pcipowerstate", "showvendorid"};

// A probe file that opens and holds a line, read through this thread's
// scratch text; `status` is the read's own status. Read through the "smi/"
// descriptor when it opened; else by the path below the function, so that a
// missing or unopenable "smi/" gives the status that path gives.
bool CheckIsSysfsAccessible(const DkDirFd& smi, const DkPciEntry& function, const char* file, DkSmlReturn& status) {
    thread_local std::string text;
    if (smi.IsOpen()) {
        status = ReadFileTextAt(smi.Get(), file, text);
    } else {
        char name[64];
        std::snprintf(name, sizeof name, "smi/%s", file);
        status = ReadFileTextAt(function.dirFd, function.File(name).c_str(), text);
    }
    if (status != DK_SML_SUCCESS) return false;
    DkTextLines lines(text);
    std::string_view line;
    return lines.Next(line);
}

// The first probe is "pcipowerstate": its status is handed on so that the
// reason of a limited device needs no second look at it.
bool CheckIsDeviceAccessible(const DkDirFd& smi, const DkPciEntry& function, DkSmlReturn& powerState) {
    DkSmlReturn status = DK_SML_SUCCESS;
    for (const char* file : c_accessProbeFiles) {
        const bool accessible = CheckIsSysfsAccessible(smi, function, file, status);
        if (file == c_accessProbeFiles[0]) powerState = status;
        if (!accessible) return false;
    }
    return true;
}

// The entries of the directory open on `dirFd` but "." and "..", in
// alphasort's order (strcoll), as views into one buffer: one allocation for
// all the names rather than one per entry. False when it cannot be listed.
bool ListSortedEntries(int dirFd, std::string& names, std::vector<std::string_view>& entries) {
    std::vector<std::size_t> offsets;
    const bool listed = ForEachDirEntry(dirFd, [&](std::string_view name) {
        offsets.push_back(names.size());
        names.append(name).push_back('\0');
    });
    if (!listed) return false;
    const char* base = names.data();
    std::sort(offsets.begin(), offsets.end(),
              [base](std::size_t a, std::size_t b) { return std::strcoll(base + a, base + b) < 0; });
    entries.reserve(offsets.size());
    for (std::size_t offset : offsets) entries.emplace_back(base + offset);
    return true;
}

}  // namespace

void DkSystemManager::DiscoverDkDevices(const std::string& searchPath) {
    // One descriptor for the search directory: the listing reads it, and
    // every function's files are opened relative to it.
    const DkDirFd searchDir = CurrentHostRoot()->OpenListing(searchPath);
    if (!searchDir.IsOpen()) return;
    std::string names;
    std::vector<std::string_view> entries;
    if (!ListSortedEntries(searchDir.Get(), names, entries)) return;
    const uint32_t nicVendorId = GetNicEnvVendorId();
    std::vector<DkLimitedDeviceInfo> limited;
    for (const std::string_view name : entries)
        ScanPciEntry(searchPath, DkPciEntry{searchDir.Get(), name}, nicVendorId, limited);

    // Limited devices are numbered after every usable device of their kind.
    for (DkLimitedDeviceInfo& info : limited) {
        uint32_t index = AssignDeviceIdForNewDevice(info.isVf);
        m_state->limitedDevices.emplace(index, std::move(info));
    }
}

void DkSystemManager::ScanPciEntry(const std::string& searchPath, const DkPciEntry& entry, uint32_t nicVendorId,
                                   std::vector<DkLimitedDeviceInfo>& limited) {
    DkSysInfo info;
    DkDiscoveredDirs dirs;
    if (!GetDkDeviceInfo(entry, searchPath, info, &dirs.function)) {
        if (CheckIsTargetNi(entry, info.vendorId, nicVendorId))
            ParseTargetNiNodeInfo(searchPath + "/" + std::string(entry.name), std::string(entry.name));
        return;
    }
    // The function's files through its own directory when it opened.
    const DkPciEntry function = dirs.function.IsOpen() ? DkPciEntry{dirs.function.Get(), {}} : entry;
    info.bdfId = entry.name;
    if (CheckIsInfinibandEnabled(function)) ParseTargetNiNodeInfo(searchPath + "/" + info.bdfId, info.bdfId);
    dirs.smi0 = dirs.function.OpenSubdir("smi");
    DkSmlReturn powerState = DK_SML_SUCCESS;
    if (!CheckIsDeviceAccessible(dirs.smi0, function, powerState) ||
        (!info.isVf && m_state->gpuNodeMap.count(info.bdfId) == 0)) {
        AppendLimitedDevice(info, powerState, limited);
        return;
    }
    CreateDevice(searchPath, info, std::move(dirs));
}

void DkSystemManager::CreateDevice(const std::string& searchPath, const DkSysInfo& info, DkDiscoveredDirs&& dirs) {
    State& s = *m_state;
    std::shared_ptr<IDkDevice> device = m_deviceFactory->CreateNewDevice(searchPath);
    if (!device) return;
    uint32_t index = AssignDeviceIdForNewDevice(info.isVf);
    device->SetDeviceId(index);
    if (!info.isVf) s.gpuNodeMap[info.bdfId].deviceIndex = index;
    SetDeviceAttribute(*device, info, std::move(dirs));
    s.devices[index] = device;
    s.bdfToDeviceIndex[info.bdfId] = index;
    if (!info.isVf) ++s.availableDeviceCount;
    AddDieKeys(device);
}

uint32_t DkSystemManager::AssignDeviceIdForNewDevice(bool isVf) {
    return isVf ? m_state->nextVfIndex++ : m_state->nextPfIndex++;
}

// Layout-node identity first: the handler copies the node path when it is
// attached. The device adopts the directories the scan opened and the node's
// directory the layout pass opened.
void DkSystemManager::SetDeviceAttribute(IDkDevice& device, const DkSysInfo& info, DkDiscoveredDirs&& dirs) {
    const State& s = *m_state;
    auto* dkDevice = dynamic_cast<DkDevice*>(&device);
    auto node = s.gpuNodeMap.find(info.bdfId);
    if (node != s.gpuNodeMap.end()) {
        device.SetDeviceGpuId(node->second.gpuId);
        device.SetDeviceNodeId(node->second.nodeId);
        device.SetDeviceUuid(node->second.uuid);
        device.SetDeviceNodePath(s.layoutPath + std::to_string(node->second.nodeId));
        if (dkDevice != nullptr) {
            dkDevice->SetApMask(node->second.apMask);
            auto secondDie = s.secondDieGpuIds.find(info.bdfId);
            if (secondDie != s.secondDieGpuIds.end()) dkDevice->SetSecondDieGpuId(secondDie->second);
            dirs.node = TakeNodeDir(node->second.nodeId);
        }
    }
    if (dkDevice != nullptr) dkDevice->AdoptDirectories(std::move(dirs));
    device.SetAttributeWithHandler(info, DkDriverDataHandlerFactory::CreateDriverDataHandler());
}

// The compute stack numbers the dies of physical devices in discovery order;
// a virtual function is reached by its own index instead.
void DkSystemManager::AddDieKeys(const std::shared_ptr<IDkDevice>& device) {
    State& s = *m_state;
    uint32_t index = device->GetDeviceId();
    if (index <= c_lastPfIndex) {
        for (uint32_t die = 0; die < device->GetDieCount(); ++die) s.dies[s.nextDieKey++] = DkDieInfo{die, device};
    } else if (device->IsVf()) {
        s.dies[index] = DkDieInfo{0, device};
    }
}

void DkSystemManager::AppendLimitedDevice(const DkSysInfo& info, DkSmlReturn powerState,
                                          std::vector<DkLimitedDeviceInfo>& limited) const {
    DkLimitedDeviceInfo record;
    record.bdfId = info.bdfId;
    record.vendorId = info.vendorId;
    record.deviceId = info.deviceId;
    record.isVf = info.isVf;
    // The record keeps the reason even when "/proc/modules" cannot be read.
    CheckNodeInvalidReason(info.bdfId, record.reason, record.reasonText, &powerState);
    limited.push_back(std::move(record));
}

}  // namespace dksml
