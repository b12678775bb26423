// The server profile is the machine most library tests run on; these are the
// facts they rely on.
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "vhost/dk_virtual_host.h"

namespace dksml::vhost {
namespace {

namespace fs = std::filesystem;

class ServerProfile : public testing::Test {
protected:
    static void SetUpTestSuite() { s_host = new ScopedHost("server"); }
    static void TearDownTestSuite() {
        delete s_host;
        s_host = nullptr;
    }

    static std::string Read(const std::string& hostPath) { return s_host->ReadFile(hostPath); }
    static std::string Device(const std::string& busId) { return "/sys/bus/pci/devices/" + busId; }
    static bool Exists(const std::string& hostPath) { return fs::exists(s_host->Path(hostPath)); }
    static std::string DriverOf(const std::string& busId) {
        const fs::path link = s_host->Path(Device(busId) + "/driver");
        return fs::exists(link) ? fs::canonical(link).filename().string() : "";
    }

    // Bus id of every layout node's "location", by node directory.
    static std::set<std::string> LayoutLocations() {
        std::set<std::string> locations;
        for (const auto& node : fs::directory_iterator(s_host->Path("/sys/class/dravik/dkcd/layout/nodes"))) {
            std::string location = Read("/sys/class/dravik/dkcd/layout/nodes/" + node.path().filename().string() + "/location");
            if (!location.empty()) locations.insert(location.substr(0, location.size() - 1));
        }
        return locations;
    }

    static ScopedHost* s_host;
};

ScopedHost* ServerProfile::s_host = nullptr;

bool IsMakerVendor(const std::string& vendor) { return vendor == "0x1e27\n" || vendor == "0x1e28\n"; }

TEST_F(ServerProfile, SixUsablePhysicalDevicesOneLimitedTwoVirtualFunctions) {
    const std::set<std::string> located = LayoutLocations();
    std::vector<std::string> usable, limited, virtualFunctions;
    for (const auto& entry : fs::directory_iterator(s_host->Path("/sys/bus/pci/devices"))) {
        const std::string busId = entry.path().filename().string();
        if (!IsMakerVendor(Read(Device(busId) + "/vendor"))) continue;
        if (DriverOf(busId) == "DKGVM") {
            virtualFunctions.push_back(busId);
            continue;
        }
        EXPECT_EQ(DriverOf(busId), "dkcd") << busId;
        const bool accessible = !Read(Device(busId) + "/smi/pcipowerstate").empty() &&
                                !Read(Device(busId) + "/smi/showvendorid").empty();
        (accessible && located.contains(busId) ? usable : limited).push_back(busId);
    }
    EXPECT_EQ(usable.size(), 6u);
    EXPECT_EQ(limited, std::vector<std::string>{"0000:d8:00.0"});
    EXPECT_EQ(virtualFunctions, (std::vector<std::string>{"0000:1e:00.1", "0000:1e:00.2"}));
}

TEST_F(ServerProfile, HostingFunctionListsItsVirtualFunctions) {
    const std::string gpuvf = Read(Device("0000:1e:00.0") + "/gpuvf");
    std::istringstream lines(gpuvf);
    std::vector<std::string> expected{"VF #0", "BusId: 0000:1e:00.1", "VF State: Active", "",
                                      "VF #1", "BusId: 0000:1e:00.2", "VF State: Active"};
    for (const std::string& want : expected) {
        std::string line;
        ASSERT_TRUE(std::getline(lines, line));
        EXPECT_EQ(line, want);
    }
    EXPECT_EQ(Read(Device("0000:1e:00.0") + "/sriov_numvfs"), "2\n");
    EXPECT_FALSE(Exists(Device("0000:1b:00.0") + "/gpuvf"));
}

TEST_F(ServerProfile, ModelVariations) {
    EXPECT_EQ(Read(Device("0000:1c:00.0") + "/vendor"), "0x1e28\n");
    EXPECT_TRUE(Exists(Device("0000:1b:00.0") + "/smi1"));
    EXPECT_FALSE(Exists(Device("0000:1c:00.0") + "/smi1"));
    EXPECT_NE(Read(Device("0000:1b:00.0") + "/smi1/showtopology").find("die_id: 1"), std::string::npos);

    const std::string tmp435 = Read(Device("0000:af:00.0") + "/smi/showtemp");
    EXPECT_NE(tmp435.find("tmp435_u2_remote: "), std::string::npos);
    EXPECT_EQ(tmp435.find("emclocal"), std::string::npos);

    EXPECT_TRUE(Exists(Device("0000:af:00.0") + "/smi/fan_ctrl"));
    EXPECT_FALSE(Exists(Device("0000:af:00.0") + "/smi1/fan_ctrl"));
}

TEST_F(ServerProfile, XpuDeviceReportsSixXpuClockValues) {
    std::istringstream lines(Read(Device("0000:b0:00.0") + "/smi/showclocks"));
    int xpuValues = -1;
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind("xpu clock:", 0) != 0) continue;
        std::istringstream values(line.substr(10));
        xpuValues = 0;
        for (int v; values >> v;) ++xpuValues;
    }
    EXPECT_EQ(xpuValues, 6);
}

