// Everything one discovery pass builds. A pass fills a fresh State off to the
// side (DkSystemManager::m_state, on the discovering thread only) and then
// publishes it; a published State is never changed again, so readers share it
// without locks. Only the system manager's own files include this; everyone
// else goes through DkSystemManager's interface.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "core/dk_device_factory.h"
#include "core/dk_system_manager.h"
#include "core/dk_topology_slot.h"

namespace dksml {

struct DkSystemManager::State {
    bool initialized = false;
    uint64_t generation = 0;  // discovery pass number; compatibility handles carry it
    std::string hostRoot;     // the root this pass read every file under
    uint32_t nextVfIndex = 100;
    uint32_t nextPfIndex = 0;
    uint32_t availableDeviceCount = 0;
    uint32_t cpuNodeCount = 0;
    uint32_t nextDieKey = 0;  // the compute stack's running die number
    std::string dkcdPath, managerPath, layoutPath;
    // Directories given through SetDkcdPath / SetSystemManagerPath are kept;
    // chosen ones are chosen again by every pass (the driver may have been
    // loaded, or the host root changed, since the last one).
    bool dkcdPathGiven = false, managerPathGiven = false;
    std::string searchPath;  // of the last pass, for limited-device paths
    std::shared_ptr<DkSysUtils> sysUtils;
    // Topology is built from this pass's records on first use (see
    // dk_topology_slot.h); empty when the pass found no device, and its
    // callers then answer 6.
    std::shared_ptr<const DkTopologySlot> topology;
    std::shared_ptr<IDkProcessManagement> processManagement;

    std::map<std::string, DkGpuNodeInfo> gpuNodeMap;               // bus id -> layout node
    std::unordered_map<std::string, uint32_t> secondDieGpuIds;     // bus id -> GPU id of die 1
    std::vector<DkNiNodeInfo> niNodeList;
    std::map<uint32_t, DkLimitedDeviceInfo> limitedDevices;
    std::unordered_map<uint32_t, std::string> gpuBdfIdMap;        // driver GPU id -> bus id
    std::unordered_map<uint32_t, uint32_t> sgpuIdMap;              // slice GPU id -> local id
    std::unordered_map<std::string, uint32_t> bdfToDeviceIndex;
    std::map<uint32_t, std::shared_ptr<IDkDevice>> devices;
    std::map<uint32_t, DkDieInfo> dies;                            // compatibility handles name these
    std::map<uint32_t, uint32_t> boardIds;                         // device index -> board id
    std::unordered_set<uint32_t> acceptedVendorIds;
};

}  // namespace dksml
