// The compatibility family's system queries on a machine without any GPU.
// The native family's failed discovery is in the discovery tests.
#include <gtest/gtest.h>

#include "api_host.h"

namespace dksml::test {
namespace {

class EmptyHostTest : public ::testing::Test {
protected:
    void SetUp() override { host = MakeHost("empty"); }
    std::unique_ptr<vhost::ScopedHost> host;
};

// The C client in tests/abi checks init, shutdown, the count and the index
// lookup on an empty host.
TEST_F(EmptyHostTest, CompatFamilyHasNoDeviceAndNoHandle) {
    uint32_t count = 77;
    EXPECT_EQ(dkSmlExVornDeviceGetCount(&count), DK_SML_EX_SUCCESS);
    EXPECT_EQ(count, 0u);
    DkSmlExDevice handle = nullptr;
    EXPECT_EQ(dkSmlExGetDeviceHandleByPciBusId("0000:00:17.0", &handle), DK_SML_EX_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(dkSmlExDeviceGetHandleByUUID("GPU-0", &handle), DK_SML_EX_ERROR_INVALID_ARGUMENT);
    for (uint32_t index : c_absentIndices) EXPECT_EQ(dkSmlGetSgpuCount(index), 0u) << index;
    // Without a device there is no driver to ask.
    char text[64] = {};
    EXPECT_EQ(dkSmlExSystemGetDriverVersion(text, sizeof(text)), DK_SML_EX_ERROR_UNKNOWN);
    EXPECT_EQ(dkSmlExShutdown(), DK_SML_EX_SUCCESS);  // even without an init
}

TEST_F(EmptyHostTest, SystemQueriesRejectNullOutputsAndShortBuffers) {
    char text[16] = {};
    EXPECT_EQ(dkSmlExSystemGetDksmlVersion(nullptr, sizeof(text)), DK_SML_EX_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(dkSmlExSystemGetDksmlVersion(text, 5), DK_SML_EX_ERROR_INSUFFICIENT_SIZE);
    EXPECT_EQ(dkSmlExSystemGetDksmlVersion(text, 6), DK_SML_EX_SUCCESS);
    EXPECT_STREQ(text, "2.3.1");
    EXPECT_EQ(dkSmlExSystemGetDriverVersion(nullptr, 64), DK_SML_EX_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(dkSmlExSystemGetVornDriverVersion(nullptr), DK_SML_EX_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(dkSmlExDeviceGetCount(nullptr), DK_SML_EX_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(dkSmlExGetDeviceHandleByIndex(0, nullptr), DK_SML_EX_ERROR_INVALID_ARGUMENT);
    DkSmlExDevice handle = nullptr;
    EXPECT_EQ(dkSmlExDeviceGetHandleByUUID(nullptr, &handle), DK_SML_EX_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(dkSmlExGetDeviceHandleByPciBusId(nullptr, &handle), DK_SML_EX_ERROR_INVALID_ARGUMENT);
}

}  // namespace
}  // namespace dksml::test
