// The process-wide owner of everything discovery finds: devices, dies,
// limited devices and the tables that translate between the library's device
// index, the driver's GPU and node ids, the compute stack's die numbering and
// PCI bus ids.
//
// Threads: a discovery pass builds a complete new state off to the side and
// publishes it in one step; a published state is never changed. Every call
// reads one state from start to end: the frames in api/ hold it (Hold) for
// the length of an export, and every getter below holds it for its own
// length when no frame does. References and raw pointers a getter returns
// point into the held state: valid for the length of the frame (or, outside
// any frame, until this thread's next manager call after a rediscovery).
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "core/dk_sys_utils.h"
#include "core/idk_device.h"
#include "dksml.h"
#include "driver/dk_dir_fd.h"

namespace dksml {

class DkDevice;
struct DkDiscoveredDirs;
class DkLayoutReader;
struct DkPciEntry;
class DkTopology;
class IDkDeviceFactory;
class IDkProcessManagement;

// Search path of PCI functions (host path; see dk_host_root.h).
extern const std::string g_dkDeviceSearchPath;  // "/sys/bus/pci/devices"

// One die of a device; a compatibility handle names one of these records.
struct DkDieInfo {
    uint32_t dieIndex = 0;
    std::shared_ptr<IDkDevice> device;
    // The handle value given out for this record: the discovery pass number
    // and the record's key, so that a handle of a replaced pass matches no
    // record of the current one.
    uint64_t handle = 0;
};

// A link record of a layout node ("direct_links"/"indirect_links").
struct DkLinkAttr {
    uint32_t to = 0;        // far-end node id, modulo 65536
    uint32_t type = 0;      // kernel link type code
    uint32_t distance = 0;
};

// One GPU layout node.
struct DkGpuNodeInfo {
    uint32_t nodeId = 0;
    uint32_t gpuId = 0;
    uint32_t topologyId = 0;
    uint32_t isVf = 0;
    uint32_t drmRenderMinor = 0;
    uint64_t apMask = 0;
    std::string bdfId;
    std::string uuid;
    int32_t active = 0;
    uint32_t deviceIndex = UINT32_MAX;
};

// A network interface found next to the GPUs.
struct DkNiNodeInfo {
    uint32_t index = 0;
    uint32_t numaNode = 0;
    std::string bdf;
};

// A GPU function that was found but cannot be served.
struct DkLimitedDeviceInfo {
    std::string bdfId;
    uint32_t vendorId = 0;
    uint32_t deviceId = 0;
    bool isVf = false;
    uint32_t reason = 0;
    std::string reasonText;
};

// Devices that share one board.
struct DkBoardInfo {
    uint32_t boardId = UINT32_MAX;
    uint32_t deviceCount = 0;
    uint32_t deviceIds[64] = {};
};

// Everything discovery hands to the topology table builder.
struct DkTopologyInputs {
    const std::map<std::string, DkGpuNodeInfo>& gpuNodes;  // by PCI address
    uint32_t gpuCount = 0;                                 // physical devices, indices 0..count-1
    const std::vector<DkNiNodeInfo>& niNodes;
    const std::map<uint32_t, std::shared_ptr<IDkDevice>>& devices;
};

// What a pass builds beside its devices from code that lives with the
// features (the topology tables, built on first use by DkTopologySlot, the
// process accounting, and the board serials that group devices into boards).
// The feature registry (api/) installs these when the library loads, so this
// layer does not depend on the features; without them all stay empty and
// every device is on an unknown board.
struct DkPassBuilders {
    std::shared_ptr<DkTopology> (*topology)(DkSysUtils* sysUtils, const DkTopologyInputs& inputs) = nullptr;
    std::shared_ptr<IDkProcessManagement> (*processManagement)(DkSmlDeviceBrand brand) = nullptr;
    DkSmlReturn (*boardSerial)(IDkDevice& device, char* serial, uint32_t* size) = nullptr;
};
void SetPassBuilders(const DkPassBuilders& builders);
const DkPassBuilders& GetPassBuilders();

class DkSystemManager {
    struct State;

public:
    static DkSystemManager& GetInstance();

    // Holds the current state on this thread for the scope's length, so that
    // nothing a call uses is freed by a rediscovery under it. Nested holds
    // reuse the outermost one (one state per call); the discovering thread
    // holds the state it is building.
    class Hold {
    public:
        Hold();
        ~Hold();
        Hold(const Hold&) = delete;
        Hold& operator=(const Hold&) = delete;

