// Device-object exports and the die check on the "server" host.
#include <gtest/gtest.h>

#include "api_host.h"

namespace dksml::test {
namespace {

using namespace std::string_view_literals;

class NativeServerTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { host = MakeHost("server"sv).release(); }
    static void TearDownTestSuite() {
        delete host;
        host = nullptr;
    }
    void SetUp() override { ASSERT_GT(dkSmlGetDeviceCount(), 0u) << "discovery found no device on the server host"; }

    static uint32_t DiesOf(uint32_t index) {
        uint32_t dies = 0;
        EXPECT_EQ(dkSmlGetDeviceDieCount(index, &dies), DK_SML_SUCCESS) << index;
        return dies;
    }

    static inline vhost::ScopedHost* host = nullptr;
};

TEST_F(NativeServerTest, DeviceInfoCarriesTheCallersIndex) {
    for (uint32_t index = 0; index < dkSmlGetDeviceCount(); ++index) {
        DkSmlDeviceInfo info{};
        info.deviceIndex = 4242;
        ASSERT_EQ(dkSmlGetDeviceInfo(index, &info), DK_SML_SUCCESS) << index;
        EXPECT_EQ(info.deviceIndex, index);
    }
}

// Die forms check the die against the device before any service runs.
TEST_F(NativeServerTest, DieBeyondTheDeviceIsInvalid) {
    for (uint32_t index = 0; index < dkSmlGetDeviceCount(); ++index) {
        const uint32_t dies = DiesOf(index);
        DkSmlMemoryInfo memory{};
        int32_t value = 0;
        DkSmlPmbusInfo pmbus{};
        EXPECT_EQ(dkSmlGetDieMemoryInfo(index, dies, &memory), DK_SML_ERROR_INVALID_DIE_ID) << index;
        EXPECT_EQ(dkSmlGetDieIpUsage(index, dies, DK_SML_USAGE_IP_DLA, &value), DK_SML_ERROR_INVALID_DIE_ID);
        EXPECT_EQ(dkSmlGetDiePmbusInfo(index, 0xFFFFFFFFu, DK_SML_PMBUS_UNIT_SOC, &pmbus), DK_SML_ERROR_INVALID_DIE_ID);
    }
}

// The count is capacity in, needed number out; DK_SML_ERROR_INSUFFICIENT_SIZE
// when the array is short.
TEST_F(NativeServerTest, VirtualFunctionListFollowsTheCountRule) {
    for (uint32_t index = 0; index < dkSmlGetDeviceCount(); ++index) {
        uint32_t vfs[8] = {};
        uint32_t count = 8;
        ASSERT_EQ(dkSmlGetVirtualDevicesByPhysicalId(index, &count, vfs), DK_SML_SUCCESS) << index;
        if (count == 0) continue;
        for (uint32_t i = 0; i < count; ++i) EXPECT_GE(vfs[i], DK_SML_FIRST_VF_INDEX);
        uint32_t shortCount = count - 1;
        uint32_t guard[8] = {7, 7, 7, 7, 7, 7, 7, 7};
        EXPECT_EQ(dkSmlGetVirtualDevicesByPhysicalId(index, &shortCount, guard), DK_SML_ERROR_INSUFFICIENT_SIZE);
        EXPECT_EQ(shortCount, count);
        return;
    }
    GTEST_SKIP() << "no physical function with virtual functions on this host";
}

// The virtual functions are the device map minus the physical devices.
TEST_F(NativeServerTest, PfCountIsTheNumberOfVirtualFunctions) {
    uint32_t vfs = 0;
    for (uint32_t index = 0; index < dkSmlGetDeviceCount(); ++index) {
        uint32_t list[8] = {};
        uint32_t count = 8;
        if (dkSmlGetVirtualDevicesByPhysicalId(index, &count, list) == DK_SML_SUCCESS) vfs += count;
    }
    EXPECT_EQ(dkSmlGetPfDeviceCount(), vfs);
}

TEST_F(NativeServerTest, SecondInitKeepsTheDevices) {
    const uint32_t before = dkSmlGetDeviceCount();
    EXPECT_EQ(dkSmlInit(), DK_SML_SUCCESS);
    EXPECT_EQ(dkSmlGetDeviceCount(), before);
}

}  // namespace
}  // namespace dksml::test
