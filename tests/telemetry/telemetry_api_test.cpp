// The clock, throttle, temperature, fan and die-record exports on the
// "server" virtual host: the argument checks, refusals and the record forms
// (the readings, die records and sensor tables are in the golden dksmi
// transcripts, which also show a virtual function without clocks, throttle
// reasons or fan, and the services' tests refuse them; null pointers and
// unknown indices of the other exports are in the native frame test; the
// voltage rows' count protocol and values in the Python module's tests).
#include <gtest/gtest.h>

#include "support/dk_server_suite.h"

namespace dksml::test {
namespace {

constexpr uint32_t c_twoDieDevice = 0;  // 0000:1b:00.0
constexpr uint32_t c_unknownIndex = 4242;

// One host for the whole suite: the readings do not change the host.
using TelemetryApiTest = ServerSuite;

TEST_F(TelemetryApiTest, RefusesNullPointersUnknownDevicesDiesAndSensors) {
    DkSmlTemperature record{};
    DkSmlTemperatureSensorForAll table{};
    DkSmlClocksFreqForAll clocks{};
    uint64_t mask = 0;
    int32_t value = 0;
    uint32_t count = 0;
    EXPECT_EQ(dkSmlGetDieTemperatureRecord(c_twoDieDevice, 0, nullptr), DK_SML_ERROR_INVALID_INPUT);
    EXPECT_EQ(dkSmlGetDieTemperatureSensor(c_twoDieDevice, 0, nullptr), DK_SML_ERROR_INVALID_INPUT);
    EXPECT_EQ(dkSmlGetDieVmInfo(c_twoDieDevice, 0, nullptr, nullptr), DK_SML_ERROR_INVALID_INPUT);
    EXPECT_EQ(dkSmlGetDieTemperatureRecord(c_unknownIndex, 0, &record), DK_SML_ERROR_DEVICE_NOT_AVAILABLE);
    EXPECT_EQ(dkSmlGetDieTemperatureSensor(c_twoDieDevice, 2, &table), DK_SML_ERROR_INVALID_DIE_ID);
    EXPECT_EQ(dkSmlGetDieVmInfo(c_twoDieDevice, 2, &count, nullptr), DK_SML_ERROR_INVALID_DIE_ID);
    EXPECT_EQ(dkSmlGetClocks(c_twoDieDevice, 2, &clocks), DK_SML_ERROR_INVALID_DIE_ID);
    EXPECT_EQ(dkSmlGetCurrentClocksThrottleReason(c_twoDieDevice, 2, &mask), DK_SML_ERROR_INVALID_DIE_ID);
    EXPECT_EQ(dkSmlGetDieTemperatureInfo(c_twoDieDevice, 2, DK_SML_TEMPERATURE_SOC, &value),
              DK_SML_ERROR_INVALID_DIE_ID);
    EXPECT_EQ(dkSmlGetTemperatureInfo(c_twoDieDevice, static_cast<DkSmlTemperatureSensors>(5), &value),
              DK_SML_ERROR_INVALID_INPUT);
}

TEST_F(TelemetryApiTest, RecordAgreesWithTheSingleSensorReadsOnEveryDie) {
    for (uint32_t die = 0; die < 2; ++die) {
        DkSmlTemperature record{};
        ASSERT_EQ(dkSmlGetDieTemperatureRecord(c_twoDieDevice, die, &record), DK_SML_SUCCESS);
        int32_t hotspot = 0;
        int32_t soc = 0;
        ASSERT_EQ(dkSmlGetDieTemperatureInfo(c_twoDieDevice, die, DK_SML_TEMPERATURE_HOTSPOT, &hotspot), DK_SML_SUCCESS);
        ASSERT_EQ(dkSmlGetDieTemperatureInfo(c_twoDieDevice, die, DK_SML_TEMPERATURE_SOC, &soc), DK_SML_SUCCESS);
        EXPECT_EQ(record.hotspot, hotspot);
        EXPECT_EQ(record.soc, soc);
    }
}

}  // namespace
}  // namespace dksml::test
