// The standard Linux tools (pciutils' lspci, hwloc's lstopo-no-graphics,
// hwloc-calc and hwloc-info) see every shipped profile as the profile
// describes it: lspci draws the bridges, ids and links; hwloc the bridges,
// NUMA nodes, cores and CPU sets. Skips only
// when the tools are not installed.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "core/dk_pci_ids.h"
#include "dksmi/dksmi_runner.h"
#include "support/dk_shipped_profiles.h"
#include "vhost/dk_virtual_host.h"
#include "vhost/vhost_cpu_topology.h"
#include "vhost/vhost_profile.h"

namespace dksml::realtools {
namespace {

namespace fs = std::filesystem;
using dksmi::test::RunCommand;
using dksmi::test::RunResult;
using vhost::DeviceSpec;
using vhost::HostSpec;

// lspci -v looks up kernel modules of the build machine through libkmod; on
// a container without /lib/modules it says so. That note is about the
// machine running the test, not about the tree under test.
bool IsBuildMachineNote(const std::string& line) {
    return line.find("Unable to load libkmod resources") != std::string::npos;
}

// Empty when `tool` is on PATH, else the reason a test skips.
std::string MissingTool(const std::string& tool) {
    if (RunCommand("command -v " + tool).exitCode == 0) return "";
    return tool + " is not installed (scripts/install-deps.sh installs pciutils and hwloc-nox)";
}

std::string Lspci(const std::filesystem::path& root, const std::string& options) {
    return "lspci -A linux-sysfs -O sysfs.path=" + (root / "sys/bus/pci").string() + " " + options;
}

// An hwloc tool with the virtual host as its file-system root. The x86 backend
// is left out: it would add the build machine's own caches from cpuid, which on
// some processors cannot nest inside a simulated CPU set.
std::string Hwloc(const std::filesystem::path& root, const std::string& toolAndOptions) {
    return "HWLOC_COMPONENTS=-x86 HWLOC_FSROOT=" + root.string() + " " + toolAndOptions;
}

std::string Hex4(uint32_t value) {
    char text[8];
    std::snprintf(text, sizeof text, "%04x", value);
    return text;
}

// lspci's name for a PCI Express generation.
std::string LspciSpeed(unsigned generation) {
    static const std::map<unsigned, std::string> speeds{{1, "2.5GT/s"}, {2, "5GT/s"},  {3, "8GT/s"},
                                                        {4, "16GT/s"},  {5, "32GT/s"}, {6, "64GT/s"}};
    return speeds.at(generation);
}

std::string LineStartingWith(const std::string& text, const std::string& prefix) {
    const size_t at = text.find(prefix);
    return at == std::string::npos ? "" : text.substr(at, text.find('\n', at) - at);
}

class RealTools : public ::testing::TestWithParam<std::string> {
protected:
    void SetUp() override {
        for (const char* tool : {"lspci", "lstopo-no-graphics", "hwloc-calc", "hwloc-info"}) {
            if (const std::string missing = MissingTool(tool); !missing.empty()) GTEST_SKIP() << missing;
        }
        host_ = std::make_unique<vhost::ScopedHost>(GetParam());
        spec_ = vhost::ParseProfile(vhost::LoadProfile(GetParam()));
    }

    // Runs `command`, which must succeed and say nothing on standard error
    // but notes about the build machine.
    RunResult MustRun(const std::string& command) {
        RunResult run = RunCommand(command);
        EXPECT_EQ(run.exitCode, 0) << command;
        std::istringstream errors(run.err);
        for (std::string line; std::getline(errors, line);) {
            if (!line.empty() && !IsBuildMachineNote(line)) ADD_FAILURE() << command << ": " << line;
        }
        return run;
    }

    fs::path Root() const { return host_->Root(); }

    // The physical numbers of the CPUs hwloc places in `location`, ascending.
    std::vector<unsigned> HwlocCpus(const std::string& location) {
        const std::string list = MustRun(Hwloc(Root(), "hwloc-calc -p -I pu " + location)).out;
        std::vector<unsigned> cpus = vhost::ParseCpuList(list.substr(0, list.find('\n')));
        std::sort(cpus.begin(), cpus.end());
        return cpus;
    }

