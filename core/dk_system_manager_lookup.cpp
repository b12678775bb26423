// Translations between the library's device index, the driver's GPU and node
// ids, the compute stack's die numbering, UUIDs and PCI bus ids.
#include "core/dk_system_manager.h"
#include "core/dk_system_manager_state.h"

namespace dksml {
namespace {

constexpr uint32_t c_lastPfIndex = 99;

}  // namespace

std::shared_ptr<IDkDevice> DkSystemManager::GetDeviceById(uint32_t deviceIndex) const {
    auto it = m_state->devices.find(deviceIndex);
    return it == m_state->devices.end() ? nullptr : it->second;
}

// A handle is valid only when it is the address of a record of this pass.
bool DkSystemManager::CheckDeviceHandle(const DkDieInfo* handle) const {
    if (handle == nullptr) return false;
    for (const auto& [key, die] : m_state->dies)
        if (&die == handle) return true;
    return false;
}

DkDieInfo* DkSystemManager::GetDieBySmlId(uint32_t deviceIndex) {
    for (auto& [key, die] : m_state->dies)
        if (die.dieIndex == 0 && die.device && die.device->GetDeviceId() == deviceIndex) return &die;
    return nullptr;
}

// Only physical devices' dies carry the compute stack's numbers; the keys of
// virtual functions are their device indices.
DkDieInfo* DkSystemManager::GetDieByVornId(uint32_t vornId) {
    auto it = m_state->dies.find(vornId);
    if (it == m_state->dies.end() || !it->second.device || it->second.device->GetDeviceId() > c_lastPfIndex)
        return nullptr;
    return &it->second;
}

uint32_t DkSystemManager::GetGpuIdByDeviceId(uint32_t deviceIndex) const {
    std::shared_ptr<IDkDevice> device = GetDeviceById(deviceIndex);
    return device ? device->GetDriverGpuId(0) : 0;
}

bool DkSystemManager::GetDeviceIdByGpuId(uint32_t gpuId, uint32_t& deviceIndex) const {
    auto bdf = m_state->gpuBdfIdMap.find(gpuId);
    return bdf != m_state->gpuBdfIdMap.end() && GetDeviceIdByBdf(bdf->second, deviceIndex);
}

bool DkSystemManager::GetDeviceIdByNodeId(uint32_t nodeId, uint32_t& deviceIndex) const {
    for (const auto& [bdf, node] : m_state->gpuNodeMap)
        if (node.nodeId == nodeId) return GetDeviceIdByBdf(bdf, deviceIndex);
    return false;
}

bool DkSystemManager::GetDieIdByGpuId(uint32_t gpuId, uint32_t& dieId) const {
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
    if (uuid.empty()) return false;
    for (const auto& [index, device] : m_state->devices) {
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
    const auto& map = m_state->bdfToDeviceIndex;
    auto it = map.find(bdfId);
    if (it == map.end()) it = map.find(GetStandardBdfId(bdfId));
    if (it == map.end()) return false;
    deviceIndex = it->second;
    return true;
}

std::string DkSystemManager::GetBdfIdByDeviceId(uint32_t deviceIndex) const {
    std::shared_ptr<IDkDevice> device = GetDeviceById(deviceIndex);
    return device ? device->GetBdfId() : std::string{};
}

uint32_t DkSystemManager::GetGpuIdByBdfId(const std::string& bdfId) const {
    auto node = m_state->gpuNodeMap.find(bdfId);
    return node == m_state->gpuNodeMap.end() ? 0 : node->second.gpuId;
}

uint32_t DkSystemManager::GetGpuIdByBdfAndDieId(const std::string& bdfId, uint32_t dieId) const {
    auto second = m_state->secondDieGpuIds.find(bdfId);
    if (dieId == 0 || second == m_state->secondDieGpuIds.end()) return GetGpuIdByBdfId(bdfId);
    return second->second;
}

// The layout node's render minor, else the render node found under /dev/dri.
bool DkSystemManager::GetRenderMinorByBdfId(const std::string& bdfId, uint32_t& minor) const {
    auto node = m_state->gpuNodeMap.find(bdfId);
    if (node != m_state->gpuNodeMap.end() && node->second.drmRenderMinor != 0) {
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
    if (vf == nullptr || !vf->IsVf()) return nullptr;
    const uint32_t vfIndex = vf->GetDeviceId();
    for (const auto& [index, device] : m_state->devices) {
        if (!device || !device->IsPf()) continue;
        for (uint32_t listed : device->GetVfList())
            if (listed == vfIndex) return device.get();
    }
    return nullptr;
}

}  // namespace dksml
