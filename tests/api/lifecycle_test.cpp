// Initialisation on a machine without any GPU.
#include <gtest/gtest.h>

#include "api_host.h"

namespace dksml::test {
namespace {

class EmptyHostTest : public ::testing::Test {
protected:
    void SetUp() override { host = MakeHost("empty"); }
    std::unique_ptr<vhost::ScopedHost> host;
};

TEST_F(EmptyHostTest, InitFindsNoDeviceAndCountsStayZero) {
    EXPECT_EQ(dkSmlInit(), DK_SML_ERROR_NO_DEVICE);
    EXPECT_EQ(dkSmlGetDeviceCount(), 0u);
    EXPECT_EQ(dkSmlGetPfDeviceCount(), 0u);
}

// A failed discovery leaves the library uninitialised: the next call retries
// instead of answering 0 from a remembered state.
TEST_F(EmptyHostTest, EveryInitRetriesAfterAFailedDiscovery) {
    EXPECT_EQ(dkSmlInit(), DK_SML_ERROR_NO_DEVICE);
    EXPECT_EQ(dkSmlInit(), DK_SML_ERROR_NO_DEVICE);
    EXPECT_EQ(dkSmlInitWithFlags(7), DK_SML_ERROR_NO_DEVICE);
}

TEST_F(EmptyHostTest, CompatInitAndShutdownAlwaysSucceed) {
    EXPECT_EQ(dkSmlExInit(), DK_SML_EX_SUCCESS);
    EXPECT_EQ(dkSmlExShutdown(), DK_SML_EX_SUCCESS);
    EXPECT_EQ(dkSmlExShutdown(), DK_SML_EX_SUCCESS);
}

TEST_F(EmptyHostTest, CompatCountIsZeroAndNoHandleExists) {
    uint32_t count = 77;
    EXPECT_EQ(dkSmlExDeviceGetCount(&count), DK_SML_EX_SUCCESS);
    EXPECT_EQ(count, 0u);
    count = 77;
    EXPECT_EQ(dkSmlExVornDeviceGetCount(&count), DK_SML_EX_SUCCESS);
    EXPECT_EQ(count, 0u);
    DkSmlExDevice handle = nullptr;
    EXPECT_EQ(dkSmlExGetDeviceHandleByIndex(0, &handle), DK_SML_EX_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(dkSmlExGetDeviceHandleByPciBusId("0000:00:17.0", &handle), DK_SML_EX_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(dkSmlExDeviceGetHandleByUUID("GPU-0", &handle), DK_SML_EX_ERROR_INVALID_ARGUMENT);
}

TEST_F(EmptyHostTest, SliceCountOfAnUnknownDeviceIsZero) {
    for (uint32_t index : c_absentIndices) EXPECT_EQ(dkSmlGetSgpuCount(index), 0u) << index;
}

TEST_F(EmptyHostTest, LibraryVersionNeedsRoomForItsTerminator) {
    char text[16] = {};
    EXPECT_EQ(dkSmlExSystemGetDksmlVersion(nullptr, sizeof(text)), DK_SML_EX_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(dkSmlExSystemGetDksmlVersion(text, 5), DK_SML_EX_ERROR_INSUFFICIENT_SIZE);
    EXPECT_EQ(dkSmlExSystemGetDksmlVersion(text, 6), DK_SML_EX_SUCCESS);
    EXPECT_STREQ(text, "2.3.1");
}

TEST_F(EmptyHostTest, SystemQueriesRejectNullOutputs) {
    EXPECT_EQ(dkSmlExSystemGetDriverVersion(nullptr, 64), DK_SML_EX_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(dkSmlExSystemGetVornDriverVersion(nullptr), DK_SML_EX_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(dkSmlExDeviceGetCount(nullptr), DK_SML_EX_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(dkSmlExGetDeviceHandleByIndex(0, nullptr), DK_SML_EX_ERROR_INVALID_ARGUMENT);
    DkSmlExDevice handle = nullptr;
    EXPECT_EQ(dkSmlExDeviceGetHandleByUUID(nullptr, &handle), DK_SML_EX_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(dkSmlExGetDeviceHandleByPciBusId(nullptr, &handle), DK_SML_EX_ERROR_INVALID_ARGUMENT);
}

// Without a device there is no driver to ask.
TEST_F(EmptyHostTest, DriverVersionWithoutDeviceIsAnInternalError) {
    char text[64] = {};
    EXPECT_EQ(dkSmlExSystemGetDriverVersion(text, sizeof(text)), DK_SML_EX_ERROR_UNKNOWN);
}

}  // namespace
}  // namespace dksml::test
