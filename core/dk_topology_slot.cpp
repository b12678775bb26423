#include "core/dk_topology_slot.h"

#include <new>
#include <utility>

#include "features/topology/dk_topology.h"

namespace dksml {

DkTopologySlot::DkTopologySlot(std::shared_ptr<DkSysUtils> sysUtils, std::map<std::string, DkGpuNodeInfo> gpuNodes,
                               uint32_t gpuCount, std::vector<DkNiNodeInfo> niNodes,
                               std::map<uint32_t, std::shared_ptr<IDkDevice>> devices)
    : m_sysUtils(std::move(sysUtils)),
      m_gpuNodes(std::move(gpuNodes)),
      m_gpuCount(gpuCount),
      m_niNodes(std::move(niNodes)),
      m_devices(std::move(devices)) {}

std::shared_ptr<DkTopology> DkTopologySlot::Get() const {
    try {
        // An exception leaves the flag unset, so a later call builds again.
        std::call_once(m_once, [this] {
            m_topology = CreateTopology(m_sysUtils.get(), {m_gpuNodes, m_gpuCount, m_niNodes, m_devices});
        });
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
    return m_topology;
}

}  // namespace dksml
