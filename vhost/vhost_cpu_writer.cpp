#include <algorithm>
#include <charconv>
#include <string>

#include "vhost/vhost_cpu_topology.h"
#include "vhost/vhost_fs.h"

namespace dksml::vhost {
namespace {

namespace fs = std::filesystem;

constexpr const char* c_cpuDir = "/sys/devices/system/cpu/";
constexpr const char* c_nodeDir = "/sys/devices/system/node/";
// Every NUMA node gets this much memory; the distance table is the firmware's
// usual 10 local, 21 remote.
constexpr unsigned long long c_nodeMemoryKiB = 128ull * 1024 * 1024;
constexpr unsigned c_localDistance = 10;
constexpr unsigned c_remoteDistance = 21;
// A machine whose profile names no NUMA node still has node 0.
constexpr const char* c_defaultCpuList = "0-15";

struct Node {
    uint32_t id;
    std::vector<unsigned> cpus;
    unsigned threadsPerCore;
};

std::vector<Node> NodesOf(const HostSpec& host) {
    std::vector<Node> nodes;
    for (const CpuNodeSpec& node : host.cpuNodes) nodes.push_back({node.nodeId, ParseCpuList(node.cpuList), node.threadsPerCore});
    if (nodes.empty()) nodes.push_back({0, ParseCpuList(c_defaultCpuList), 1});
    return nodes;
}

std::string ListText(const std::vector<unsigned>& cpus) {
    std::string text;
    for (size_t i = 0; i < cpus.size();) {
        size_t end = i;
        while (end + 1 < cpus.size() && cpus[end + 1] == cpus[end] + 1) ++end;
        text += (text.empty() ? "" : ",") + std::to_string(cpus[i]);
        if (end > i) text += "-" + std::to_string(cpus[end]);
        i = end + 1;
    }
    return text;
}

void WriteSet(const fs::path& root, const std::string& stem, const std::vector<unsigned>& cpus, unsigned bits) {
    WriteText(root, stem + "_list", ListText(cpus) + "\n");
    WriteText(root, stem, CpuMaskText(cpus, bits) + "\n");
}

// Package = NUMA node; the k-th CPU of a node is thread k / cores of core
// k % cores, so "0-31,64-95" with two threads pairs 0 with 64.
void WriteCpus(const fs::path& root, const std::vector<Node>& nodes, unsigned bits) {
    std::vector<unsigned> all;
    for (size_t package = 0; package < nodes.size(); ++package) {
        const Node& node = nodes[package];
        const size_t cores = node.cpus.size() / node.threadsPerCore;
        for (size_t k = 0; k < node.cpus.size(); ++k) {
            const unsigned cpu = node.cpus[k];
            all.push_back(cpu);
            std::vector<unsigned> siblings;
            for (size_t j = k % cores; j < node.cpus.size(); j += cores) siblings.push_back(node.cpus[j]);
            std::sort(siblings.begin(), siblings.end());
            const std::string dir = c_cpuDir + ("cpu" + std::to_string(cpu));
            const std::string topology = dir + "/topology/";
            WriteText(root, topology + "physical_package_id", std::to_string(package) + "\n");
            WriteText(root, topology + "die_id", "0\n");
            WriteText(root, topology + "cluster_id", std::to_string(k % cores) + "\n");
            WriteText(root, topology + "core_id", std::to_string(k % cores) + "\n");
            WriteSet(root, topology + "thread_siblings", siblings, bits);
            WriteSet(root, topology + "core_cpus", siblings, bits);
            WriteSet(root, topology + "cluster_cpus", siblings, bits);
            WriteSet(root, topology + "core_siblings", node.cpus, bits);
            WriteSet(root, topology + "die_cpus", node.cpus, bits);
            WriteSet(root, topology + "package_cpus", node.cpus, bits);
            if (cpu != 0) WriteText(root, dir + "/online", "1\n");
            LinkRelative(root, dir + "/node" + std::to_string(node.id), c_nodeDir + ("node" + std::to_string(node.id)));
            LinkRelative(root, "/sys/bus/cpu/devices/cpu" + std::to_string(cpu), dir);
        }
    }
    std::sort(all.begin(), all.end());
    const std::string list = ListText(all) + "\n";
    for (const char* name : {"online", "possible", "present"}) WriteText(root, c_cpuDir + std::string(name), list);
}

void WriteNodes(const fs::path& root, const std::vector<Node>& nodes, unsigned bits) {
    std::vector<unsigned> ids;
    for (const Node& node : nodes) ids.push_back(node.id);
    std::sort(ids.begin(), ids.end());
    const std::string idList = ListText(ids) + "\n";
    for (const char* name : {"online", "possible", "has_cpu", "has_memory", "has_normal_memory"}) {
        WriteText(root, c_nodeDir + std::string(name), idList);
    }
    for (const Node& node : nodes) {
        const std::string dir = c_nodeDir + ("node" + std::to_string(node.id));
        const std::string id = std::to_string(node.id);
        WriteText(root, dir + "/cpulist", ListText(node.cpus) + "\n");
        WriteText(root, dir + "/cpumap", CpuMaskText(node.cpus, bits) + "\n");
        std::string distance;
        for (const Node& other : nodes) {
            distance += (distance.empty() ? "" : " ") + std::to_string(other.id == node.id ? c_localDistance : c_remoteDistance);
        }
        WriteText(root, dir + "/distance", distance + "\n");
        const std::string kib = std::to_string(c_nodeMemoryKiB);
        WriteText(root, dir + "/meminfo", "Node " + id + " MemTotal:       " + kib + " kB\nNode " + id +
                                              " MemFree:        " + kib + " kB\nNode " + id +
                                              " MemUsed:        0 kB\n");
        for (const unsigned cpu : node.cpus) {
            LinkRelative(root, dir + "/cpu" + std::to_string(cpu), c_cpuDir + ("cpu" + std::to_string(cpu)));
        }
        LinkRelative(root, "/sys/bus/node/devices/node" + id, dir);
    }
}

}  // namespace

std::vector<unsigned> ParseCpuList(std::string_view list) {
    std::vector<unsigned> cpus;
    constexpr unsigned c_maxCpu = 8191;  // the kernel's largest NR_CPUS
    while (!list.empty()) {
        const size_t comma = list.find(',');
        const std::string_view range = list.substr(0, comma);
        list = comma == std::string_view::npos ? std::string_view() : list.substr(comma + 1);
        if (comma != std::string_view::npos && list.empty()) return {};
        const size_t dash = range.find('-');
        unsigned first = 0;
        unsigned last = 0;
        const std::string_view head = range.substr(0, dash);
        if (std::from_chars(head.data(), head.data() + head.size(), first).ptr != head.data() + head.size() ||
            head.empty()) {
            return {};
        }
        last = first;
        if (dash != std::string_view::npos) {
            const std::string_view tail = range.substr(dash + 1);
            if (tail.empty() ||
                std::from_chars(tail.data(), tail.data() + tail.size(), last).ptr != tail.data() + tail.size()) {
                return {};
            }
        }
        if (last < first || last > c_maxCpu) return {};
        for (unsigned cpu = first; cpu <= last; ++cpu) cpus.push_back(cpu);
    }
    std::sort(cpus.begin(), cpus.end());
    cpus.erase(std::unique(cpus.begin(), cpus.end()), cpus.end());
    return cpus;
}

std::string CpuMaskText(const std::vector<unsigned>& cpus, unsigned bitCount) {
    const unsigned digits = std::max(1u, (bitCount + 3) / 4);
    std::string text;
    for (unsigned digit = digits; digit-- > 0;) {
        unsigned nibble = 0;
        for (unsigned bit = 0; bit < 4; ++bit) {
            if (std::binary_search(cpus.begin(), cpus.end(), digit * 4 + bit)) nibble |= 1u << bit;
        }
        text += "0123456789abcdef"[nibble];
        if (digit % 8 == 0 && digit != 0) text += ',';
    }
    return text;
}

unsigned PossibleCpuCount(const HostSpec& host) {
    unsigned count = 0;
    for (const Node& node : NodesOf(host)) {
        if (!node.cpus.empty()) count = std::max(count, node.cpus.back() + 1);
    }
    return count;
}

void WriteCpuTopology(const fs::path& root, const HostSpec& host) {
    const std::vector<Node> nodes = NodesOf(host);
    const unsigned bits = PossibleCpuCount(host);
    WriteCpus(root, nodes, bits);
    WriteNodes(root, nodes, bits);
}

}  // namespace dksml::vhost
