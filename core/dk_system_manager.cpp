// The system manager's lifecycle: the singleton, the discovery pass and the
// directories it works in.
#include "core/dk_system_manager.h"

#include <exception>
#include <utility>

#include "core/dk_host_root.h"
#include "core/dk_system_manager_state.h"
#include "driver/dk_text.h"
#include "features/topology/dk_topology.h"

namespace dksml {

const std::string g_dkDeviceSearchPath = "/sys/bus/pci/devices";

namespace {

// Class directory: the vendor-named one first. Manager directory: the
// driver-named one first. Older drivers create only one of each pair, and
// they differ in which one they dropped.
constexpr const char* c_classDirs[] = {"/sys/class/dravik/dkcd/", "/sys/class/dkcd/dkcd/"};
constexpr const char* c_managerDirs[] = {"/sys/devices/virtual/dkcd/dkcd/manager",
                                         "/sys/devices/virtual/dravik/dkcd/manager"};
constexpr const char* c_layoutSubdir = "layout/nodes/";

std::string FirstExisting(const char* const (&candidates)[2]) {
    return CheckIfFileExist(HostPath(candidates[0])) ? candidates[0] : candidates[1];
}

}  // namespace

DkSystemManager& DkSystemManager::GetInstance() {
    static DkSystemManager instance;
    return instance;
}

DkSystemManager::DkSystemManager() : m_state(std::make_unique<State>()) {}
DkSystemManager::~DkSystemManager() = default;

DkSmlReturn DkSystemManager::Initialize(const std::string& searchPath, std::unique_ptr<DkSysUtils> sysUtils,
                                        uint32_t flags) {
    std::lock_guard<std::mutex> lock(m_initMutex);
    if (flags == 0 && m_state->initialized) return DK_SML_SUCCESS;
    try {
        return InitializeForLinux(searchPath, std::move(sysUtils));
    } catch (const std::exception&) {
        // Out of memory in the middle of a pass: leave nothing half-built behind.
        ResetDiscoveryState();
        return DK_SML_ERROR_FAILURE;
    }
}

DkSmlReturn DkSystemManager::InitializeForLinux(const std::string& searchPath,
                                                std::unique_ptr<DkSysUtils> sysUtils) {
    ResetDiscoveryState();
    m_state->searchPath = searchPath;
    ChooseDriverDirectories();
    InitVendorId();
    ParseLayoutNodeInfo();
    DiscoverDkDevices(searchPath);
    ConnectPfAndVfDevice();
    if (m_state->devices.empty()) return DK_SML_ERROR_NO_DEVICE;

    GetRenderIdAndCardId();
    m_state->sysUtils = sysUtils ? std::move(sysUtils) : std::make_unique<DkSysUtils>();
    m_state->topology = CreateTopology(m_state->sysUtils.get(), {m_state->gpuNodeMap, m_state->availableDeviceCount,
                                                                m_state->niNodeList, m_state->devices});
    // The process-accounting object is created by its own service; until
    // then it stays empty and its callers answer 6.
    m_state->processManagement.reset();
    m_state->initialized = true;
    return DK_SML_SUCCESS;
}

// Every table of the previous pass goes, so indices restart at 0 and 100 and
// handles from the previous pass stop matching any record.
void DkSystemManager::ResetDiscoveryState() {
    State& s = *m_state;
    s.initialized = false;
    s.nextVfIndex = 100;
    s.nextPfIndex = 0;
    s.availableDeviceCount = 0;
    s.cpuNodeCount = 0;
    s.nextDieKey = 0;
    s.gpuNodeMap.clear();
    s.secondDieGpuIds.clear();
    s.niNodeList.clear();
    s.limitedDevices.clear();
    s.gpuBdfIdMap.clear();
    s.sgpuIdMap.clear();
    s.bdfToDeviceIndex.clear();
    s.devices.clear();
    s.retiredDies = std::move(s.dies);  // moves the nodes: their addresses stay taken
    s.dies.clear();
    for (auto& [key, die] : s.retiredDies) die.device.reset();
    s.boardIds.clear();
    s.acceptedVendorIds.clear();
    s.topology.reset();
    s.processManagement.reset();
}

void DkSystemManager::ChooseDriverDirectories() {
    State& s = *m_state;
    if (!s.dkcdPathGiven || s.dkcdPath.empty()) s.dkcdPath = FirstExisting(c_classDirs);
    if (!s.managerPathGiven || s.managerPath.empty()) s.managerPath = FirstExisting(c_managerDirs);
    s.layoutPath = s.dkcdPath + c_layoutSubdir;
}

const std::string& DkSystemManager::GetDkcdPath() const { return m_state->dkcdPath; }
const std::string& DkSystemManager::GetSystemManagerPath() const { return m_state->managerPath; }
const std::string& DkSystemManager::GetLayoutPath() const { return m_state->layoutPath; }

void DkSystemManager::SetDkcdPath(const std::string& path) {
    m_state->dkcdPath = path;
    if (!path.empty() && path.back() != '/') m_state->dkcdPath += '/';
    m_state->dkcdPathGiven = !path.empty();
}

void DkSystemManager::SetSystemManagerPath(const std::string& path) {
    m_state->managerPath = path;
    m_state->managerPathGiven = !path.empty();
}

DkSysUtils* DkSystemManager::GetSysUtils() const { return m_state->sysUtils.get(); }
std::shared_ptr<DkTopology> DkSystemManager::GetTopology() const { return m_state->topology; }
std::shared_ptr<IDkProcessManagement> DkSystemManager::GetProcessManagement() const {
    return m_state->processManagement;
}

uint32_t DkSystemManager::GetAvailableDeviceCount() const { return m_state->availableDeviceCount; }

uint32_t DkSystemManager::GetPfDeviceCount() const {
    return static_cast<uint32_t>(m_state->devices.size()) - m_state->availableDeviceCount;
}

uint32_t DkSystemManager::GetTargetNiCount() const { return static_cast<uint32_t>(m_state->niNodeList.size()); }

const std::map<uint32_t, std::shared_ptr<IDkDevice>>& DkSystemManager::GetDeviceMap() const {
    return m_state->devices;
}
const std::map<std::string, DkGpuNodeInfo>& DkSystemManager::GetGpuNodeMap() const { return m_state->gpuNodeMap; }
const std::vector<DkNiNodeInfo>& DkSystemManager::GetNiNodeList() const { return m_state->niNodeList; }
const std::unordered_map<uint32_t, std::string>& DkSystemManager::GetGpuBdfIdMap() const {
    return m_state->gpuBdfIdMap;
}
const std::unordered_map<uint32_t, uint32_t>& DkSystemManager::GetSgpuIdMap() const { return m_state->sgpuIdMap; }

}  // namespace dksml
