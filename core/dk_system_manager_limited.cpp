// Devices that were found but cannot be served, and why.
#include <cstdio>
#include <string_view>

#include "core/dk_device.h"
#include "core/dk_driver_data_handler_factory.h"
#include "core/dk_file_text.h"
#include "core/dk_host_root.h"
#include "core/dk_pci_entry.h"
#include "core/dk_system_manager.h"
#include "core/dk_system_manager_state.h"
#include "driver/dk_text.h"

namespace dksml {
namespace {

constexpr const char* c_modulesPath = "/proc/modules";
constexpr std::string_view c_driverModuleName = "dravik";

struct DkReasonRow {
    uint32_t reason;
    const char* text;
};

constexpr DkReasonRow c_reasonTexts[] = {
    {DK_SML_UNAVAILABLE_DRIVER_NOT_FOUND, "Dravik Kernel Driver Not Found"},
    {DK_SML_UNAVAILABLE_LAYOUT_NODE_NOT_FOUND, "Layout Node Not Found"},
    {DK_SML_UNAVAILABLE_SYSFS_INACCESSIBLE, "Dravik Sysfs File Unaccessible"},
    {DK_SML_UNAVAILABLE_VBIOS_INCOMPATIBLE, "Driver And Vbios Compatibility Check Failed"},
};

const char* ReasonText(uint32_t reason) {
    for (const DkReasonRow& row : c_reasonTexts)
        if (row.reason == reason) return row.text;
    return "";
}

// CheckIsDriverInstalled: 4 when "/proc/modules" cannot be read.
DkSmlReturn CheckIsDriverInstalled(bool& installed) {
    std::string text;
    if (ReadFileText(HostPath(c_modulesPath), text) != DK_SML_SUCCESS) return DK_SML_ERROR_SYSFS;
    installed = false;
    DkTextLines lines(text);
    std::string_view line;
    while (lines.Next(line))
        if (line.find(c_driverModuleName) != std::string_view::npos) installed = true;
    return DK_SML_SUCCESS;
}

void FillReason(DkSmlDeviceUnavailableReasonInfo* info, uint32_t reason) {
    info->reason = reason;
    std::snprintf(info->reasonText, sizeof(info->reasonText), "%s", ReasonText(reason));
}

}  // namespace

// Reason 100 also stands when "/proc/modules" cannot be read (the driver
// cannot be confirmed as loaded); the status then is 4.
DkSmlReturn DkSystemManager::CheckNodeInvalidReason(const std::string& bdfId, uint32_t& reason, std::string& text,
                                                    const DkSmlReturn* powerState) const {
    bool installed = false;
    DkSmlReturn result = CheckIsDriverInstalled(installed);
    if (result != DK_SML_SUCCESS || !installed) {
        reason = DK_SML_UNAVAILABLE_DRIVER_NOT_FOUND;
    } else {
        // One open tells "absent" (3) from "there but unreadable" (4).
        DkSmlReturn status = powerState != nullptr ? *powerState : DK_SML_SUCCESS;
        if (powerState == nullptr) {
            const DkDirFd searchDir = CurrentHostRoot()->OpenDir(ReadState().searchPath);
            const DkPciEntry entry{searchDir.Get(), bdfId};
            std::string content;
            status = ReadFileTextAt(searchDir.Get(), entry.File("smi/pcipowerstate").c_str(), content);
        }
        const bool unreadable = status == DK_SML_ERROR_SYSFS;
        reason = unreadable ? DK_SML_UNAVAILABLE_SYSFS_INACCESSIBLE : DK_SML_UNAVAILABLE_LAYOUT_NODE_NOT_FOUND;
    }
    text = ReasonText(reason);
    return result;
}

const DkLimitedDeviceInfo* DkSystemManager::FindLimitedDevice(uint32_t deviceIndex) const {
    auto it = ReadState().limitedDevices.find(deviceIndex);
    return it == ReadState().limitedDevices.end() ? nullptr : &it->second;
}

bool DkSystemManager::IsLimitedDevice(uint32_t deviceIndex) const {
    Hold hold;
    return FindLimitedDevice(deviceIndex) != nullptr;
}

DkSmlReturn DkSystemManager::GetAllLimitedDevices(uint32_t* count, uint32_t* deviceIndices) const {
    Hold hold;
    if (count == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    const auto& limited = ReadState().limitedDevices;
    uint32_t capacity = *count;
    *count = static_cast<uint32_t>(limited.size());
    if (capacity < limited.size()) return DK_SML_ERROR_INSUFFICIENT_SIZE;
    if (limited.empty()) return DK_SML_SUCCESS;
    if (deviceIndices == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    for (const auto& [index, info] : limited) *deviceIndices++ = index;
    return DK_SML_SUCCESS;
}

DkSmlReturn DkSystemManager::GetLimitedDeviceInfo(uint32_t deviceIndex, DkSmlLimitedDeviceInfo* info) const {
    Hold hold;
    if (info == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    const DkLimitedDeviceInfo* limited = FindLimitedDevice(deviceIndex);
    if (limited == nullptr) return DK_SML_ERROR_DEVICE_NOT_AVAILABLE;
    info->deviceIndex = deviceIndex;
    std::snprintf(info->bdfId, sizeof(info->bdfId), "%s", limited->bdfId.c_str());
    info->vendorId = limited->vendorId;
    info->deviceId = limited->deviceId;
    info->isVf = limited->isVf ? 1 : 0;
    info->unavailableReason = limited->reason;
    return DK_SML_SUCCESS;
}

// A limited device is never active.
DkSmlReturn DkSystemManager::GetLimitedDeviceState(uint32_t deviceIndex, int32_t* state) const {
    Hold hold;
    if (state == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (FindLimitedDevice(deviceIndex) == nullptr) return DK_SML_ERROR_DEVICE_NOT_AVAILABLE;
    *state = 0;
    return DK_SML_SUCCESS;
}

DkSmlReturn DkSystemManager::GetLimitedDeviceDieCount(uint32_t deviceIndex, uint32_t* dieCount) const {
    Hold hold;
    if (dieCount == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    const DkLimitedDeviceInfo* limited = FindLimitedDevice(deviceIndex);
    if (limited == nullptr) return DK_SML_ERROR_DEVICE_NOT_AVAILABLE;
    *dieCount = DirectoryOpens(HostPath(ReadState().searchPath + "/" + limited->bdfId + "/smi1")) ? 2 : 1;
    return DK_SML_SUCCESS;
}

// Asked afresh: the driver may have been loaded since discovery.
DkSmlReturn DkSystemManager::GetLimitedDeviceUnavailableReason(uint32_t deviceIndex,
                                                               DkSmlDeviceUnavailableReasonInfo* info) const {
    Hold hold;
    if (info == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    const DkLimitedDeviceInfo* limited = FindLimitedDevice(deviceIndex);
    if (limited == nullptr) return DK_SML_ERROR_DEVICE_NOT_AVAILABLE;
    uint32_t reason = 0;
    std::string text;
    DkSmlReturn result = CheckNodeInvalidReason(limited->bdfId, reason, text);
    if (result != DK_SML_SUCCESS) return result;
    FillReason(info, reason);
    return DK_SML_SUCCESS;
}

// A die of a limited device shares the device's reason, except that a die
// the loaded driver can be read through but published no layout node for was
// refused by the driver: that is the VBIOS compatibility check failing.
DkSmlReturn DkSystemManager::GetLimitedDieUnavailableReason(uint32_t deviceIndex, uint32_t dieId,
                                                            DkSmlDeviceUnavailableReasonInfo* info) const {
    Hold hold;
    if (info == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    uint32_t dieCount = 0;
    DkSmlReturn result = GetLimitedDeviceDieCount(deviceIndex, &dieCount);
    if (result != DK_SML_SUCCESS) return result;
    if (dieId >= dieCount) return DK_SML_ERROR_INVALID_DIE_ID;
    result = GetLimitedDeviceUnavailableReason(deviceIndex, info);
    if (result != DK_SML_SUCCESS) return result;
    if (info->reason == DK_SML_UNAVAILABLE_LAYOUT_NODE_NOT_FOUND) FillReason(info, DK_SML_UNAVAILABLE_VBIOS_INCOMPATIBLE);
    return DK_SML_SUCCESS;
}

std::shared_ptr<IDkDevice> DkSystemManager::MockDevice(const std::string& deviceDir) const {
    Hold hold;
    size_t slash = deviceDir.rfind('/');
    if (slash == std::string::npos || slash + 1 >= deviceDir.size()) return nullptr;
    DkSysInfo info;
    info.bdfId = deviceDir.substr(slash + 1);
    const std::string searchPath = deviceDir.substr(0, slash);
    const DkDirFd searchDir = CurrentHostRoot()->OpenDir(searchPath);
    GetDkDeviceInfo(DkPciEntry{searchDir.Get(), info.bdfId}, searchPath, info);
    auto device = std::make_shared<DkDevice>(deviceDir.substr(0, slash));
    device->SetAttributeWithHandler(info, DkDriverDataHandlerFactory::CreateDriverDataHandler());
    return device;
}

}  // namespace dksml
