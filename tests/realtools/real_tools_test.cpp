// The standard Linux tools (pciutils' lspci, hwloc's lstopo-no-graphics) see
// every shipped profile as the profile describes it: lspci draws the bridges,
// ids and links; hwloc the bridges, NUMA nodes, cores and CPU sets. Skips only
// when the tools are not installed.
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
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
#include "support/dk_shipped_profiles.h"
#include "vhost/dk_virtual_host.h"
#include "vhost/vhost_cpu_topology.h"
#include "vhost/vhost_pcie_link.h"
#include "vhost/vhost_profile.h"

namespace dksml::realtools {
namespace {

namespace fs = std::filesystem;
using vhost::DeviceSpec;
using vhost::HostSpec;

struct ToolRun {
    int status = -1;
    std::string out;
    std::vector<std::string> errorLines;  // stderr, minus notes about the build machine itself
};

// One hwloc object of an XML export with its ancestors, outermost first.
struct HwlocObject {
    std::string type;
    std::string busId;   // pci_busid of PCI devices and bridges
    std::string cpuset;  // as hwloc writes it: "0x0000ffff,0xffffffff"
    int osIndex = -1;
    std::vector<const HwlocObject*> ancestors;
};

// lspci -v looks up kernel modules of the build machine through libkmod; on
// a container without /lib/modules it says so. That note is about the
// machine running the test, not about the tree under test.
bool IsBuildMachineNote(const std::string& line) {
    return line.find("Unable to load libkmod resources") != std::string::npos;
}

std::string Attribute(const std::string& tag, const std::string& name) {
    const std::string key = " " + name + "=\"";
    const size_t at = tag.find(key);
    if (at == std::string::npos) return "";
    const size_t start = at + key.size();
    return tag.substr(start, tag.find('"', start) - start);
}

// Runs `command` through the shell with stdout and stderr captured apart.
ToolRun RunTool(const std::string& command) {
    char errTemplate[] = "/tmp/dksml-tool-stderr-XXXXXX";
    const int errFd = mkstemp(errTemplate);
    ToolRun run;
    if (errFd < 0) return run;
    close(errFd);
    FILE* pipe = popen((command + " 2>" + errTemplate).c_str(), "r");
    if (pipe != nullptr) {
        char buffer[4096];
        size_t got = 0;
        while ((got = fread(buffer, 1, sizeof buffer, pipe)) > 0) run.out.append(buffer, got);
        const int status = pclose(pipe);
        run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    std::istringstream errors(test::ReadWholeFile(errTemplate));
    for (std::string line; std::getline(errors, line);) {
        if (!line.empty() && !IsBuildMachineNote(line)) run.errorLines.push_back(line);
    }
    std::remove(errTemplate);
    return run;
}

// Empty when `tool` is on PATH, else the reason a test skips.
std::string MissingTool(const std::string& tool) {
    if (RunTool("command -v " + tool).status == 0) return "";
    return tool + " is not installed (scripts/install-deps.sh installs pciutils and hwloc-nox)";
}

std::string Lspci(const std::filesystem::path& root, const std::string& options) {
    return "lspci -A linux-sysfs -O sysfs.path=" + (root / "sys/bus/pci").string() + " " + options;
}

// hwloc with the virtual host as its file-system root. The x86 backend is
// left out: it would add the build machine's own caches from cpuid.
std::string Lstopo(const std::filesystem::path& root, const std::string& options) {
    return "HWLOC_COMPONENTS=-x86 HWLOC_FSROOT=" + root.string() + " lstopo-no-graphics " + options;
}

// The objects of an XML export, each with its ancestors, outermost first.
std::vector<HwlocObject> ParseHwlocXml(const std::string& xml) {
    // Two passes: first collect, then link ancestors (the vector must not move).
    struct Raw {
        HwlocObject object;
        std::vector<size_t> ancestors;
    };
    std::vector<Raw> raw;
    std::vector<size_t> open;
    for (size_t at = xml.find('<'); at != std::string::npos; at = xml.find('<', at + 1)) {
        if (xml.compare(at, 9, "</object>") == 0) {
            if (!open.empty()) open.pop_back();
            continue;
        }
        if (xml.compare(at, 8, "<object ") != 0) continue;
        const std::string tag = xml.substr(at, xml.find('>', at) - at + 1);
        Raw entry;
        entry.object.type = Attribute(tag, "type");
        entry.object.busId = Attribute(tag, "pci_busid");
        entry.object.cpuset = Attribute(tag, "cpuset");
        const std::string osIndex = Attribute(tag, "os_index");
        entry.object.osIndex = osIndex.empty() ? -1 : std::stoi(osIndex);
        entry.ancestors = open;
        raw.push_back(entry);
        if (tag.size() < 2 || tag[tag.size() - 2] != '/') open.push_back(raw.size() - 1);
    }
    std::vector<HwlocObject> objects;
    objects.reserve(raw.size());
    for (const Raw& entry : raw) objects.push_back(entry.object);
    for (size_t i = 0; i < raw.size(); ++i) {
        for (const size_t ancestor : raw[i].ancestors) objects[i].ancestors.push_back(&objects[ancestor]);
    }
    return objects;
}

// "0x0000000f,0xffffffff" to CPU numbers, ascending.
std::vector<unsigned> HwlocSetCpus(const std::string& set) {
    std::vector<std::string> words;
    std::istringstream in(set);
    for (std::string word; std::getline(in, word, ',');) words.push_back(word);
    std::vector<unsigned> cpus;
    for (size_t i = 0; i < words.size(); ++i) {
        const unsigned long value = std::strtoul(words[i].c_str(), nullptr, 16);
        const unsigned base = static_cast<unsigned>((words.size() - 1 - i) * 32);
        for (unsigned bit = 0; bit < 32; ++bit) {
            if (value & (1ul << bit)) cpus.push_back(base + bit);
        }
    }
    std::sort(cpus.begin(), cpus.end());
    return cpus;
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
            << path << " " << ids << " not in\n"
            << paths.out;

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
    const std::string xml = MustRun(Lstopo(Root(), "--whole-io --of xml -")).out;
    const std::vector<HwlocObject> objects = ParseHwlocXml(xml);
    // The firmware's distance table: 10 to the node itself, 21 to the other.
    if (spec_.cpuNodes.size() == 2) {
        EXPECT_NE(xml.find(">10 21 21 10 <"), std::string::npos) << "NUMA distances";
    }
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
