// The compute-stack version through dlopen on hosts that carry each build of
// the runtime and SDK libraries.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include <nlohmann/json.hpp>

#include "api/api_host.h"
#include "driver/dk_read_session.h"

namespace dksml::test {
namespace {

// The runtime's answer first, the SDK's when the runtime is absent, lacks the
// symbol or fails, and a load error when neither answers.
TEST(ComputeStackTest, VersionOrFallback) {
    const struct {
        const char* runtime;
        const char* sdk;
        DkSmlReturn expected;
        const char* text;
        DkSmlExReturn exExpected;
    } cases[] = {
        {"present", "present", DK_SML_SUCCESS, "2.3.5.17", DK_SML_EX_SUCCESS},
        {"absent", "present", DK_SML_SUCCESS, "1.8.2", DK_SML_EX_SUCCESS},
        {"no_symbol", "present", DK_SML_SUCCESS, "1.8.2", DK_SML_EX_SUCCESS},
        {"failing", "absent", DK_SML_ERROR_LOAD_LIBRARY, "unknown", DK_SML_EX_ERROR_LIBRARY_NOT_FOUND},
        {"absent", "absent", DK_SML_ERROR_LOAD_LIBRARY, "unknown", DK_SML_EX_ERROR_LIBRARY_NOT_FOUND},
    };
    ::unsetenv("VORN_PATH");
    for (const auto& c : cases) {
        const nlohmann::json profile = {{"name", "stack"},
                                        {"devices", nlohmann::json::array()},
                                        {"compute_stack", {{"runtime", c.runtime}, {"sdk", c.sdk}}}};
        vhost::ScopedHost host(profile);
        (void)dkSmlInitWithFlags(1);
        char text[32];
        uint32_t size = sizeof text;
        EXPECT_EQ(dkSmlGetVornVersion(text, &size), c.expected) << c.runtime << "/" << c.sdk;
        EXPECT_STREQ(text, c.text) << c.runtime << "/" << c.sdk;
        uint32_t number = 7;
        EXPECT_EQ(dkSmlExSystemGetVornDriverVersion(&number), c.exExpected) << c.runtime << "/" << c.sdk;
    }
}

// VORN_PATH is used as given, outside the host root.
TEST(ComputeStackPathTest, VornPathOverridesTheDefault) {
    const nlohmann::json profile = {{"name", "stack"},
                                    {"devices", nlohmann::json::array()},
                                    {"compute_stack", {{"runtime", "present"}}}};
    vhost::ScopedHost host(profile);
    (void)dkSmlInitWithFlags(1);
    ::setenv("VORN_PATH", (host.Root() / "nowhere").c_str(), 1);
    char text[32];
    uint32_t size = sizeof text;
    EXPECT_EQ(dkSmlGetVornVersion(text, &size), DK_SML_ERROR_LOAD_LIBRARY);
    ::setenv("VORN_PATH", (host.Root() / "opt/vorn").c_str(), 1);
    size = sizeof text;
    EXPECT_EQ(dkSmlGetVornVersion(text, &size), DK_SML_SUCCESS);
    EXPECT_STREQ(text, "2.3.5.17");
    ::unsetenv("VORN_PATH");
}

// Within a read session the stack's answer is kept: a library removed after
// the first ask is not looked for again until the session ends.
TEST(ComputeStackPathTest, ReadSessionLoadsTheStackOncePerSession) {
    ::unsetenv("VORN_PATH");
    vhost::ScopedHost host("server");
    ASSERT_EQ(dkSmlInitWithFlags(1), DK_SML_SUCCESS);
    DkSmlVersion version{};
    {
        DkReadSession session;
        ASSERT_EQ(dkSmlGetDeviceDieVersion(0, 0, &version), DK_SML_SUCCESS);
        EXPECT_STREQ(version.vornVersion, "2.3.5.17");
        std::filesystem::remove(host.Root() / "opt/vorn/lib/libvrruntime.so");
        version = {};
        ASSERT_EQ(dkSmlGetDeviceDieVersion(0, 0, &version), DK_SML_SUCCESS);
        EXPECT_STREQ(version.vornVersion, "2.3.5.17");
    }
    EXPECT_EQ(dkSmlGetDeviceDieVersion(0, 0, &version), DK_SML_ERROR_LOAD_LIBRARY);
}

}  // namespace
}  // namespace dksml::test
