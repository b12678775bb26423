// The topology tables of one discovery pass, built when first asked for.
// They need every GPU's link records, one file per GPU pair, so building them
// during discovery would make discovery grow with the square of the GPU
// count; most callers never ask about topology. The slot keeps its own copy
// of the pass's records, so a state copied for a directory change can share it.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "core/dk_system_manager.h"

namespace dksml {

class DkTopologySlot {
public:
    DkTopologySlot(std::shared_ptr<DkSysUtils> sysUtils, std::map<std::string, DkGpuNodeInfo> gpuNodes,
                   uint32_t gpuCount, std::vector<DkNiNodeInfo> niNodes,
                   std::map<uint32_t, std::shared_ptr<IDkDevice>> devices);
    DkTopologySlot(const DkTopologySlot&) = delete;
    DkTopologySlot& operator=(const DkTopologySlot&) = delete;

    // Builds the tables on the first call (other threads wait for it); null
    // when building ran out of memory, and the next call tries again.
    std::shared_ptr<DkTopology> Get() const;

private:
    std::shared_ptr<DkSysUtils> m_sysUtils;
    std::map<std::string, DkGpuNodeInfo> m_gpuNodes;
    uint32_t m_gpuCount;
    std::vector<DkNiNodeInfo> m_niNodes;
    std::map<uint32_t, std::shared_ptr<IDkDevice>> m_devices;
    mutable std::once_flag m_once;
    mutable std::shared_ptr<DkTopology> m_topology;
};

}  // namespace dksml