TEST_F(ServerProfile, ReadingsDifferBetweenDies) {
    std::set<std::string> temperatures;
    size_t dies = 0;
    for (const char* busId : {"0000:1b:00.0", "0000:1c:00.0", "0000:1e:00.0", "0000:af:00.0", "0000:b0:00.0"}) {
        for (const char* smi : {"/smi/", "/smi1/"}) {
            const std::string text = Read(Device(busId) + smi + "showtemp");
            if (text.empty()) continue;
            ++dies;
            temperatures.insert(text);
        }
    }
    EXPECT_EQ(dies, 7u);
    EXPECT_EQ(temperatures.size(), dies);
}

TEST_F(ServerProfile, NumaPlacement) {
    EXPECT_EQ(Read(Device("0000:1b:00.0") + "/numa_node"), "0\n");
    EXPECT_EQ(Read(Device("0000:1b:00.0") + "/local_cpulist"), "0-31,64-95\n");
    EXPECT_EQ(Read(Device("0000:af:00.0") + "/numa_node"), "1\n");
    EXPECT_EQ(Read(Device("0000:af:00.0") + "/local_cpulist"), "32-63,96-127\n");
}

TEST_F(ServerProfile, LayoutHasCpuNodesAndEveryLinkKind) {
    for (const char* node : {"0", "1"}) {
        const std::string dir = std::string("/sys/class/dravik/dkcd/layout/nodes/") + node;
        EXPECT_EQ(Read(dir + "/gpu_id"), "0\n");
        EXPECT_EQ(Read(dir + "/type"), "cpu\n");
    }
    std::set<std::string> types;
    for (const auto& entry : fs::recursive_directory_iterator(s_host->Path("/sys/class/dravik/dkcd/layout/nodes"))) {
        if (entry.path().filename() != "properties" || entry.path().parent_path().parent_path().filename() == "nodes") {
            continue;
        }
        std::ifstream in(entry.path());
        for (std::string key, value; in >> key >> value;) {
            if (key == "type") types.insert(value);
        }
    }
    for (const char* type : {"3", "4", "101", "102", "103", "104", "105"}) EXPECT_TRUE(types.contains(type)) << type;
}

TEST_F(ServerProfile, DriverModuleAndRenderNodes) {
    EXPECT_NE(Read("/proc/modules").find("\ndravik "), std::string::npos);
    const fs::path card = fs::canonical(s_host->Path("/dev/dri/by-path/pci-0000:1c:00.0-card"));
    const fs::path render = fs::canonical(s_host->Path("/dev/dri/by-path/pci-0000:1c:00.0-render"));
    const int cardNumber = std::stoi(card.filename().string().substr(4));
    EXPECT_EQ(render.filename().string(), "renderD" + std::to_string(128 + cardNumber));
}

TEST_F(ServerProfile, OtherVendorsFunctionsArePresent) {
    EXPECT_EQ(Read(Device("0000:31:00.0") + "/vendor"), "0x15b3\n");
    EXPECT_EQ(DriverOf("0000:31:00.0"), "mlx5_core");
    EXPECT_FALSE(Exists(Device("0000:31:00.0") + "/smi"));
}

}  // namespace
}  // namespace dksml::vhost
