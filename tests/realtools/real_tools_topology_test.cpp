// hwloc and the library answer the same locality questions from one tree:
// for every GPU pair the nearest common ancestor lstopo finds gives the
// topology level the library reports, and each GPU's CPU and NUMA sets are the
// ones hwloc attaches it to.
#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "dksml.h"
#include "real_tools_support.h"
#include "vhost/dk_virtual_host.h"

namespace dksml::realtools {
namespace {

struct Gpu {
    uint32_t index = 0;
    std::string busId;
    const HwlocObject* object = nullptr;
};

// hwloc writes PCI bridges with a bus id and host bridges without one.
bool IsPciBridge(const HwlocObject& o) { return o.type == "Bridge" && !o.busId.empty(); }
bool IsHostBridge(const HwlocObject& o) { return o.type == "Bridge" && o.busId.empty(); }
bool IsIo(const HwlocObject& o) { return o.type == "Bridge" || o.type == "PCIDev"; }

size_t CommonDepth(const HwlocObject& a, const HwlocObject& b) {
    size_t depth = 0;
    while (depth < a.ancestors.size() && depth < b.ancestors.size() && a.ancestors[depth] == b.ancestors[depth]) {
        ++depth;
    }
    return depth;
}

bool IsSubset(const std::vector<unsigned>& inner, const std::vector<unsigned>& outer) {
    return std::includes(outer.begin(), outer.end(), inner.begin(), inner.end());
}

// The level a PCIe topology tool gives a pair from its nearest common ancestor:
// one switch when both GPUs hang from ports of the same switch, several
// switches below one root port, the host bridge, the NUMA node when the
// ancestor's CPUs fit in one node, else the whole system.
DkSmlGpuTopologyLevel LevelFromTree(const HwlocObject& a, const HwlocObject& b,
                                    const std::vector<std::vector<unsigned>>& numaCpus) {
    const size_t depth = CommonDepth(a, b);
    if (depth == 0) return DK_SML_TOPOLOGY_UNKNOWN;
    const HwlocObject& ancestor = *a.ancestors[depth - 1];
    if (IsPciBridge(ancestor)) {
        const bool portsOfOneSwitch = a.ancestors.size() == depth + 1 && b.ancestors.size() == depth + 1;
        return portsOfOneSwitch ? DK_SML_TOPOLOGY_SINGLE_SWITCH : DK_SML_TOPOLOGY_MULTIPLE_SWITCHES;
    }
    if (IsHostBridge(ancestor)) return DK_SML_TOPOLOGY_HOST_BRIDGE;
    const std::vector<unsigned> cpus = HwlocSetCpus(ancestor.cpuset);
    for (const std::vector<unsigned>& node : numaCpus) {
        if (IsSubset(cpus, node)) return DK_SML_TOPOLOGY_NUMA_NODE;
    }
    return DK_SML_TOPOLOGY_SYSTEM;
}

// The common-ancestor answer of the handle family for a PCIe level.
DkSmlExGpuTopologyLevel ExLevel(DkSmlGpuTopologyLevel level) {
    static const std::map<DkSmlGpuTopologyLevel, DkSmlExGpuTopologyLevel> levels{
        {DK_SML_TOPOLOGY_SINGLE_SWITCH, DK_SML_EX_TOPOLOGY_SINGLE},
        {DK_SML_TOPOLOGY_MULTIPLE_SWITCHES, DK_SML_EX_TOPOLOGY_MULTIPLE},
        {DK_SML_TOPOLOGY_HOST_BRIDGE, DK_SML_EX_TOPOLOGY_HOSTBRIDGE},
        {DK_SML_TOPOLOGY_NUMA_NODE, DK_SML_EX_TOPOLOGY_NODE},
        {DK_SML_TOPOLOGY_SYSTEM, DK_SML_EX_TOPOLOGY_SYSTEM}};
    return levels.at(level);
}

std::vector<unsigned> MaskBits(const uint32_t* words, size_t count) {
    std::vector<unsigned> bits;
    for (size_t word = 0; word < count; ++word) {
        for (unsigned bit = 0; bit < 32; ++bit) {
            if (words[word] & (1u << bit)) bits.push_back(static_cast<unsigned>(word * 32 + bit));
        }
    }
    return bits;
}

class LstopoAgreesWithTheLibrary : public ::testing::Test {
protected:
    void SetUp() override {
        if (const std::string missing = MissingTool("lstopo-no-graphics"); !missing.empty()) GTEST_SKIP() << missing;
    }

    // Builds the host, asks hwloc for its tree and the library for its GPUs.
    void Load(const nlohmann::json& profile) {
        host_ = std::make_unique<vhost::ScopedHost>(profile);
        const ToolRun run = RunTool(Lstopo(host_->Root(), "--whole-io --of xml -"));
        ASSERT_EQ(run.status, 0);
        objects_ = ParseHwlocXml(run.out);
        numaCpus_.clear();
        std::map<std::string, const HwlocObject*> byBusId;
        for (const HwlocObject& object : objects_) {
            if (object.type == "NUMANode") numaCpus_.push_back(HwlocSetCpus(object.cpuset));
            if (object.type == "PCIDev") byBusId[object.busId] = &object;
        }
        ASSERT_EQ(dkSmlInitWithFlags(1), DK_SML_SUCCESS);
        const uint32_t count = dkSmlGetDeviceCount();
        gpus_.clear();
        for (uint32_t index = 0; index < count; ++index) {
            DkSmlDeviceInfo info{};
            ASSERT_EQ(dkSmlGetDeviceInfo(index, &info), DK_SML_SUCCESS) << index;
            ASSERT_TRUE(byBusId.contains(info.bdfId)) << info.bdfId;
            gpus_.push_back({index, info.bdfId, byBusId[info.bdfId]});
        }
        ASSERT_GE(gpus_.size(), 2u);
    }

