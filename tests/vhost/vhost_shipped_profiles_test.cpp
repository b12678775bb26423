// Every shipped profile must build a tree that the library can walk: links
// that stay inside the root, and the files discovery reads. What the library
// then sees on each profile is pinned by dksmi's golden transcripts
// (tests/dksmi/golden/).
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "support/dk_shipped_profiles.h"
#include "vhost/dk_virtual_host.h"

namespace dksml::vhost {
namespace {

namespace fs = std::filesystem;

bool IsInside(const fs::path& path, const fs::path& root) {
    const std::string resolved = fs::canonical(path).string();
    const std::string base = fs::canonical(root).string() + "/";
    return resolved.rfind(base, 0) == 0;
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

INSTANTIATE_TEST_SUITE_P(Shipped, EveryProfile, testing::ValuesIn(test::ShippedProfiles()),
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

}  // namespace
}  // namespace dksml::vhost
