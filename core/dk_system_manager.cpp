// The system manager's lifecycle: the singleton, the discovery pass and the
// directories it works in.
#include "core/dk_system_manager.h"

#include <exception>
#include <utility>

#include "core/dk_device_factory.h"
#include "core/dk_host_root.h"
#include "core/dk_system_manager_state.h"
#include "driver/dk_text.h"

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

// Set once while the library loads, read by every pass.
DkPassBuilders& PassBuilders() {
    static DkPassBuilders builders;
    return builders;
}

}  // namespace

void SetPassBuilders(const DkPassBuilders& builders) { PassBuilders() = builders; }
const DkPassBuilders& GetPassBuilders() { return PassBuilders(); }

thread_local const DkSystemManager::State* DkSystemManager::t_heldState = nullptr;

DkSystemManager& DkSystemManager::GetInstance() {
    static DkSystemManager instance;
    return instance;
}

DkSystemManager::DkSystemManager()
    : m_deviceFactory(std::make_unique<DkDeviceFactory>()), m_published(std::make_shared<const State>()) {}
DkSystemManager::~DkSystemManager() = default;

DkSystemManager::Hold::Hold() : m_previous(t_heldState) {
    if (m_previous != nullptr) return;
    m_state = GetInstance().Published();
    t_heldState = m_state.get();
}

DkSystemManager::Hold::Hold(const State* building) : m_previous(t_heldState) { t_heldState = building; }

DkSystemManager::Hold::~Hold() { t_heldState = m_previous; }

std::shared_ptr<const DkSystemManager::State> DkSystemManager::Published() const {
    std::lock_guard<std::mutex> lock(m_publishMutex);
    return m_published;
}

// The replaced state is released after the lock, by whichever thread drops
// the last reference to it.
void DkSystemManager::Publish(std::shared_ptr<const State> next) {
    {
        std::lock_guard<std::mutex> lock(m_publishMutex);
        m_published.swap(next);
    }
}

// Outside any Hold the state is kept per thread until this thread's next
// such call, so that a reference a getter returned stays usable meanwhile.
const DkSystemManager::State& DkSystemManager::ReadState() const {
    if (t_heldState != nullptr) return *t_heldState;
    thread_local std::shared_ptr<const State> latest;
    latest = Published();
    return *latest;
}

DkSmlReturn DkSystemManager::Initialize(const std::string& searchPath, std::unique_ptr<DkSysUtils> sysUtils,
                                        uint32_t flags) {
    std::lock_guard<std::mutex> lock(m_initMutex);
    if (flags == 0 && Published()->initialized) return DK_SML_SUCCESS;
    StartPass();
    DkSmlReturn result = DK_SML_ERROR_FAILURE;
    bool failed = false;
    {
        Hold building(m_state.get());  // lookups made during the pass see the pass's own tables
        try {
            result = InitializeForLinux(searchPath, std::move(sysUtils));
            AssignHandles();
        } catch (const std::exception&) {
            failed = true;
        }
    }
    // Out of memory in the middle of a pass: publish nothing half-built; an
    // empty state (still holding the directories given) replaces it.
    if (failed) StartPass();
    m_nodeDirs.clear();  // nodes no device adopted
    Publish(std::shared_ptr<const State>(std::move(m_state)));
    return result;
}

// A fresh state for a pass: only the directories a caller gave survive from
// the previous one. Indices restart at 0 and 100, and the pass number moves
// on so that handles of the previous pass stop matching any record.
void DkSystemManager::StartPass() {
    std::shared_ptr<const State> previous = Published();
    m_state = std::make_unique<State>();
    m_nodeDirs.clear();
    State& s = *m_state;
    s.generation = ++m_generation;
    s.dkcdPathGiven = previous->dkcdPathGiven;
    s.managerPathGiven = previous->managerPathGiven;
    if (s.dkcdPathGiven) s.dkcdPath = previous->dkcdPath;
    if (s.managerPathGiven) s.managerPath = previous->managerPath;
}

