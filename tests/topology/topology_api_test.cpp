// Topology and affinity through the exported functions on virtual hosts.
#include <gtest/gtest.h>
#include <sched.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <set>
#include <thread>

#include "api/api_host.h"
#include "core/dk_sys_utils.h"
#include "core/dk_system_manager.h"
#include "features/topology/dk_topology.h"

namespace dksml {
namespace {

using test::MakeHost;

// The levels, CPU and node masks of every GPU and network card of each
// profile are in dksmi's topology transcripts (tests/dksmi/golden), and null
// outputs and unknown indices in tests/api; the tests here take the other
// refusals, the failure paths and what dksmi does not print.

// Distances come from the link records; a mask of fewer words than the CPUs
// holds the first ones; the limited DKK1 and a VF have no place.
TEST(TopologyApi, DistancesShortMasksAndRefusals) {
    auto host = MakeHost("server");
    uint32_t distance = 0;
    EXPECT_EQ(dkSmlGetDeviceDistance(0, 1, &distance), DK_SML_SUCCESS);
    EXPECT_EQ(distance, 15u);
    EXPECT_EQ(dkSmlGetDeviceDistance(0, 3, &distance), DK_SML_SUCCESS);
    EXPECT_EQ(distance, 30u);
    EXPECT_EQ(dkSmlGetDeviceDistance(2, 2, &distance), DK_SML_SUCCESS);
    EXPECT_EQ(distance, 0u);
    EXPECT_EQ(dkSmlGetDeviceDistance(0, 99, &distance), DK_SML_ERROR_DEVICE_NOT_AVAILABLE);
    uint32_t cpus[2] = {1, 1};
    ASSERT_EQ(dkSmlGetCpuAffinity(3, 2, cpus), DK_SML_SUCCESS);  // node 1: 32-63 only fit
    EXPECT_EQ(cpus[0], 0u);
    EXPECT_EQ(cpus[1], 0xFFFFFFFFu);
    DkSmlGpuTopologyLevel level;
    EXPECT_EQ(dkSmlGetDeviceTopology(0, 6, &level), DK_SML_ERROR_DEVICE_NOT_AVAILABLE);    // the limited DKK1
    EXPECT_EQ(dkSmlGetDeviceTopology(100, 0, &level), DK_SML_ERROR_DEVICE_NOT_AVAILABLE);  // a VF
    uint32_t nodes = 0;
    EXPECT_EQ(dkSmlGetNodeAffinity(6, 1, &nodes), DK_SML_ERROR_DEVICE_NOT_AVAILABLE);
}

TEST(TopologyApi, GpuWithoutLinkRecordsIsUnreachable) {
    const vhost::ScopedHost host(vhost::LoadProfile("server"));
    // Take every link record of the DKK6U away, as a driver without the
    // layout's link directories would.
    const std::filesystem::path nodes = host.Path("/sys/class/dravik/dkcd/layout/nodes");
    for (const auto& node : std::filesystem::directory_iterator(nodes)) {
        if (host.ReadFile("/sys/class/dravik/dkcd/layout/nodes/" + node.path().filename().string() + "/location") !=
            "0000:b0:00.0\n") {
            continue;
        }
        std::filesystem::remove_all(node.path() / "direct_links");
        std::filesystem::remove_all(node.path() / "indirect_links");
    }
    ASSERT_EQ(dkSmlInitWithFlags(1), DK_SML_SUCCESS);
    uint32_t distance = 0;
    DkSmlGpuTopologyLevel level;
    EXPECT_EQ(dkSmlGetDeviceDistance(4, 0, &distance), DK_SML_ERROR_FAILURE);
    EXPECT_EQ(distance, DK_SML_DISTANCE_UNREACHABLE);
    ASSERT_EQ(dkSmlGetDeviceTopology(4, 3, &level), DK_SML_SUCCESS);
    EXPECT_EQ(level, DK_SML_TOPOLOGY_UNKNOWN);
    EXPECT_EQ(dkSmlGetDeviceDistance(4, 4, &distance), DK_SML_SUCCESS);
    uint32_t nodesMask = 0;
    ASSERT_EQ(dkSmlGetNodeAffinity(4, 1, &nodesMask), DK_SML_SUCCESS);
    EXPECT_EQ(nodesMask, 0u);  // its CPU-node record went too
}

// Records the CPU sets instead of pinning (that the calling thread is pinned,
// with a set of the right size, is seen by the real-thread test below).
class RecordingSysUtils : public DkSysUtils {
public:
    int PthreadSetaffinityNp(unsigned long /*thread*/, unsigned long /*size*/, const cpu_set_t* set) override {
        cpus.clear();
        for (int cpu = 0; cpu < 1024; ++cpu) {
            if (CPU_ISSET(cpu, set)) cpus.insert(cpu);
        }
        return result;
    }
    int GetNprocs() override { return 6; }
    std::set<int> cpus;
    int result = 0;
};

TEST(TopologyApi, PinningGoesThroughTheSystemUtilities) {
    auto host = MakeHost("server");
    auto owned = std::make_unique<RecordingSysUtils>();
    RecordingSysUtils* utils = owned.get();
    ASSERT_EQ(DkSystemManager::GetInstance().Initialize(g_dkDeviceSearchPath, std::move(owned), 1), DK_SML_SUCCESS);
    ASSERT_EQ(dkSmlSetCpuAffinity(3), DK_SML_SUCCESS);
    std::set<int> expected;
    for (int cpu = 32; cpu < 64; ++cpu) expected.insert(cpu);
    for (int cpu = 96; cpu < 128; ++cpu) expected.insert(cpu);
    EXPECT_EQ(utils->cpus, expected);
    ASSERT_EQ(dkSmlClearCpuAffinity(0), DK_SML_SUCCESS);
    EXPECT_EQ(utils->cpus, (std::set<int>{0, 1, 2, 3, 4, 5}));
    utils->result = 22;
    EXPECT_EQ(dkSmlSetCpuAffinity(0), DK_SML_ERROR_FAILURE);
    EXPECT_EQ(dkSmlSetCpuAffinity(6), DK_SML_ERROR_DEVICE_NOT_AVAILABLE);
    EXPECT_EQ(dkSmlClearCpuAffinity(100), DK_SML_ERROR_DEVICE_NOT_AVAILABLE);
    (void)dkSmlInitWithFlags(1);  // back to the real system calls
}

std::set<int> AllowedCpus() {
    cpu_set_t set;
    CPU_ZERO(&set);
    std::set<int> cpus;
    if (sched_getaffinity(0, sizeof(set), &set) != 0) return cpus;
    for (int cpu = 0; cpu < CPU_SETSIZE; ++cpu) {
        if (CPU_ISSET(cpu, &set)) cpus.insert(cpu);
    }
    return cpus;
}

// The thread really runs only on the GPU's CPUs, where this machine has them.
TEST(TopologyApi, PinnedThreadRunsOnlyOnTheGpusCpus) {
    const std::set<int> allowed = AllowedCpus();
    for (const char* profile : {"workstation", "server"}) {
        auto host = MakeHost(profile);
        uint32_t mask[4] = {};
        ASSERT_EQ(dkSmlGetCpuAffinity(0, 4, mask), DK_SML_SUCCESS);
        std::set<int> gpuCpus, usable;
        for (int cpu = 0; cpu < 128; ++cpu) {
            if ((mask[cpu / 32] >> (cpu % 32) & 1u) == 0) continue;
            gpuCpus.insert(cpu);
            if (allowed.contains(cpu)) usable.insert(cpu);
        }
        std::thread worker([&] {
            const DkSmlReturn pinned = dkSmlSetCpuAffinity(0);
            if (usable.empty()) {
                EXPECT_EQ(pinned, DK_SML_ERROR_FAILURE) << profile;
                return;
            }
            ASSERT_EQ(pinned, DK_SML_SUCCESS) << profile;
            const std::set<int> now = AllowedCpus();
            EXPECT_EQ(now, usable) << profile;
            EXPECT_EQ(dkSmlClearCpuAffinity(0), DK_SML_SUCCESS);
        });
        worker.join();
        if (usable.empty()) std::cout << profile << ": this machine has none of GPU 0's CPUs\n";
    }
}

// Without the switch link, a network card and a GPU under different root
// complexes of one node are on the same NUMA node.
TEST(TopologyApi, NetworkCardsWithoutTheSwitchLinkAndOutOfRange) {
    nlohmann::json profile = vhost::LoadProfile("workstation");
    profile["files"].erase("/sys/kernel/pci_switch_link/virtual_switch_links/0000:80:03.0/0000:00:01.0");
    // A directory that loops back on itself must not hang the walk.
    profile["files"]["/opt/pci_switch_link/virtual_switch_links/0000:80:03.0/readme"] = "";
    auto host = std::make_unique<vhost::ScopedHost>(profile);
    std::filesystem::create_directory_symlink(
        "..", host->Path("/opt/pci_switch_link/virtual_switch_links/0000:80:03.0/loop"));
    setenv("DK_SMI_NIC_VENDOR", "0x15b3", 1);
    ASSERT_EQ(dkSmlInitWithFlags(1), DK_SML_SUCCESS);
    unsetenv("DK_SMI_NIC_VENDOR");
    std::shared_ptr<DkTopology> topology = DkSystemManager::GetInstance().GetTopology();
    ASSERT_TRUE(topology);
    DkSmlGpuTopologyLevel level;
    ASSERT_EQ(topology->GetNiTopology(0, 0, &level), DK_SML_SUCCESS);
    EXPECT_EQ(level, DK_SML_TOPOLOGY_NUMA_NODE);
    // Network card 0 and GPUs 0 and 1 only: other indices are out of range.
    EXPECT_EQ(topology->GetNiTopology(0, 10001, &level), DK_SML_ERROR_DEVICE_NOT_AVAILABLE);
    EXPECT_EQ(topology->GetNiTopology(1, 0, &level), DK_SML_ERROR_DEVICE_NOT_AVAILABLE);
    EXPECT_EQ(topology->GetNiTopology(0, 2, &level), DK_SML_ERROR_DEVICE_NOT_AVAILABLE);
    const auto& switches = topology->GetVirtualSwitchMap();
    ASSERT_EQ(switches.count("0000:80:03.0"), 1u);
    EXPECT_EQ(switches.at("0000:80:03.0"), std::vector<std::string>{"readme"});
}

TEST(TopologyApi, SocketsLinkNumbersAndRemoteInfo) {
    auto host = MakeHost("server");
    std::shared_ptr<DkTopology> topology = DkSystemManager::GetInstance().GetTopology();
    ASSERT_TRUE(topology);
    EXPECT_EQ(topology->GetSocketMap().at(0), (std::vector<uint32_t>{0, 1, 2}));
    EXPECT_EQ(topology->GetSocketMap().at(1), (std::vector<uint32_t>{3, 4, 5}));
    EXPECT_EQ(topology->GetTopologyId(4), 4u);
    EXPECT_EQ(topology->GetTopologyId(100), UINT32_MAX);
    EXPECT_EQ(topology->GetDeviceDravikLinkNumber(0), 7u);  // a DKK6 board: full mesh of eight
    topology->SetTopologyIdForTest(0, 42);
    EXPECT_EQ(topology->GetDeviceDravikLinkNumber(0), 0u);

    DkSmlDravikLinkRemoteInfo remote{};
    ASSERT_EQ(dkSmlGetDravikLinkRemoteInfo(0, 1, &remote), DK_SML_SUCCESS);  // 1b: links to 1c, then af
    EXPECT_EQ(remote.remoteDeviceIndex, 3u);
    EXPECT_STREQ(remote.remoteBdfId, "0000:af:00.0");
    EXPECT_EQ(remote.remoteDeviceType, static_cast<uint32_t>(DK_SML_EX_DRAVIK_LINK_DEVICE_TYPE_GPU));
    EXPECT_EQ(dkSmlGetDravikLinkRemoteInfo(0, 2, &remote), DK_SML_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(dkSmlGetDravikLinkRemoteInfo(2, 0, &remote), DK_SML_ERROR_NOT_SUPPORTED);

    DkSmlDravikLinkTopo ports[4] = {};
    uint32_t count = 1;
    EXPECT_EQ(dkSmlGetDravikLinkTopo(0, &count, ports), DK_SML_ERROR_INSUFFICIENT_SIZE);
    EXPECT_EQ(count, 2u);
    ASSERT_EQ(dkSmlGetDravikLinkTopo(3, &count, ports), DK_SML_SUCCESS);
    EXPECT_EQ(ports[1].remoteDeviceIndex, 0u);  // af: b0 first, then 1b
    EXPECT_EQ(ports[1].remotePort, 1u);
}

TEST(TopologyApi, CompatibilityHandles) {
    auto host = MakeHost("server");
    DkSmlExDevice first = nullptr, second = nullptr, third = nullptr, vf = nullptr;
    ASSERT_EQ(dkSmlExGetDeviceHandleByPciBusId("0000:1b:00.0", &first), DK_SML_EX_SUCCESS);
    ASSERT_EQ(dkSmlExGetDeviceHandleByPciBusId("0000:1e:00.0", &second), DK_SML_EX_SUCCESS);
    ASSERT_EQ(dkSmlExGetDeviceHandleByPciBusId("0000:b0:00.0", &third), DK_SML_EX_SUCCESS);
    DkSmlExGpuTopologyLevel ancestor{};
    ASSERT_EQ(dkSmlExDeviceGetTopologyCommonAncestor(first, second, &ancestor), DK_SML_EX_SUCCESS);
    EXPECT_EQ(ancestor, DK_SML_EX_TOPOLOGY_MULTIPLE);
    ASSERT_EQ(dkSmlExDeviceGetTopologyCommonAncestor(first, third, &ancestor), DK_SML_EX_SUCCESS);
    EXPECT_EQ(ancestor, DK_SML_EX_TOPOLOGY_SYSTEM);
    ASSERT_EQ(dkSmlExDeviceGetTopologyCommonAncestor(first, first, &ancestor), DK_SML_EX_SUCCESS);
    EXPECT_EQ(ancestor, DK_SML_EX_TOPOLOGY_INTERNAL);
    DkSmlExDevice firstAgain = nullptr;
    ASSERT_EQ(dkSmlExGetDeviceHandleByPciBusId("0000:1c:00.0", &firstAgain), DK_SML_EX_SUCCESS);
    EXPECT_EQ(dkSmlExDeviceGetTopologyCommonAncestor(first, firstAgain, &ancestor), DK_SML_EX_ERROR_NOT_SUPPORTED)
        << "interconnect relation has no ancestor level";
    EXPECT_EQ(dkSmlExDeviceGetTopologyCommonAncestor(first, nullptr, &ancestor), DK_SML_EX_ERROR_INVALID_ARGUMENT);

    uint32_t cpus[4] = {};
    ASSERT_EQ(dkSmlExDeviceGetCpuAffinity(first, 4, cpus), DK_SML_EX_SUCCESS);
    EXPECT_EQ(cpus[0], 0xFFFFFFFFu);
    EXPECT_EQ(dkSmlExDeviceGetCpuAffinity(first, 0, cpus), DK_SML_EX_ERROR_INVALID_ARGUMENT);
    ASSERT_EQ(dkSmlExGetDeviceHandleByPciBusId("0000:1e:00.1", &vf), DK_SML_EX_SUCCESS);
    EXPECT_EQ(dkSmlExDeviceGetCpuAffinity(vf, 4, cpus), DK_SML_EX_ERROR_UNKNOWN);  // VFs have no row

    DkSmlExPciInfo pci{};
    ASSERT_EQ(dkSmlExDeviceGetDravikLinkRemotePciInfo_v2(first, 0, &pci), DK_SML_EX_SUCCESS);
    DkSmlExDravikLinkDeviceType type{};
    ASSERT_EQ(dkSmlExDeviceGetDravikLinkRemoteDeviceType(first, 0, &type), DK_SML_EX_SUCCESS);
    EXPECT_EQ(type, DK_SML_EX_DRAVIK_LINK_DEVICE_TYPE_GPU);

    DkSmlExFieldValue field{};
    field.fieldId = DK_SML_EX_FI_DEV_DRAVIK_LINK_LINK_COUNT;
    ASSERT_EQ(dkSmlExDeviceGetFieldValues(first, 1, &field), DK_SML_EX_SUCCESS);
    EXPECT_EQ(field.dkSmlReturn, DK_SML_EX_SUCCESS);
    EXPECT_EQ(field.value.uiVal, 7u);
}

}  // namespace
}  // namespace dksml