    private:
        friend class DkSystemManager;
        explicit Hold(const State* building);
        std::shared_ptr<const State> m_state;
        const State* m_previous = nullptr;
    };

    DkSmlReturn Initialize(const std::string& searchPath, std::unique_ptr<DkSysUtils> sysUtils,
                           uint32_t flags);

    // Lookups (empty pointer / sentinel when unknown).
    std::shared_ptr<IDkDevice> GetDeviceById(uint32_t deviceIndex) const;
    // The record a compatibility handle names in the held state; null for a
    // forged handle or one of a replaced discovery pass. Never dereferences it.
    const DkDieInfo* FindDieByHandle(const void* handle) const;
    const DkDieInfo* GetDieBySmlId(uint32_t deviceIndex) const;
    const DkDieInfo* GetDieByVornId(uint32_t vornId) const;
    uint32_t GetAvailableDeviceCount() const;
    uint32_t GetPfDeviceCount() const;  // device-map size minus physical count
    uint32_t GetTargetNiCount() const;
    const std::map<uint32_t, std::shared_ptr<IDkDevice>>& GetDeviceMap() const;

    // Identifier translations.
    uint32_t GetGpuIdByDeviceId(uint32_t deviceIndex) const;       // 0 when unknown
    bool GetDeviceIdByGpuId(uint32_t gpuId, uint32_t& deviceIndex) const;
    bool GetDeviceIdByNodeId(uint32_t nodeId, uint32_t& deviceIndex) const;
    bool GetDieIdByGpuId(uint32_t gpuId, uint32_t& dieId) const;
    bool GetDeviceIdByUuid(const std::string& uuid, uint32_t& deviceIndex) const;
    bool GetDeviceIdByBdf(const std::string& bdfId, uint32_t& deviceIndex) const;
    std::string GetBdfIdByDeviceId(uint32_t deviceIndex) const;
    uint32_t GetGpuIdByBdfId(const std::string& bdfId) const;
    uint32_t GetGpuIdByBdfAndDieId(const std::string& bdfId, uint32_t dieId) const;
    bool GetRenderMinorByBdfId(const std::string& bdfId, uint32_t& minor) const;
    IDkDevice* GetPfAncestor(const IDkDevice* vf) const;

    // Limited devices.
    DkSmlReturn GetAllLimitedDevices(uint32_t* count, uint32_t* deviceIndices) const;
    DkSmlReturn GetLimitedDeviceInfo(uint32_t deviceIndex, DkSmlLimitedDeviceInfo* info) const;
    DkSmlReturn GetLimitedDeviceState(uint32_t deviceIndex, int32_t* state) const;
    DkSmlReturn GetLimitedDeviceDieCount(uint32_t deviceIndex, uint32_t* dieCount) const;
    DkSmlReturn GetLimitedDeviceUnavailableReason(uint32_t deviceIndex,
                                                  DkSmlDeviceUnavailableReasonInfo* info) const;
    DkSmlReturn GetLimitedDieUnavailableReason(uint32_t deviceIndex, uint32_t dieId,
                                               DkSmlDeviceUnavailableReasonInfo* info) const;
    bool IsLimitedDevice(uint32_t deviceIndex) const;
    // A temporary device object for read-only queries on a limited device.
    std::shared_ptr<IDkDevice> MockDevice(const std::string& deviceDir) const;

    // Board grouping.
    uint32_t GetDeviceBoardId(uint32_t deviceIndex);
    DkSmlReturn GetDeviceBoardInfo(uint32_t deviceIndex, DkBoardInfo* info);

    // Operating mode ("system_maintenance" in the manager directory).
    DkSmlReturn GetOpMode(uint32_t* mode) const;
    DkSmlReturn SetOpMode(uint32_t mode) const;

    // Topology and processes (null until their services exist).
    std::shared_ptr<DkTopology> GetTopology() const;
    std::shared_ptr<IDkProcessManagement> GetProcessManagement() const;

    // Node tables for topology and slices.
    const std::map<std::string, DkGpuNodeInfo>& GetGpuNodeMap() const;
    const std::vector<DkNiNodeInfo>& GetNiNodeList() const;
    const std::unordered_map<uint32_t, std::string>& GetGpuBdfIdMap() const;
    const std::unordered_map<uint32_t, uint32_t>& GetSgpuIdMap() const;

