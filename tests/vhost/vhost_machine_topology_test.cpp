// The PCI link files, bridges and CPU/NUMA topology the virtual host writes
// agree with the profile (the real tools' view is in tests/realtools).
#include <string>

#include <gtest/gtest.h>

#include "vhost/dk_virtual_host.h"

namespace dksml::vhost {
namespace {

const std::string c_devices = "/sys/bus/pci/devices/";

TEST(MachineTopology, ServerCpusPairThreadsAndMatchTheirNodes) {
    const ScopedHost host("server");
    EXPECT_EQ(host.ReadFile("/sys/devices/system/cpu/online"), "0-127\n");
    EXPECT_EQ(host.ReadFile("/sys/devices/system/node/online"), "0-1\n");
    EXPECT_EQ(host.ReadFile("/sys/devices/system/cpu/cpu64/topology/thread_siblings_list"), "0,64\n");
    EXPECT_EQ(host.ReadFile("/sys/devices/system/cpu/cpu64/topology/core_id"),
              host.ReadFile("/sys/devices/system/cpu/cpu0/topology/core_id"));
    EXPECT_EQ(host.ReadFile("/sys/devices/system/cpu/cpu96/topology/physical_package_id"), "1\n");
    EXPECT_EQ(host.ReadFile("/sys/devices/system/node/node1/cpulist"), "32-63,96-127\n");
    EXPECT_EQ(host.ReadFile("/sys/devices/system/node/node1/cpumap"), "ffffffff,00000000,ffffffff,00000000\n");
    EXPECT_EQ(host.ReadFile("/sys/devices/system/node/node0/distance"), "10 21\n");
    // Every function's locality is one of the nodes.
    EXPECT_EQ(host.ReadFile(c_devices + "0000:af:00.0/local_cpus"), host.ReadFile("/sys/devices/system/node/node1/cpumap"));
    EXPECT_EQ(host.ReadFile(c_devices + "0000:1b:00.0/local_cpulist"), host.ReadFile("/sys/devices/system/node/node0/cpulist"));
}

TEST(MachineTopology, BridgesCarryTheBusNumbersOfTheirNesting) {
    const ScopedHost host("server");
    EXPECT_EQ(host.ReadFile(c_devices + "0000:17:01.0/secondary_bus_number"), "24\n");    // 0x18
    EXPECT_EQ(host.ReadFile(c_devices + "0000:17:01.0/subordinate_bus_number"), "30\n");  // 0x1e
    EXPECT_EQ(host.ReadFile(c_devices + "0000:19:10.0/secondary_bus_number"), "28\n");    // 0x1c
    EXPECT_EQ(host.ReadFile(c_devices + "0000:19:10.0/numa_node"), "0\n");
    EXPECT_EQ(host.ReadFile(c_devices + "0000:1e:00.0/config").size(), 4096u);  // SR-IOV: extended space
    EXPECT_EQ(host.ReadFile(c_devices + "0000:1e:00.1/config").size(), 256u);   // a VF has none
    EXPECT_EQ(host.ReadFile(c_devices + "0000:31:00.0/config").size(), 256u);
}

TEST(MachineTopology, ProfileLinksReachTheLinkFiles) {
    nlohmann::json profile = LoadProfile("empty");
    profile["devices"][2]["pcie"] = {{"max_gen", 3}, {"max_width", 8}, {"width", 4}};
    profile["bridge_links"] = {{"0000:00:01.0", {{"max_gen", 4}, {"gen", 2}}}};
    const ScopedHost host(profile);
    const std::string nic = c_devices + "0000:01:00.0/";
    EXPECT_EQ(host.ReadFile(nic + "max_link_speed"), "8.0 GT/s PCIe\n");
    EXPECT_EQ(host.ReadFile(nic + "max_link_width"), "8\n");
    EXPECT_EQ(host.ReadFile(nic + "current_link_speed"), "8.0 GT/s PCIe\n");
    EXPECT_EQ(host.ReadFile(nic + "current_link_width"), "4\n");
    const std::string port = c_devices + "0000:00:01.0/";
    EXPECT_EQ(host.ReadFile(port + "max_link_speed"), "16.0 GT/s PCIe\n");
    EXPECT_EQ(host.ReadFile(port + "current_link_speed"), "5.0 GT/s PCIe\n");
    EXPECT_EQ(host.ReadFile(port + "current_link_width"), "16\n");
}

}  // namespace
}  // namespace dksml::vhost
