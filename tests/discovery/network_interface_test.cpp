// Network interfaces recorded next to the GPUs.
#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

#include "core/dk_system_manager.h"
#include "discovery_host.h"

namespace dksml::test {
namespace {

constexpr const char* c_nic = "0000:31:00.0";  // the server's 0x15b3 interface

// Sets (or, for null, unsets) the vendor the discovery looks for.
void SetNicVendor(const char* value) {
    if (value != nullptr) {
        setenv("DK_SMI_NIC_VENDOR", value, 1);
    } else {
        unsetenv("DK_SMI_NIC_VENDOR");
    }
}

uint32_t NiCountAfterDiscovery() {
    EXPECT_EQ(dkSmlInitWithFlags(1), DK_SML_SUCCESS);
    return DkSystemManager::GetInstance().GetTargetNiCount();
}

TEST(NetworkInterfaces, NeedTheConfiguredVendorAndRdma) {
    const struct {
        const char* vendorEnv;  // nullptr: unset
        const char* roceEnable;  // nullptr: no file
        uint32_t expected;
    } cases[] = {
        {"0x15b3", "1\n", 1},
        {"5555", "1\n", 1},       // the same id in decimal
        {"0x15b3", "0\n", 0},
        {"0x15b3", nullptr, 0},
        {"0x15b4", "1\n", 0},
        {nullptr, "1\n", 0},
        {"garbage", "1\n", 0},
    };
    vhost::ScopedHost host("server");
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.vendorEnv ? c.vendorEnv : "(unset)") + " / " + (c.roceEnable ? c.roceEnable : "-"));
        host.Remove(DevicePath(c_nic, "/roce_enable"));
        if (c.roceEnable != nullptr) host.WriteFile(DevicePath(c_nic, "/roce_enable"), c.roceEnable);
        SetNicVendor(c.vendorEnv);
        EXPECT_EQ(NiCountAfterDiscovery(), c.expected);
    }
    SetNicVendor(nullptr);
}

TEST(NetworkInterfaces, InfinibandPortsAndGpusWithInfiniband) {
    vhost::ScopedHost host("server");
    SetNicVendor("0x15b3");
    host.WriteFile(DevicePath(c_nic, "/infiniband/mlx5_0/ports"), "1\n");
    host.WriteFile(DevicePath("0000:1c:00.0", "/infiniband/dkib0/ports"), "1\n");
    host.WriteFile(DevicePath("0000:1e:00.0", "/infiniband/.keep"), "");
    host.Remove(DevicePath("0000:1e:00.0", "/infiniband/.keep"));  // an empty directory: no port
    ASSERT_EQ(NiCountAfterDiscovery(), 2u);
    const auto& list = DkSystemManager::GetInstance().GetNiNodeList();
    EXPECT_EQ(list[0].bdf, "0000:1c:00.0");
    EXPECT_EQ(list[1].bdf, c_nic);
    EXPECT_EQ(list[1].index, 1u);
    EXPECT_EQ(dkSmlGetDeviceCount(), 6u);  // still a GPU
    SetNicVendor(nullptr);
}

}  // namespace
}  // namespace dksml::test
