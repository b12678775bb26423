// The standard Linux tools see every shipped profile as the profile describes
// it: lspci draws the bridges, ids and links; hwloc the bridges, NUMA nodes and
// CPU sets. Skips only when the tools are not installed.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "core/dk_pci_ids.h"
#include "real_tools_support.h"
#include "vhost/dk_virtual_host.h"
#include "vhost/vhost_cpu_topology.h"
#include "vhost/vhost_pcie_link.h"
#include "vhost/vhost_profile.h"

namespace dksml::realtools {
namespace {

namespace fs = std::filesystem;
using vhost::DeviceSpec;
using vhost::HostSpec;

std::vector<std::string> ShippedProfiles() {
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(vhost::ProfileDirectory())) {
        if (entry.path().extension() == ".json") names.push_back(entry.path().stem().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string Hex4(uint32_t value) {
    char text[8];
    std::snprintf(text, sizeof text, "%04x", value);
    return text;
}

// lspci's name for a PCI Express generation.
std::string LspciSpeed(unsigned generation) {
    static const std::map<unsigned, std::string> speeds{{1, "2.5GT/s"}, {2, "5GT/s"}, {3, "8GT/s"},
                                                        {4, "16GT/s"}, {5, "32GT/s"}, {6, "64GT/s"}};
    return speeds.at(generation);
}

std::string LineStartingWith(const std::string& text, const std::string& prefix) {
    const size_t at = text.find(prefix);
    return at == std::string::npos ? "" : text.substr(at, text.find('\n', at) - at);
}

class RealTools : public ::testing::TestWithParam<std::string> {
protected:
    void SetUp() override {
        for (const char* tool : {"lspci", "lstopo-no-graphics"}) {
            if (const std::string missing = MissingTool(tool); !missing.empty()) GTEST_SKIP() << missing;
        }
        host_ = std::make_unique<vhost::ScopedHost>(GetParam());
        spec_ = vhost::ParseProfile(vhost::LoadProfile(GetParam()));
    }

    ToolRun MustRun(const std::string& command) {
        ToolRun run = RunTool(command);
        EXPECT_EQ(run.status, 0) << command;
        std::string errors;
        for (const std::string& line : run.errorLines) errors += line + "\n";
        EXPECT_EQ(errors, "") << command;
        return run;
    }

    fs::path Root() const { return host_->Root(); }

    std::unique_ptr<vhost::ScopedHost> host_;
    HostSpec spec_;
};

// -PP prints each function as the path of bridges leading to it; -vv its
// configuration space: subsystem, revision, port type, link and, for a
// physical function, its virtual functions.
TEST_P(RealTools, LspciShowsEveryFunctionBehindItsBridgesWithItsIdsAndLinks) {
    MustRun(Lspci(Root(), "-tv"));
    const ToolRun paths = MustRun(Lspci(Root(), "-D -PP -n"));
    for (const DeviceSpec& device : spec_.devices) {
        std::string path = device.bridges.empty() ? device.busId : device.bridges.front();
        for (size_t i = 1; i < device.bridges.size(); ++i) path += "/" + device.bridges[i].substr(5);
        if (!device.bridges.empty()) path += "/" + device.busId.substr(5);
        const std::string ids = Hex4(device.vendorId) + ":" + Hex4(device.deviceId);
        EXPECT_NE(paths.out.find(path + " " + device.pciClass.substr(2, 4) + ": " + ids), std::string::npos)
            << path << " " << ids << " not in\n" << paths.out;

        const ToolRun run = MustRun(Lspci(Root(), "-vv -nn -s " + device.busId));
        if (device.subsystemVendorId != 0) {
            const std::string subsystem = LineStartingWith(run.out, "Subsystem:");
            const std::string want = "[" + Hex4(device.subsystemVendorId) + ":" + Hex4(device.subsystemDeviceId) + "]";
            EXPECT_NE(subsystem.find(want), std::string::npos) << subsystem;
        }
        const std::string revision = "(rev " + Hex4(device.revision).substr(2) + ")";
        EXPECT_EQ(run.out.find(revision) != std::string::npos, device.revision != 0) << run.out;
        EXPECT_NE(run.out.find("Express (v2) Endpoint"), std::string::npos) << run.out;
        const std::string cap = LineStartingWith(run.out, "LnkCap:");
        const std::string status = LineStartingWith(run.out, "LnkSta:");
        EXPECT_NE(cap.find("Speed " + LspciSpeed(device.link.maxGeneration) + ","), std::string::npos) << cap;
        EXPECT_NE(cap.find("Width x" + std::to_string(device.link.maxWidth) + ","), std::string::npos) << cap;
        EXPECT_NE(status.find("Speed " + LspciSpeed(device.link.generation)), std::string::npos) << status;
        EXPECT_NE(status.find("Width x" + std::to_string(device.link.width)), std::string::npos) << status;
        const auto isVf = [&](const DeviceSpec& vf) { return vf.parent == device.busId; };
        const auto vfs = std::count_if(spec_.devices.begin(), spec_.devices.end(), isVf);
        if (vfs > 0) {
            const DeviceSpec& vf = *std::find_if(spec_.devices.begin(), spec_.devices.end(), isVf);
            EXPECT_NE(run.out.find("Number of VFs: " + std::to_string(vfs)), std::string::npos) << run.out;
            EXPECT_NE(run.out.find("Device ID: " + Hex4(vf.deviceId)), std::string::npos) << run.out;
        }
    }
}

TEST_P(RealTools, LstopoDrawsBridgesNumaNodesAndCpuSets) {
    // Without the x86 backend: it asks the build machine's own processor for its
    // caches, which on some processors cannot nest inside a simulated CPU set.
    MustRun(Lstopo(Root(), "--whole-io"));
    const std::vector<HwlocObject> objects = ParseHwlocXml(MustRun(Lstopo(Root(), "--whole-io --of xml -")).out);
    std::map<int, std::vector<unsigned>> nodeCpus;
    std::vector<size_t> coreSizes;
    for (const HwlocObject& object : objects) {
        if (object.type == "NUMANode") nodeCpus[object.osIndex] = HwlocSetCpus(object.cpuset);
        if (object.type == "Core") coreSizes.push_back(HwlocSetCpus(object.cpuset).size());
    }
    // Each node's CPUs, paired into cores by their thread siblings.
    size_t cpus = 0;
    std::vector<size_t> expectedCoreSizes;
    for (const vhost::CpuNodeSpec& node : spec_.cpuNodes) {
        const std::vector<unsigned> nodeList = vhost::ParseCpuList(node.cpuList);
        EXPECT_EQ(nodeCpus[static_cast<int>(node.nodeId)], nodeList) << "node " << node.nodeId;
        cpus += nodeList.size();
        expectedCoreSizes.insert(expectedCoreSizes.end(), nodeList.size() / node.threadsPerCore, node.threadsPerCore);
    }
    if (cpus > 0) {
        EXPECT_EQ(coreSizes, expectedCoreSizes);
    }
    std::map<std::string, const HwlocObject*> byBusId;
    for (const HwlocObject& object : objects) {
        if (object.type == "PCIDev") byBusId[object.busId] = &object;
    }
    for (const DeviceSpec& device : spec_.devices) {
        ASSERT_TRUE(byBusId.contains(device.busId)) << device.busId;
        std::vector<std::string> bridges;
        const HwlocObject* closestCpuSide = nullptr;
        for (const HwlocObject* ancestor : byBusId[device.busId]->ancestors) {
            if (ancestor->type == "Bridge" && !ancestor->busId.empty()) bridges.push_back(ancestor->busId);
            if (ancestor->type == "Package" || ancestor->type == "Machine" || ancestor->type == "Group") {
                closestCpuSide = ancestor;
            }
        }
        EXPECT_EQ(bridges, device.bridges) << device.busId;
        ASSERT_NE(closestCpuSide, nullptr) << device.busId;
        if (device.numaNode >= 0) {
            EXPECT_EQ(HwlocSetCpus(closestCpuSide->cpuset), vhost::ParseCpuList(device.localCpuList)) << device.busId;
            EXPECT_EQ(nodeCpus[device.numaNode], vhost::ParseCpuList(device.localCpuList)) << device.busId;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(ShippedProfiles, RealTools, ::testing::ValuesIn(ShippedProfiles()),
                         [](const ::testing::TestParamInfo<std::string>& profile) {
                             std::string name = profile.param;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

// lspci names functions from pci.ids: the maker's ids must be unassigned
// there, or our GPUs carry another company's name.
TEST(PciIds, TheMakerVendorIdsAreUnassigned) {
    fs::path ids;
    for (const char* candidate : {"/usr/share/misc/pci.ids", "/usr/share/hwdata/pci.ids"}) {
        if (fs::exists(candidate)) ids = candidate;
    }
    if (ids.empty()) GTEST_SKIP() << "pci.ids is not installed (scripts/install-deps.sh installs pciutils)";
    std::ifstream in(ids);
    std::set<std::string> vendors;
    for (std::string line; std::getline(in, line);) {
        if (line.size() > 5 && line[0] != '#' && line[0] != '\t' && line[4] == ' ') vendors.insert(line.substr(0, 4));
    }
    ASSERT_GT(vendors.size(), 1000u) << "unexpected pci.ids format";
    for (const uint32_t vendor : {c_makerVendorId, c_makerPartnerVendorId}) {
        EXPECT_FALSE(vendors.contains(Hex4(vendor))) << Hex4(vendor) << " belongs to another vendor in " << ids;
    }
}

}  // namespace
}  // namespace dksml::realtools
