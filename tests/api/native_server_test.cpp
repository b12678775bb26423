// The die check of the die forms on the "server" host. Numbering, the
// virtual-function list and rediscovery are in the discovery tests.
#include <gtest/gtest.h>

#include "api_host.h"

namespace dksml::test {
namespace {

using namespace std::string_view_literals;

// Die forms check the die against the device before any service runs.
TEST(NativeServerTest, DieBeyondTheDeviceIsInvalid) {
    auto host = MakeHost("server"sv);
    ASSERT_GT(dkSmlGetDeviceCount(), 0u) << "discovery found no device on the server host";
    for (uint32_t index = 0; index < dkSmlGetDeviceCount(); ++index) {
        uint32_t dies = 0;
        ASSERT_EQ(dkSmlGetDeviceDieCount(index, &dies), DK_SML_SUCCESS) << index;
        DkSmlMemoryInfo memory{};
        int32_t value = 0;
        DkSmlPmbusInfo pmbus{};
        EXPECT_EQ(dkSmlGetDieMemoryInfo(index, dies, &memory), DK_SML_ERROR_INVALID_DIE_ID) << index;
        EXPECT_EQ(dkSmlGetDieIpUsage(index, dies, DK_SML_USAGE_IP_DLA, &value), DK_SML_ERROR_INVALID_DIE_ID);
        EXPECT_EQ(dkSmlGetDiePmbusInfo(index, 0xFFFFFFFFu, DK_SML_PMBUS_UNIT_SOC, &pmbus), DK_SML_ERROR_INVALID_DIE_ID);
    }
}

}  // namespace
}  // namespace dksml::test
