#include <map>
#include <string>
#include <utility>
#include <vector>

#include "vhost/vhost_fs.h"
#include "vhost/vhost_writers.h"

namespace dksml::vhost {
namespace {

namespace fs = std::filesystem;

constexpr const char* c_nodesDir = "/sys/class/dravik/dkcd/layout/nodes/";

// Kernel link types: 3 GPU to its local CPU node, 4 and 5 interconnect,
// 101..105 PCIe relations from "one switch" to "across NUMA nodes".
constexpr uint32_t c_cpuLinkType = 3;
const std::map<uint32_t, uint32_t> c_defaultDistance{{3, 20}, {101, 20}, {102, 25}, {103, 30}, {104, 40}, {105, 80}};

struct LinkRecord {
    uint32_t to;
    uint32_t type;
    uint32_t distance;
};

struct NodeLinks {
    std::vector<LinkRecord> direct;
    std::map<uint32_t, LinkRecord> indirect;  // by peer node: one PCIe relation per pair
};

bool IsDirectType(uint32_t type) { return type == 4 || type == 5 || type == c_cpuLinkType; }

// The switch of a port: all downstream ports of one switch share its bus.
std::string SwitchOf(const std::string& port) { return port.substr(0, 7); }

uint32_t PlacementType(const DeviceSpec& a, const DeviceSpec& b) {
    if (!a.bridges.empty() && !b.bridges.empty()) {
        if (a.bridges.size() > 1 && b.bridges.size() > 1 && SwitchOf(a.bridges.back()) == SwitchOf(b.bridges.back())) {
            return 101;
        }
        if (a.bridges.front() == b.bridges.front()) return 102;
    }
    if (a.rootComplex == b.rootComplex) return 103;
    if (a.numaNode == b.numaNode) return 104;
    return 105;
}

bool HasNode(const DeviceSpec& device) { return device.IsGpu() && device.layoutNode; }

void AddLink(NodeLinks& links, uint32_t to, uint32_t type, uint32_t distance) {
    const LinkRecord record{to, type, distance};
    if (IsDirectType(type)) {
        links.direct.push_back(record);
    } else {
        links.indirect[to] = record;
    }
}

std::map<uint32_t, NodeLinks> CollectLinks(const HostSpec& host) {
    std::map<uint32_t, NodeLinks> links;
    for (const DeviceSpec& a : host.devices) {
        if (!HasNode(a)) continue;
        for (const CpuNodeSpec& cpu : host.cpuNodes) {
            if (static_cast<int>(cpu.nodeId) == a.numaNode) AddLink(links[a.nodeId], cpu.nodeId, c_cpuLinkType, 20);
        }
        if (a.kind != FunctionKind::Physical) continue;
        for (const DeviceSpec& b : host.devices) {
            if (&a == &b || !HasNode(b) || b.kind != FunctionKind::Physical) continue;
            const uint32_t type = PlacementType(a, b);
            AddLink(links[a.nodeId], b.nodeId, type, c_defaultDistance.at(type));
        }
    }
    for (const LinkSpec& link : host.links) {
        const DeviceSpec& from = *host.FindDevice(link.from);
        const uint32_t distance = link.distance != 0 ? link.distance
                                : c_defaultDistance.contains(link.type) ? c_defaultDistance.at(link.type) : 15;
        if (link.to.rfind("cpu:", 0) == 0) {
            AddLink(links[from.nodeId], std::stoul(link.to.substr(4)), link.type, distance);
            continue;
        }
        const DeviceSpec& to = *host.FindDevice(link.to);
        AddLink(links[from.nodeId], to.nodeId, link.type, distance);
        AddLink(links[to.nodeId], from.nodeId, link.type, distance);
    }
    return links;
}

void WriteLinkRecord(const fs::path& root, const std::string& dir, unsigned index, const LinkRecord& link) {
    WriteText(root, dir + std::to_string(index) + "/properties",
              "to " + std::to_string(link.to) + "\ntype " + std::to_string(link.type) + "\ndistance " +
                  std::to_string(link.distance) + "\n");
}

void WriteNodeLinks(const fs::path& root, const std::string& node, const NodeLinks& links) {
    MakeDirectory(root, node + "direct_links");
    MakeDirectory(root, node + "indirect_links");
    unsigned index = 0;
    for (const LinkRecord& link : links.direct) WriteLinkRecord(root, node + "direct_links/", index++, link);
    index = 0;
    for (const auto& [peer, link] : links.indirect) WriteLinkRecord(root, node + "indirect_links/", index++, link);
}

void WriteCpuNode(const fs::path& root, const CpuNodeSpec& cpu) {
    const std::string node = c_nodesDir + std::to_string(cpu.nodeId) + "/";
    WriteText(root, node + "gpu_id", "0\n");
    WriteText(root, node + "type", "cpu\n");
    WriteText(root, node + "properties", "cpu_cores_count 64\nsimd_count 0\nmem_banks_count 1\n");
    WriteText(root, node + "active", "1\n");
    WriteText(root, node + "unique_id", "0\n");
    WriteNodeLinks(root, node, {});
}

void WriteGpuNode(const fs::path& root, const DeviceSpec& device, const NodeLinks& links) {
    const std::string node = c_nodesDir + std::to_string(device.nodeId) + "/";
    const bool vf = device.kind == FunctionKind::Virtual;
    WriteText(root, node + "gpu_id", std::to_string(device.gpuId) + "\n");
    WriteText(root, node + "type", "gpu\n");
    WriteText(root, node + "properties",
              "topology_id " + std::to_string(device.topologyPosition) + "\nis_vf " + (vf ? "1" : "0") +
                  "\ndrm_render_minor " + std::to_string(device.card < 0 ? 0 : 128 + device.card) +
                  "\nap_mask 4095\ndie_count " + std::to_string(device.dies.size()) + "\ndevice_id " +
                  std::to_string(device.deviceId) + "\n");
    WriteText(root, node + "location", device.busId + "\n");
    WriteText(root, node + "active", "1\n");
    WriteText(root, node + "inactive_reason", "0\n");
    WriteText(root, node + "unique_id", device.uniqueId + "\n");
    WriteNodeLinks(root, node, links);
}

}  // namespace

void WriteLayout(const fs::path& root, const HostSpec& host) {
    if (!host.driverLoaded) return;
    MakeDirectory(root, c_nodesDir);
    const std::map<uint32_t, NodeLinks> links = CollectLinks(host);
    for (const CpuNodeSpec& cpu : host.cpuNodes) WriteCpuNode(root, cpu);
    for (const DeviceSpec& device : host.devices) {
        if (!HasNode(device)) continue;
        const auto it = links.find(device.nodeId);
        WriteGpuNode(root, device, it == links.end() ? NodeLinks{} : it->second);
    }
}

}  // namespace dksml::vhost
