// The clock, throttle, temperature and fan exports on the "server" virtual
// host: the argument checks and refusals (the readings themselves are in the
// golden dksmi transcripts).
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "dksml.h"
#include "vhost/dk_virtual_host.h"

namespace dksml::test {
namespace {


struct Gpu {
    uint32_t index;
    std::string bdf;
    uint32_t dies;
};

// One host and one discovery for the whole suite: the readings do not change
// the host.
class TelemetryApiTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        host = new vhost::ScopedHost(std::string_view("server"));
        if (dkSmlInitWithFlags(1) != DK_SML_SUCCESS) return;
        for (uint32_t index = 0; index < dkSmlGetDeviceCount(); ++index) {
            DkSmlDeviceInfo info{};
            uint32_t dies = 0;
            if (dkSmlGetDeviceInfo(index, &info) != DK_SML_SUCCESS) continue;
            if (dkSmlGetDeviceDieCount(index, &dies) != DK_SML_SUCCESS) continue;
            gpus.push_back({index, info.bdfId, dies});
        }
    }
    static void TearDownTestSuite() {
        gpus.clear();
        delete host;
        host = nullptr;
    }
    void SetUp() override { ASSERT_FALSE(gpus.empty()) << "discovery found no device on the server host"; }

    static inline vhost::ScopedHost* host = nullptr;
    static inline std::vector<Gpu> gpus;
};

// Null pointers and unknown indices are checked for every export by the
// native frame test; these are the die and sensor checks.
TEST_F(TelemetryApiTest, DieAndSensorAreChecked) {
    const Gpu& gpu = gpus.front();
    DkSmlClocksFreqForAll clocks{};
    uint64_t mask = 0;
    int32_t value = 0;
    EXPECT_EQ(dkSmlGetClocks(gpu.index, gpu.dies, &clocks), DK_SML_ERROR_INVALID_DIE_ID);
    EXPECT_EQ(dkSmlGetCurrentClocksThrottleReason(gpu.index, gpu.dies, &mask), DK_SML_ERROR_INVALID_DIE_ID);
    EXPECT_EQ(dkSmlGetDieTemperatureInfo(gpu.index, gpu.dies, DK_SML_TEMPERATURE_SOC, &value),
              DK_SML_ERROR_INVALID_DIE_ID);
    EXPECT_EQ(dkSmlGetTemperatureInfo(gpu.index, static_cast<DkSmlTemperatureSensors>(5), &value),
              DK_SML_ERROR_INVALID_INPUT);
}

TEST_F(TelemetryApiTest, VirtualFunctionClocksAreRefused) {
    const uint32_t vfIndex = 100;  // virtual functions are numbered from 100
    DkSmlDeviceInfo info{};
    ASSERT_EQ(dkSmlGetDeviceInfo(vfIndex, &info), DK_SML_SUCCESS) << "the server profile carries virtual functions";
    DkSmlClocksFreqForAll clocks{};
    uint64_t mask = 0;
    uint32_t rpm = 0, pwm = 0;
    EXPECT_EQ(dkSmlGetClocks(vfIndex, DK_SML_DIE_ALL, &clocks), DK_SML_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(dkSmlGetCurrentClocksThrottleReason(vfIndex, DK_SML_DIE_ALL, &mask), DK_SML_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(dkSmlGetFanSpeedInfo(vfIndex, &rpm, &pwm), DK_SML_ERROR_NOT_SUPPORTED);
}

}  // namespace
}  // namespace dksml::test
