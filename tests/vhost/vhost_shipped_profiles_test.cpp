// Every shipped profile must build a tree that the library can walk: links
// that stay inside the root, and the files discovery reads.
#include <filesystem>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "vhost/dk_virtual_host.h"

namespace dksml::vhost {
namespace {

namespace fs = std::filesystem;

std::set<std::string> ShippedProfiles() {
    std::set<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(ProfileDirectory())) {
        if (entry.path().extension() == ".json") names.insert(entry.path().stem().string());
    }
    return names;
}

bool IsInside(const fs::path& path, const fs::path& root) {
    const std::string resolved = fs::canonical(path).string();
    const std::string base = fs::canonical(root).string() + "/";
    return resolved.rfind(base, 0) == 0;
}

TEST(ShippedProfiles, TheFourProfilesAreShipped) {
    const std::set<std::string> names = ShippedProfiles();
    for (const char* name : {"server", "guest", "no-driver", "empty"}) EXPECT_TRUE(names.contains(name)) << name;
}

class EveryProfile : public testing::TestWithParam<std::string> {};

TEST_P(EveryProfile, WritesATreeWhoseLinksResolveInsideTheRoot) {
    const ScopedHost host(GetParam());
    const fs::path devices = host.Path("/sys/bus/pci/devices");
    ASSERT_TRUE(fs::is_directory(devices));
    size_t links = 0;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(host.Root())) {
        if (!entry.is_symlink()) continue;
        ++links;
        EXPECT_TRUE(fs::read_symlink(entry.path()).is_relative()) << entry.path();
        ASSERT_TRUE(fs::exists(entry.path())) << "dangling link " << entry.path();
        EXPECT_TRUE(IsInside(entry.path(), host.Root())) << entry.path();
    }
    EXPECT_GT(links, 0u);
}

TEST_P(EveryProfile, EveryPciFunctionHasItsIdentityFiles) {
    const ScopedHost host(GetParam());
    for (const fs::directory_entry& entry : fs::directory_iterator(host.Path("/sys/bus/pci/devices"))) {
        const std::string vendor = host.ReadFile("/sys/bus/pci/devices/" + entry.path().filename().string() + "/vendor");
        EXPECT_EQ(vendor.size(), 7u) << entry.path() << " vendor \"" << vendor << "\"";
        EXPECT_EQ(vendor.rfind("0x", 0), 0u);
        EXPECT_EQ(vendor.back(), '\n');
    }
}

INSTANTIATE_TEST_SUITE_P(Shipped, EveryProfile, testing::ValuesIn(ShippedProfiles()),
                         [](const testing::TestParamInfo<std::string>& param) {
                             std::string name = param.param;
                             for (char& c : name) c = std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
                             return name;
                         });

TEST(ShippedProfiles, DriverlessHostsHaveNoDriverFiles) {
    for (const char* name : {"no-driver", "empty"}) {
        const ScopedHost host(name);
        EXPECT_EQ(host.ReadFile("/proc/modules").find("dravik"), std::string::npos) << name;
        EXPECT_FALSE(fs::exists(host.Path("/sys/class/dravik"))) << name;
        EXPECT_FALSE(fs::exists(host.Path("/sys/devices/virtual/dkcd"))) << name;
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(host.Path("/sys/devices"))) {
            EXPECT_NE(entry.path().filename(), "smi") << entry.path();
        }
    }
}

TEST(ShippedProfiles, NoDriverHostShowsItsGpusUnbound) {
    const ScopedHost host("no-driver");
    for (const char* busId : {"0000:3b:00.0", "0000:5e:00.0"}) {
        const std::string dir = std::string("/sys/bus/pci/devices/") + busId;
        EXPECT_EQ(host.ReadFile(dir + "/vendor"), "0x1e27\n");
        EXPECT_FALSE(fs::exists(fs::symlink_status(host.Path(dir + "/driver")))) << busId;
    }
}

TEST(ShippedProfiles, EmptyHostHasNoMakerFunction) {
    const ScopedHost host("empty");
    for (const fs::directory_entry& entry : fs::directory_iterator(host.Path("/sys/bus/pci/devices"))) {
        const std::string vendor = host.ReadFile("/sys/bus/pci/devices/" + entry.path().filename().string() + "/vendor");
        EXPECT_NE(vendor, "0x1e27\n");
        EXPECT_NE(vendor, "0x1e28\n");
    }
}

TEST(ShippedProfiles, GuestSeesOnlyVirtualFunctions) {
    const ScopedHost host("guest");
    int virtualFunctions = 0;
    for (const fs::directory_entry& entry : fs::directory_iterator(host.Path("/sys/bus/pci/devices"))) {
        const fs::path driver = entry.path() / "driver";
        if (host.ReadFile("/sys/bus/pci/devices/" + entry.path().filename().string() + "/vendor") != "0x1e27\n") continue;
        ASSERT_TRUE(fs::exists(driver));
        EXPECT_EQ(fs::canonical(driver).filename(), "DKGVM");
        EXPECT_TRUE(fs::exists(entry.path() / "smi/pcipowerstate"));
        ++virtualFunctions;
    }
    EXPECT_EQ(virtualFunctions, 2);
    EXPECT_EQ(host.ReadFile("/sys/bus/pci/devices/0000:00:05.0/smi/showvmtype"), "guest\n");
}

}  // namespace
}  // namespace dksml::vhost
