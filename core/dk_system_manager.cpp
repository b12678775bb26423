// Minimal system manager: singleton, initialisation lock and empty tables.
// Discovery fills the tables.
#include "core/dk_system_manager.h"

namespace dksml {

const std::string g_dkDeviceSearchPath = "/sys/bus/pci/devices";

struct DkSystemManager::State {
    bool initialized = false;
    uint32_t nextVfIndex = 100;
    uint32_t nextPfIndex = 0;
    uint32_t availableDeviceCount = 0;
    std::string dkcdPath, managerPath, layoutPath;
    std::unique_ptr<DkSysUtils> sysUtils;
    std::shared_ptr<DkTopology> topology;
    std::shared_ptr<IDkProcessManagement> processManagement;
    std::map<std::string, DkGpuNodeInfo> gpuNodeMap;
    std::vector<DkNiNodeInfo> niNodeList;
    std::map<uint32_t, DkLimitedDeviceInfo> limitedDevices;
    std::unordered_map<uint32_t, std::string> gpuBdfIdMap;
    std::unordered_map<uint32_t, uint32_t> sgpuIdMap;
    std::unordered_map<std::string, uint32_t> bdfToDeviceIndex;
    std::map<uint32_t, std::shared_ptr<IDkDevice>> devices;
    std::map<uint32_t, DkDieInfo> dies;
};

DkSystemManager& DkSystemManager::GetInstance() {
    static DkSystemManager instance;
    return instance;
}

DkSystemManager::DkSystemManager() : m_state(std::make_unique<State>()) {}
DkSystemManager::~DkSystemManager() = default;

DkSmlReturn DkSystemManager::Initialize(const std::string&, std::unique_ptr<DkSysUtils>, uint32_t flags) {
    std::lock_guard<std::mutex> lock(m_initMutex);
    if (flags == 0 && m_state->initialized) return DK_SML_SUCCESS;
    return DK_SML_ERROR_NO_DEVICE;
}

std::shared_ptr<IDkDevice> DkSystemManager::GetDeviceById(uint32_t deviceIndex) const {
    auto it = m_state->devices.find(deviceIndex);
    return it == m_state->devices.end() ? nullptr : it->second;
}

bool DkSystemManager::CheckDeviceHandle(const DkDieInfo* handle) const {
    if (handle == nullptr) return false;
    for (const auto& [key, die] : m_state->dies)
        if (&die == handle) return true;
    return false;
}

uint32_t DkSystemManager::GetAvailableDeviceCount() const { return m_state->availableDeviceCount; }
uint32_t DkSystemManager::GetPfDeviceCount() const {
    return static_cast<uint32_t>(m_state->devices.size()) - m_state->availableDeviceCount;
}
const std::map<uint32_t, std::shared_ptr<IDkDevice>>& DkSystemManager::GetDeviceMap() const {
    return m_state->devices;
}
std::shared_ptr<DkTopology> DkSystemManager::GetTopology() const { return m_state->topology; }
std::shared_ptr<IDkProcessManagement> DkSystemManager::GetProcessManagement() const {
    return m_state->processManagement;
}

}  // namespace dksml
