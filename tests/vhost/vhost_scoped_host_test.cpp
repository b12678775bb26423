#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "vhost/dk_virtual_host.h"

namespace dksml::vhost {
namespace {

namespace fs = std::filesystem;

// Saves and restores an environment variable around a test.
class EnvGuard {
public:
    explicit EnvGuard(const char* name) : m_name(name) {
        if (const char* value = std::getenv(name)) m_value = value, m_had = true;
    }
    ~EnvGuard() { m_had ? setenv(m_name, m_value.c_str(), 1) : unsetenv(m_name); }

private:
    const char* m_name;
    std::string m_value;
    bool m_had = false;
};

// Nested hosts point the root variable at themselves and restore the earlier
// value, or unset it when there was none, and remove their tree.
TEST(ScopedHost, PointsTheRootVariableAtItselfAndRestoresWhatWasThere) {
    EnvGuard guard("DK_SMI_FSROOT");
    unsetenv("DK_SMI_FSROOT");
    fs::path root;
    {
        const ScopedHost outer("empty");
        {
            const ScopedHost inner("guest");
            root = inner.Root();
            EXPECT_EQ(std::getenv("DK_SMI_FSROOT"), root.string());
            EXPECT_TRUE(fs::is_directory(root));
        }
        EXPECT_EQ(std::getenv("DK_SMI_FSROOT"), outer.Root().string());
        EXPECT_FALSE(fs::exists(root));
    }
    EXPECT_EQ(std::getenv("DK_SMI_FSROOT"), nullptr);
}

TEST(ScopedHost, AnInvalidProfileLeavesNoDirectoryAndNoVariable) {
    EnvGuard rootGuard("DK_SMI_FSROOT");
    EnvGuard tmpGuard("TMPDIR");
    unsetenv("DK_SMI_FSROOT");
    // A private temporary directory: others may be creating hosts meanwhile.
    const fs::path tmp = fs::temp_directory_path() / "dkvhost-private-tmp";
    fs::create_directories(tmp);
    setenv("TMPDIR", tmp.c_str(), 1);
    EXPECT_THROW(ScopedHost(nlohmann::json{{"devices", {{{"bus_id", "bad"}}}}}), std::runtime_error);
    EXPECT_EQ(std::getenv("DK_SMI_FSROOT"), nullptr);
    EXPECT_TRUE(fs::is_empty(tmp));
    fs::remove_all(tmp);
}

TEST(ProfileDirectory, EnvironmentOverrideWinsOverTheShippedProfiles) {
    EnvGuard guard("DKVHOST_PROFILE_DIR");
    unsetenv("DKVHOST_PROFILE_DIR");
    EXPECT_EQ(LoadProfile((ProfileDirectory() / "server.json").string())["name"], "server");
    const fs::path dir = fs::temp_directory_path() / "dkvhost-profiles-override";
    fs::create_directories(dir);
    std::ofstream(dir / "tiny.json") << R"({"name": "tiny"})";
    setenv("DKVHOST_PROFILE_DIR", dir.c_str(), 1);
    EXPECT_EQ(ProfileDirectory(), dir);
    EXPECT_EQ(LoadProfile("tiny")["name"], "tiny");
    fs::remove_all(dir);
}

}  // namespace
}  // namespace dksml::vhost