DkSmlReturn DkSystemManager::InitializeForLinux(const std::string& searchPath,
                                                std::unique_ptr<DkSysUtils> sysUtils) {
    // The root is read once per pass, and every file of the pass is read under it.
    LoadHostRoot();
    m_state->hostRoot = HostRoot();
    m_state->searchPath = searchPath;
    ChooseDriverDirectories();
    InitVendorId();
    ParseLayoutNodeInfo();
    DiscoverDkDevices(searchPath);
    ConnectPfAndVfDevice();
    if (m_state->devices.empty()) return DK_SML_ERROR_NO_DEVICE;

    GetRenderIdAndCardId();
    ConstructBoardIdMap();
    m_state->sysUtils = sysUtils ? std::move(sysUtils) : std::make_unique<DkSysUtils>();
    const DkPassBuilders& builders = GetPassBuilders();
    m_state->topology = std::make_shared<const DkTopologySlot>(m_state->sysUtils, m_state->gpuNodeMap,
                                                               m_state->availableDeviceCount, m_state->niNodeList,
                                                               m_state->devices);
    // The process-accounting object is built from this pass's devices, before
    // the state is published.
    if (builders.processManagement != nullptr) {
        m_state->processManagement = builders.processManagement(m_state->devices.begin()->second->GetDeviceBrand());
    }
    m_state->initialized = true;
    return DK_SML_SUCCESS;
}

// A handle is the pass number above the record's key; key + 1 keeps it from
// ever being 0. Keys are device indices or die numbers, far below 65535.
void DkSystemManager::AssignHandles() {
    constexpr uint64_t c_keyBits = 16;
    for (auto& [key, die] : m_state->dies)
        die.handle = key + 1 < (1u << c_keyBits) ? (m_state->generation << c_keyBits) | (key + 1) : 0;
}

void DkSystemManager::ChooseDriverDirectories() {
    State& s = *m_state;
    if (!s.dkcdPathGiven || s.dkcdPath.empty()) s.dkcdPath = FirstExisting(c_classDirs);
    if (!s.managerPathGiven || s.managerPath.empty()) s.managerPath = FirstExisting(c_managerDirs);
    s.layoutPath = s.dkcdPath + c_layoutSubdir;
}

const std::string& DkSystemManager::GetDkcdPath() const { return ReadState().dkcdPath; }
const std::string& DkSystemManager::GetSystemManagerPath() const { return ReadState().managerPath; }
const std::string& DkSystemManager::GetLayoutPath() const { return ReadState().layoutPath; }
const std::string& DkSystemManager::GetHostRoot() const { return ReadState().hostRoot; }

// A given directory applies at once: the current state is copied with the
// change and published (devices are shared, handles stay valid); later
// passes keep it.
void DkSystemManager::ChangeDirectories(bool dkcd, const std::string& path) {
    std::lock_guard<std::mutex> lock(m_initMutex);
    auto next = std::make_shared<State>(*Published());
    if (dkcd) {
        next->dkcdPath = path;
        if (!path.empty() && path.back() != '/') next->dkcdPath += '/';
        next->dkcdPathGiven = !path.empty();
        next->layoutPath = next->dkcdPath + c_layoutSubdir;
    } else {
        next->managerPath = path;
        next->managerPathGiven = !path.empty();
    }
    Publish(std::move(next));
}

void DkSystemManager::SetDkcdPath(const std::string& path) { ChangeDirectories(true, path); }
void DkSystemManager::SetSystemManagerPath(const std::string& path) { ChangeDirectories(false, path); }

DkSysUtils* DkSystemManager::GetSysUtils() const { return ReadState().sysUtils.get(); }

std::shared_ptr<DkTopology> DkSystemManager::GetTopology() const {
    Hold hold;
    const std::shared_ptr<const DkTopologySlot>& slot = ReadState().topology;
    return slot ? slot->Get() : nullptr;
}

std::shared_ptr<IDkProcessManagement> DkSystemManager::GetProcessManagement() const {
    Hold hold;
    return ReadState().processManagement;
}

uint32_t DkSystemManager::GetAvailableDeviceCount() const {
    Hold hold;
    return ReadState().availableDeviceCount;
}

uint32_t DkSystemManager::GetPfDeviceCount() const {
    Hold hold;
    const State& s = ReadState();
    return static_cast<uint32_t>(s.devices.size()) - s.availableDeviceCount;
}

uint32_t DkSystemManager::GetTargetNiCount() const {
    Hold hold;
    return static_cast<uint32_t>(ReadState().niNodeList.size());
}

const std::map<uint32_t, std::shared_ptr<IDkDevice>>& DkSystemManager::GetDeviceMap() const {
    return ReadState().devices;
}
const std::map<std::string, DkGpuNodeInfo>& DkSystemManager::GetGpuNodeMap() const { return ReadState().gpuNodeMap; }
const std::vector<DkNiNodeInfo>& DkSystemManager::GetNiNodeList() const { return ReadState().niNodeList; }
const std::unordered_map<uint32_t, std::string>& DkSystemManager::GetGpuBdfIdMap() const {
    return ReadState().gpuBdfIdMap;
}
const std::unordered_map<uint32_t, uint32_t>& DkSystemManager::GetSgpuIdMap() const {
    return ReadState().sgpuIdMap;
}

}  // namespace dksml