    // Paths (host paths, before the host root is applied).
    const std::string& GetDkcdPath() const;             // class directory, ends in '/'
    const std::string& GetSystemManagerPath() const;    // manager directory
    const std::string& GetLayoutPath() const;           // class directory + "layout/nodes/"
    void SetDkcdPath(const std::string& path);
    void SetSystemManagerPath(const std::string& path);
    DkSysUtils* GetSysUtils() const;
    // The host root the held state's discovery read under.
    const std::string& GetHostRoot() const;

    DkSystemManager(const DkSystemManager&) = delete;
    DkSystemManager& operator=(const DkSystemManager&) = delete;

private:
    DkSystemManager();
    ~DkSystemManager();

    // Publication: readers copy the pointer under a lock held for nothing
    // longer than that copy (never during a scan).
    std::shared_ptr<const State> Published() const;
    void Publish(std::shared_ptr<const State> next);
    const State& ReadState() const;  // the held state, else this thread's latest
    void ChangeDirectories(bool dkcd, const std::string& path);

    // Discovery pass.
    DkSmlReturn InitializeForLinux(const std::string& searchPath, std::unique_ptr<DkSysUtils> sysUtils);
    void StartPass();
    void AssignHandles();
    void ChooseDriverDirectories();
    void InitVendorId();
    bool GetDkDeviceInfo(const DkPciEntry& entry, const std::string& searchPath, DkSysInfo& info,
                         DkDirFd* functionDir = nullptr) const;

    // Layout nodes.
    void ParseLayoutNodeInfo();
    void ParseGpuNode(DkLayoutReader& reader, uint32_t nodeId, uint32_t gpuId, const std::string& type);

    // PCI scan.
    void DiscoverDkDevices(const std::string& searchPath);
    void ScanPciEntry(const std::string& searchPath, const DkPciEntry& entry, uint32_t nicVendorId,
                      std::vector<DkLimitedDeviceInfo>& limited);
    void CreateDevice(const std::string& searchPath, const DkSysInfo& info, DkDiscoveredDirs&& dirs);
    uint32_t AssignDeviceIdForNewDevice(bool isVf);
    void SetDeviceAttribute(IDkDevice& device, const DkSysInfo& info, DkDiscoveredDirs&& dirs);
    // The directory the layout pass opened for node `nodeId` (moved out; not
    // open when there was none).
    DkDirFd TakeNodeDir(uint32_t nodeId);
    void AddDieKeys(const std::shared_ptr<IDkDevice>& device);
    void AppendLimitedDevice(const DkSysInfo& info, DkSmlReturn powerState,
                             std::vector<DkLimitedDeviceInfo>& limited) const;
    void ParseTargetNiNodeInfo(const std::string& deviceDir, const std::string& bdfId);

    // After the scan.
    void ConnectPfAndVfDevice();
    void GetRenderIdAndCardId();

    // Limited devices and boards.
    // `powerState`: the status of the scan's own read of "smi/pcipowerstate",
    // when there was one; else the file is read here.
    DkSmlReturn CheckNodeInvalidReason(const std::string& bdfId, uint32_t& reason, std::string& text,
                                       const DkSmlReturn* powerState = nullptr) const;
    const DkLimitedDeviceInfo* FindLimitedDevice(uint32_t deviceIndex) const;
    void ConstructBoardIdMap();

    // The state the running pass builds: touched only by the discovering
    // thread under m_initMutex, empty between passes. Readers never see it.
    std::unique_ptr<State> m_state;
    // Directories of the GPU layout nodes the running pass opened, by node id
    // in ascending order, until their devices adopt them; empty between passes.
    std::vector<std::pair<uint32_t, DkDirFd>> m_nodeDirs;
    std::unique_ptr<IDkDeviceFactory> m_deviceFactory;
    uint64_t m_generation = 0;  // passes so far (under m_initMutex)
    std::mutex m_initMutex;     // one discovery (or directory change) at a time

    static thread_local const State* t_heldState;  // what this thread's Hold pinned
    std::shared_ptr<const State> m_published;  // never null
    mutable std::mutex m_publishMutex;         // guards m_published only
};

// Normalised PCI bus id ("0:3:0.0" -> "0000:03:00.0"); "" when a field is not hex.
std::string GetStandardBdfId(const std::string& text);

}  // namespace dksml