    std::unique_ptr<vhost::ScopedHost> host_;
    HostSpec spec_;
};

// -PP prints each function as the path of bridges leading to it; -vv its
// configuration space: subsystem, revision, port type, link and, for a
// physical function, its virtual functions.
TEST_P(RealTools, LspciShowsEveryFunctionBehindItsBridgesWithItsIdsAndLinks) {
    MustRun(Lspci(Root(), "-tv"));
    const RunResult paths = MustRun(Lspci(Root(), "-D -PP -n"));
    for (const DeviceSpec& device : spec_.devices) {
        std::string path = device.bridges.empty() ? device.busId : device.bridges.front();
        for (size_t i = 1; i < device.bridges.size(); ++i) path += "/" + device.bridges[i].substr(5);
        if (!device.bridges.empty()) path += "/" + device.busId.substr(5);
        const std::string ids = Hex4(device.vendorId) + ":" + Hex4(device.deviceId);
        EXPECT_NE(paths.out.find(path + " " + device.pciClass.substr(2, 4) + ": " + ids), std::string::npos)
            << path << " " << ids << " not in\n"
            << paths.out;

        const RunResult run = MustRun(Lspci(Root(), "-vv -nn -s " + device.busId));
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

TEST_P(RealTools, HwlocDrawsBridgesNumaNodesAndCpuSets) {
    const std::string xml = MustRun(Hwloc(Root(), "lstopo-no-graphics --whole-io --of xml -")).out;
    // The firmware's distance table: 10 to the node itself, 21 to the other.
    if (spec_.cpuNodes.size() == 2) {
        EXPECT_NE(xml.find(">10 21 21 10 <"), std::string::npos) << "NUMA distances";
    }
    // Each node's CPUs, paired into cores by their thread siblings: hwloc-calc
    // names every CPU by its core and its rank within that core.
    std::map<int, std::vector<unsigned>> nodeCpus;
    std::string coreThreads;
    unsigned core = 0;
    for (const vhost::CpuNodeSpec& node : spec_.cpuNodes) {
        const std::vector<unsigned> nodeList = vhost::ParseCpuList(node.cpuList);
        nodeCpus[static_cast<int>(node.nodeId)] = HwlocCpus("node:" + std::to_string(node.nodeId));
        EXPECT_EQ(nodeCpus[static_cast<int>(node.nodeId)], nodeList) << "node " << node.nodeId;
        for (size_t i = 0; i < nodeList.size() / node.threadsPerCore; ++i, ++core) {
            for (unsigned thread = 0; thread < node.threadsPerCore; ++thread) {
                coreThreads += " Core:" + std::to_string(core) + ".PU:" + std::to_string(thread);
            }
        }
    }
    if (!coreThreads.empty()) {
        EXPECT_EQ(MustRun(Hwloc(Root(), "hwloc-calc -H core.pu all")).out, coreThreads.substr(1) + "\n");
    }
    // hwloc-info lists the device, then its bridges from the device outwards,
    // then the CPU-side objects (host bridges have no bus id).
    for (const DeviceSpec& device : spec_.devices) {
        const std::string ancestors =
            MustRun(Hwloc(Root(), "hwloc-info --whole-io --ancestors pci=" + device.busId)).out;
        std::vector<std::string> busIds;
        std::istringstream lines(ancestors);
        for (std::string line; std::getline(lines, line);) {
            if (line.starts_with(" attr PCI bus id = ")) busIds.insert(busIds.begin(), line.substr(19));
        }
        ASSERT_FALSE(busIds.empty()) << device.busId << " not found by hwloc";
        EXPECT_EQ(busIds.back(), device.busId);
        busIds.pop_back();
        EXPECT_EQ(busIds, device.bridges) << device.busId;
        if (device.numaNode >= 0) {
            EXPECT_EQ(HwlocCpus("pci=" + device.busId), vhost::ParseCpuList(device.localCpuList)) << device.busId;
            EXPECT_EQ(nodeCpus[device.numaNode], vhost::ParseCpuList(device.localCpuList)) << device.busId;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(ShippedProfiles, RealTools, ::testing::ValuesIn(test::ShippedProfiles()),
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
