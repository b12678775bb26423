// Translations between the library's device index, the driver's GPU and node
// ids, the compute stack's die numbering, UUIDs and PCI bus ids.
#include "core/dk_system_manager.h"
#include "core/dk_system_manager_state.h"

namespace dksml {
namespace {

constexpr uint32_t c_lastPfIndex = 99;

}  // namespace

std::shared_ptr<IDkDevice> DkSystemManager::GetDeviceById(uint32_t deviceIndex) const {
    Hold hold;
    auto it = ReadState().devices.find(deviceIndex);
    return it == ReadState().devices.end() ? nullptr : it->second;
}

// The handle's key part finds the record; the pass number must be the held
// state's own, else the handle is of a replaced pass (or forged).
const DkDieInfo* DkSystemManager::FindDieByHandle(const void* handle) const {
    const auto value = static_cast<uint64_t>(reinterpret_cast<uintptr_t>(handle));
    if (value == 0) return nullptr;
    const auto& dies = ReadState().dies;
    auto it = dies.find(static_cast<uint32_t>((value & 0xFFFFu) - 1));
    return it == dies.end() || it->second.handle != value ? nullptr : &it->second;
}

const DkDieInfo* DkSystemManager::GetDieBySmlId(uint32_t deviceIndex) const {
    for (const auto& [key, die] : ReadState().dies)
        if (die.dieIndex == 0 && die.device && die.device->GetDeviceId() == deviceIndex) return &die;
    return nullptr;
}

// Only physical devices' dies carry the compute stack's numbers; the keys of
// virtual functions are their device indices.
const DkDieInfo* DkSystemManager::GetDieByVornId(uint32_t vornId) const {
    auto it = ReadState().dies.find(vornId);
    if (it == ReadState().dies.end() || !it->second.device || it->second.device->GetDeviceId() > c_lastPfIndex)
        return nullptr;
    return &it->second;
}

uint32_t DkSystemManager::GetGpuIdByDeviceId(uint32_t deviceIndex) const {
    Hold hold;
    std::shared_ptr<IDkDevice> device = GetDeviceById(deviceIndex);
    return device ? device->GetDriverGpuId(0) : 0;
}

bool DkSystemManager::GetDeviceIdByGpuId(uint32_t gpuId, uint32_t& deviceIndex) const {
    Hold hold;
    auto bdf = ReadState().gpuBdfIdMap.find(gpuId);
    return bdf != ReadState().gpuBdfIdMap.end() && GetDeviceIdByBdf(bdf->second, deviceIndex);
}

bool DkSystemManager::GetDeviceIdByNodeId(uint32_t nodeId, uint32_t& deviceIndex) const {
    Hold hold;
    for (const auto& [bdf, node] : ReadState().gpuNodeMap)
        if (node.nodeId == nodeId) return GetDeviceIdByBdf(bdf, deviceIndex);
    return false;
}

bool DkSystemManager::GetDieIdByGpuId(uint32_t gpuId, uint32_t& dieId) const {
    Hold hold;
    uint32_t deviceIndex = 0;
    if (!GetDeviceIdByGpuId(gpuId, deviceIndex)) return false;
    std::shared_ptr<IDkDevice> device = GetDeviceById(deviceIndex);
    if (!device) return false;
    for (uint32_t die = 0; die < device->GetDieCount(); ++die) {
        if (device->GetDriverGpuId(die) == gpuId) {
            dieId = die;
            return true;
        }
    }
    return false;
}

bool DkSystemManager::GetDeviceIdByUuid(const std::string& uuid, uint32_t& deviceIndex) const {
    Hold hold;
    if (uuid.empty()) return false;
    for (const auto& [index, device] : ReadState().devices) {
        if (device && device->GetDeviceUuid() == uuid) {
            deviceIndex = index;
            return true;
        }
    }
    return false;
}

// Bus ids are matched as the kernel writes them; other spellings are
// normalised first ("0:3:0.0" finds "0000:03:00.0").
bool DkSystemManager::GetDeviceIdByBdf(const std::string& bdfId, uint32_t& deviceIndex) const {
    Hold hold;
    const auto& map = ReadState().bdfToDeviceIndex;
    auto it = map.find(bdfId);
    if (it == map.end()) it = map.find(GetStandardBdfId(bdfId));
    if (it == map.end()) return false;
    deviceIndex = it->second;
    return true;
}

std::string DkSystemManager::GetBdfIdByDeviceId(uint32_t deviceIndex) const {
    Hold hold;
    std::shared_ptr<IDkDevice> device = GetDeviceById(deviceIndex);
    return device ? device->GetBdfId() : std::string{};
}

uint32_t DkSystemManager::GetGpuIdByBdfId(const std::string& bdfId) const {
    Hold hold;
    auto node = ReadState().gpuNodeMap.find(bdfId);
    return node == ReadState().gpuNodeMap.end() ? 0 : node->second.gpuId;
}

uint32_t DkSystemManager::GetGpuIdByBdfAndDieId(const std::string& bdfId, uint32_t dieId) const {
    Hold hold;
    auto second = ReadState().secondDieGpuIds.find(bdfId);
    if (dieId == 0 || second == ReadState().secondDieGpuIds.end()) return GetGpuIdByBdfId(bdfId);
    return second->second;
}

// The layout node's render minor, else the render node found under /dev/dri.
bool DkSystemManager::GetRenderMinorByBdfId(const std::string& bdfId, uint32_t& minor) const {
    Hold hold;
    auto node = ReadState().gpuNodeMap.find(bdfId);
    if (node != ReadState().gpuNodeMap.end() && node->second.drmRenderMinor != 0) {
        minor = node->second.drmRenderMinor;
        return true;
    }
    uint32_t deviceIndex = 0;
    if (!GetDeviceIdByBdf(bdfId, deviceIndex)) return false;
    std::shared_ptr<IDkDevice> device = GetDeviceById(deviceIndex);
    if (!device || device->GetRenderId() == 0) return false;
    minor = device->GetRenderId();
    return true;
}

IDkDevice* DkSystemManager::GetPfAncestor(const IDkDevice* vf) const {
    Hold hold;
    if (vf == nullptr || !vf->IsVf()) return nullptr;
    const uint32_t vfIndex = vf->GetDeviceId();
    for (const auto& [index, device] : ReadState().devices) {
        if (!device || !device->IsPf()) continue;
        for (uint32_t listed : device->GetVfList())
            if (listed == vfIndex) return device.get();
    }
    return nullptr;
}

}  // namespace dksml