    // Every pair whose relation is a PCIe one; returns the levels seen.
    std::vector<DkSmlGpuTopologyLevel> ComparePairs() {
        std::vector<DkSmlGpuTopologyLevel> seen;
        for (size_t i = 0; i < gpus_.size(); ++i) {
            for (size_t j = i + 1; j < gpus_.size(); ++j) {
                const Gpu& a = gpus_[i];
                const Gpu& b = gpus_[j];
                DkSmlGpuTopologyLevel level = DK_SML_TOPOLOGY_UNKNOWN;
                EXPECT_EQ(dkSmlGetDeviceTopology(a.index, b.index, &level), DK_SML_SUCCESS);
                DkSmlExDevice ha{}, hb{};
                EXPECT_EQ(dkSmlExGetDeviceHandleByPciBusId(a.busId.c_str(), &ha), DK_SML_EX_SUCCESS);
                EXPECT_EQ(dkSmlExGetDeviceHandleByPciBusId(b.busId.c_str(), &hb), DK_SML_EX_SUCCESS);
                DkSmlExGpuTopologyLevel ancestor{};
                const DkSmlExReturn exResult = dkSmlExDeviceGetTopologyCommonAncestor(ha, hb, &ancestor);
                // An interconnect link hides the PCIe relation of its pair.
                if (level == DK_SML_TOPOLOGY_DRAVIK_LINK || level == DK_SML_TOPOLOGY_DRAVIK_LINK2) {
                    EXPECT_EQ(exResult, DK_SML_EX_ERROR_NOT_SUPPORTED) << a.busId << " " << b.busId;
                    continue;
                }
                const DkSmlGpuTopologyLevel expected = LevelFromTree(*a.object, *b.object, numaCpus_);
                EXPECT_EQ(level, expected) << a.busId << " " << b.busId;
                EXPECT_EQ(exResult, DK_SML_EX_SUCCESS) << a.busId << " " << b.busId;
                if (exResult == DK_SML_EX_SUCCESS && expected != DK_SML_TOPOLOGY_UNKNOWN) {
                    EXPECT_EQ(ancestor, ExLevel(expected)) << a.busId << " " << b.busId;
                }
                seen.push_back(level);
            }
        }
        return seen;
    }

    // hwloc attaches a GPU's I/O subtree to the object of its local CPUs.
    void CompareLocality() {
        for (const Gpu& gpu : gpus_) {
            const HwlocObject* local = nullptr;
            for (const HwlocObject* ancestor : gpu.object->ancestors) {
                if (!IsIo(*ancestor)) local = ancestor;
            }
            ASSERT_NE(local, nullptr) << gpu.busId;
            uint32_t cpus[8] = {};
            ASSERT_EQ(dkSmlGetCpuAffinity(gpu.index, 8, cpus), DK_SML_SUCCESS) << gpu.busId;
            EXPECT_EQ(MaskBits(cpus, 8), HwlocSetCpus(local->cpuset)) << gpu.busId;
            uint32_t nodes[1] = {};
            ASSERT_EQ(dkSmlGetNodeAffinity(gpu.index, 1, nodes), DK_SML_SUCCESS) << gpu.busId;
            EXPECT_EQ(MaskBits(nodes, 1), HwlocSetCpus(local->nodeset)) << gpu.busId;
        }
    }

    std::unique_ptr<vhost::ScopedHost> host_;
    std::vector<HwlocObject> objects_;
    std::vector<std::vector<unsigned>> numaCpus_;
    std::vector<Gpu> gpus_;
};

TEST_F(LstopoAgreesWithTheLibrary, OnTheServer) {
    Load(vhost::LoadProfile("server"));
    ComparePairs();
    CompareLocality();
}

// Without its interconnect links every pair of the server shows its PCIe
// relation, and all five of them occur: one switch, several switches, a host
// bridge, a NUMA node (the inference card beside the node-1 GPUs) and the system.
TEST_F(LstopoAgreesWithTheLibrary, OnTheServerWithoutInterconnectLinks) {
    nlohmann::json profile = vhost::LoadProfile("server");
    profile.erase("links");
    Load(profile);
    std::vector<DkSmlGpuTopologyLevel> seen = ComparePairs();
    std::sort(seen.begin(), seen.end());
    seen.erase(std::unique(seen.begin(), seen.end()), seen.end());
    EXPECT_EQ(seen, (std::vector<DkSmlGpuTopologyLevel>{DK_SML_TOPOLOGY_SINGLE_SWITCH, DK_SML_TOPOLOGY_MULTIPLE_SWITCHES,
                                                        DK_SML_TOPOLOGY_HOST_BRIDGE, DK_SML_TOPOLOGY_NUMA_NODE,
                                                        DK_SML_TOPOLOGY_SYSTEM}));
}

}  // namespace
}  // namespace dksml::realtools
