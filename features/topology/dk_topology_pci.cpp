// Levels between a network interface and the GPUs and other interfaces, from
// where the PCI functions sit in the kernel's device tree, and the virtual
// switch links that join functions under different root complexes.
#include <string_view>

#include "core/dk_host_tree.h"
#include "driver/dk_text.h"
#include "features/topology/dk_topology.h"

namespace dksml {
namespace {

// The first existing directory is used.
constexpr const char* c_virtualSwitchDirs[] = {"/sys/kernel/pci_switch_link/virtual_switch_links",
                                               "/opt/pci_switch_link/virtual_switch_links"};
// Deeper trees are not switch descriptions; the cap also ends any cycle that
// bind mounts could build (symbolic links are never followed).
constexpr int c_maxSwitchDepth = 16;
constexpr const char* c_pciDevicesDir = "/sys/bus/pci/devices";

std::vector<std::string_view> SplitPath(std::string_view path) {
    std::vector<std::string_view> parts;
    size_t start = 0;
    while (start <= path.size()) {
        size_t slash = path.find('/', start);
        if (slash == std::string_view::npos) slash = path.size();
        if (slash > start) parts.push_back(path.substr(start, slash - start));
        start = slash + 1;
    }
    return parts;
}

// The component before the last; a bridge port's address becomes that of
// function 0, device 0 on its bus ("0000:17:01.0" -> "0000:17:00.0").
std::string ExtractParentNode(std::string_view path) {
    const size_t last = path.rfind('/');
    if (last == std::string_view::npos || last == 0) return {};
    const size_t before = path.rfind('/', last - 1);
    if (before == std::string_view::npos) return {};
    std::string parent(path.substr(before + 1, last - before - 1));
    if (parent.size() > 3) parent.replace(parent.size() - 4, 4, "00.0");
    return parent;
}

// The components after "sys/devices": the root complex and the root port.
void ExtractPciTree(std::string_view path, std::string& rootComplex, std::string& rootPort) {
    const std::vector<std::string_view> parts = SplitPath(path);
    rootComplex.clear();
    rootPort.clear();
    if (parts.size() < 4) return;
    rootComplex = parts[2];
    rootPort = parts[3];
}

// The components that follow the root complex ("pci0000:17").
std::vector<std::string_view> ExtractPciNodes(std::string_view path) {
    std::vector<std::string_view> parts = SplitPath(path);
    for (size_t i = 0; i < parts.size(); ++i) {
        if (parts[i].substr(0, 3) == "pci") return {parts.begin() + static_cast<long>(i) + 1, parts.end()};
    }
    return {};
}

const IDkHostTree& Tree() { return CurrentHostTree(); }

std::string GetRealPath(const std::string& bdf) {
    const std::string path = std::string(c_pciDevicesDir) + "/" + bdf;
    std::string real = Tree().Resolve(path);
    return real.empty() ? path : real;
}

// A directory or a regular file (symbolic links are not followed).
bool IsDirectoryEntry(const std::string& path, bool& isDirectory) {
    const DkEntryKind kind = Tree().Kind(path);
    isDirectory = kind == DkEntryKind::Directory;
    return isDirectory || kind == DkEntryKind::File;
}

// Alphabetical listing without "." and ".."; false when it cannot be listed.
bool ListDirectory(const std::string& path, std::vector<std::string>& names) {
    return Tree().List(path, DkListOrder::Alphabetical, names);
}

bool CollectNames(const std::string& dir, int depth, std::vector<std::string>& out) {
    if (depth > c_maxSwitchDepth) return true;
    std::vector<std::string> names;
    if (!ListDirectory(dir, names)) return false;
    for (const std::string& name : names) {
        bool isDirectory = false;
        if (!IsDirectoryEntry(dir + "/" + name, isDirectory)) continue;
        out.push_back(name);
        if (isDirectory && !CollectNames(dir + "/" + name, depth + 1, out)) return false;
    }
    return true;
}

}  // namespace

struct DkTopology::NiEndpoint {
    std::string bdf;
    std::string path;
    std::string parent;
    std::string rootComplex;
    std::string rootPort;
    uint32_t numaNode = 0;
};

const std::unordered_map<std::string, std::vector<std::string>>& DkTopology::GetVirtualSwitchMap() {
    if (!m_virtualSwitchMap.empty()) return m_virtualSwitchMap;
    std::string dir;
    for (const char* candidate : c_virtualSwitchDirs) {
        if (Tree().Exists(candidate)) {
            dir = candidate;
            break;
        }
    }
    std::vector<std::string> switches;
    if (dir.empty() || !ListDirectory(dir, switches)) return m_virtualSwitchMap;
    for (const std::string& name : switches) {
        bool isDirectory = false;
        if (!IsDirectoryEntry(dir + "/" + name, isDirectory) || !isDirectory) continue;
        std::vector<std::string> beneath;
        const bool listed = CollectNames(dir + "/" + name, 1, beneath);
        if (!beneath.empty()) m_virtualSwitchMap[name] = std::move(beneath);
        if (!listed) break;
    }
    return m_virtualSwitchMap;
}

uint32_t DkTopology::DetermineVirtualP2PLinkAvailability(const std::string& path1, const std::string& path2) {
    const auto& switches = GetVirtualSwitchMap();
    if (switches.empty()) return DK_SML_TOPOLOGY_NUMA_NODE;
    const std::vector<std::string>* members = nullptr;
    for (std::string_view node : ExtractPciNodes(path1)) {
        const auto it = switches.find(std::string(node));
        if (it == switches.end()) continue;
        members = &it->second;
        break;
    }
    if (members == nullptr) return DK_SML_TOPOLOGY_NUMA_NODE;
    for (std::string_view node : ExtractPciNodes(path2)) {
        for (const std::string& member : *members) {
            if (member == node) return DK_SML_TOPOLOGY_HOST_BRIDGE;
        }
    }
    return DK_SML_TOPOLOGY_NUMA_NODE;
}

uint32_t DkTopology::GetLinkType(const NiEndpoint& ni, const std::string& peerBdf) {
    const std::string peerPath = GetRealPath(peerBdf);
    const std::string peerParent = ExtractParentNode(peerPath);
    if (!ni.rootComplex.empty() && peerPath.find(ni.rootComplex) != std::string::npos) {
        if (ni.parent == peerParent) return DK_SML_TOPOLOGY_SINGLE_SWITCH;
        if (peerPath.find(ni.rootComplex + "/" + ni.rootPort) != std::string::npos) {
            return DK_SML_TOPOLOGY_MULTIPLE_SWITCHES;
        }
        return DK_SML_TOPOLOGY_HOST_BRIDGE;
    }
    return DetermineVirtualP2PLinkAvailability(ni.path, peerPath);
}

void DkTopology::FillNiTopoInfo(const DkTopologyInputs& inputs, uint32_t ni) {
    const DkNiNodeInfo& info = inputs.niNodes[ni];
    NiEndpoint self;
    self.bdf = info.bdf;
    self.numaNode = info.numaNode;
    self.path = GetRealPath(info.bdf);
    self.parent = ExtractParentNode(self.path);
    ExtractPciTree(self.path, self.rootComplex, self.rootPort);

    std::vector<uint32_t>& row = m_niTopoMatrix[ni];
    std::string scratch;
    for (const auto& [bdf, node] : inputs.gpuNodes) {
        uint32_t level = DK_SML_TOPOLOGY_SYSTEM;
        if (bdf == info.bdf) {
            level = DK_SML_TOPOLOGY_SAME_DEVICE;
        } else {
            // Read like the interface's own node: -1 (no NUMA) counts as node 0.
            int gpuNuma = 0;
            if (Tree().ReadText(m_pciDevicesPath + bdf + "/numa_node", scratch) != DK_SML_SUCCESS ||
                !ExtractNumber(std::string_view(scratch), gpuNuma) || gpuNuma < 0) {
                gpuNuma = 0;
            }
            if (static_cast<uint32_t>(gpuNuma) == info.numaNode) level = GetLinkType(self, bdf);
        }
        if (node.deviceIndex < row.size()) row[node.deviceIndex] = level;
    }
    const uint32_t gpuCount = inputs.gpuCount;
    for (uint32_t j = 0; j < inputs.niNodes.size(); ++j) {
        uint32_t level = DK_SML_TOPOLOGY_SYSTEM;
        if (j == ni) level = DK_SML_TOPOLOGY_SAME_DEVICE;
        else if (inputs.niNodes[j].numaNode == info.numaNode) level = GetLinkType(self, inputs.niNodes[j].bdf);
        row[gpuCount + j] = level;
    }
}

}  // namespace dksml
