// Profiles build edge cases declaratively: attribute texts per device and per
// die, omitted attributes, arbitrary extra files and PCIe links.
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "vhost/dk_virtual_host.h"

namespace dksml::vhost {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

const std::string c_dir = "/sys/bus/pci/devices/0000:3b:00.0";

json OneGpu(json device) {
    device["bus_id"] = "0000:3b:00.0";
    device["model"] = "DKK6-A";
    return {{"devices", json::array({device})}};
}

// A die's text beats the device's on that die only; null leaves the file out;
// names the builder does not know are written too.
TEST(ProfileOverrides, DeviceAndDieAttributes) {
    const ScopedHost host(OneGpu({
        {"attributes", {{"showtemp", "hotspot: 70\n"}, {"pcipowerstate", nullptr}, {"showhbmtemp", "hbm0: 55\n"}}},
        {"dies",
         json::array({json::object(), {{"attributes", {{"showtemp", "hotspot: 90\n"}, {"fan_ctrl", nullptr}}}}})},
    }));
    EXPECT_EQ(host.ReadFile(c_dir + "/smi/showtemp"), "hotspot: 70\n");
    EXPECT_EQ(host.ReadFile(c_dir + "/smi1/showtemp"), "hotspot: 90\n");
    EXPECT_FALSE(fs::exists(host.Path(c_dir + "/smi/pcipowerstate")));
    EXPECT_FALSE(fs::exists(host.Path(c_dir + "/smi1/pcipowerstate")));
    EXPECT_TRUE(fs::exists(host.Path(c_dir + "/smi/fan_ctrl")));
    EXPECT_FALSE(fs::exists(host.Path(c_dir + "/smi1/fan_ctrl")));
    EXPECT_TRUE(fs::exists(host.Path(c_dir + "/smi/showvendorid")));
    EXPECT_EQ(host.ReadFile(c_dir + "/smi/showhbmtemp"), "hbm0: 55\n");
}

TEST(ProfileOverrides, ExtraFilesOnTheHostAndInTheDeviceDirectory) {
    json profile = OneGpu({{"files", {{"sgpu/available_devcnt", "16\n"}, {"model", nullptr}}}});
    profile["files"] = {{"/opt/smi/etc/chipname", "DKK6-A Custom\n"}, {"/proc/modules", nullptr}};
    const ScopedHost host(profile);
    EXPECT_EQ(host.ReadFile("/opt/smi/etc/chipname"), "DKK6-A Custom\n");
    EXPECT_FALSE(fs::exists(host.Path("/proc/modules")));
    EXPECT_EQ(host.ReadFile(c_dir + "/sgpu/available_devcnt"), "16\n");
    EXPECT_FALSE(fs::exists(host.Path(c_dir + "/model")));
}

TEST(ProfileOverrides, LayoutNodeCanBeLeftOut) {
    const ScopedHost host(OneGpu({{"layout_node", false}}));
    EXPECT_TRUE(fs::is_empty(host.Path("/sys/class/dravik/dkcd/layout/nodes")));
    EXPECT_TRUE(fs::exists(host.Path(c_dir + "/smi/pcipowerstate")));
}

TEST(ProfileOverrides, LinksReachTheLinkFilesOfFunctionsAndBridges) {
    json profile = LoadProfile("empty");
    profile["devices"][2]["pcie"] = {{"max_gen", 3}, {"max_width", 8}, {"width", 4}};
    profile["bridge_links"] = {{"0000:00:01.0", {{"max_gen", 4}, {"gen", 2}}}};
    const ScopedHost host(profile);
    const std::string nic = "/sys/bus/pci/devices/0000:01:00.0/";
    EXPECT_EQ(host.ReadFile(nic + "max_link_speed"), "8.0 GT/s PCIe\n");
    EXPECT_EQ(host.ReadFile(nic + "max_link_width"), "8\n");
    EXPECT_EQ(host.ReadFile(nic + "current_link_speed"), "8.0 GT/s PCIe\n");
    EXPECT_EQ(host.ReadFile(nic + "current_link_width"), "4\n");
    const std::string port = "/sys/bus/pci/devices/0000:00:01.0/";
    EXPECT_EQ(host.ReadFile(port + "max_link_speed"), "16.0 GT/s PCIe\n");
    EXPECT_EQ(host.ReadFile(port + "current_link_speed"), "5.0 GT/s PCIe\n");
    EXPECT_EQ(host.ReadFile(port + "current_link_width"), "16\n");
}

}  // namespace
}  // namespace dksml::vhost
