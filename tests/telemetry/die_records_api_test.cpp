// The exports that return a die's whole temperature record, sensor table and
// voltage-monitor rows, on the "server" virtual host.
#include <gtest/gtest.h>

#include <string_view>
#include <vector>

#include "dksml.h"
#include "vhost/dk_virtual_host.h"

namespace dksml::test {
namespace {

constexpr uint32_t c_twoDieDevice = 0;   // 0000:1b:00.0
constexpr uint32_t c_unknownIndex = 4242;

class DieRecordsApiTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        host = new vhost::ScopedHost(std::string_view("server"));
        ASSERT_EQ(dkSmlInitWithFlags(1), DK_SML_SUCCESS);
    }
    static void TearDownTestSuite() {
        delete host;
        host = nullptr;
    }
    static inline vhost::ScopedHost* host = nullptr;
};

TEST_F(DieRecordsApiTest, RefusesNullPointersUnknownDevicesAndDies) {
    DkSmlTemperature record{};
    DkSmlTemperatureSensorForAll table{};
    uint32_t count = 0;
    EXPECT_EQ(dkSmlGetDieTemperatureRecord(c_twoDieDevice, 0, nullptr), DK_SML_ERROR_INVALID_INPUT);
    EXPECT_EQ(dkSmlGetDieTemperatureSensor(c_twoDieDevice, 0, nullptr), DK_SML_ERROR_INVALID_INPUT);
    EXPECT_EQ(dkSmlGetDieVmInfo(c_twoDieDevice, 0, nullptr, nullptr), DK_SML_ERROR_INVALID_INPUT);
    EXPECT_EQ(dkSmlGetDieTemperatureRecord(c_unknownIndex, 0, &record), DK_SML_ERROR_DEVICE_NOT_AVAILABLE);
    EXPECT_EQ(dkSmlGetDieTemperatureSensor(c_twoDieDevice, 2, &table), DK_SML_ERROR_INVALID_DIE_ID);
    EXPECT_EQ(dkSmlGetDieVmInfo(c_twoDieDevice, 2, &count, nullptr), DK_SML_ERROR_INVALID_DIE_ID);
}

TEST_F(DieRecordsApiTest, RecordAgreesWithTheSingleSensorReadsOnEveryDie) {
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

TEST_F(DieRecordsApiTest, SensorTableHoldsTheDriversRows) {
    DkSmlTemperatureSensorForAll table{};
    ASSERT_EQ(dkSmlGetDieTemperatureSensor(c_twoDieDevice, 1, &table), DK_SML_SUCCESS);
    ASSERT_GT(table.rowCount, 0u);
    EXPECT_GT(table.rows[0].count, 0u);
}

TEST_F(DieRecordsApiTest, VoltageRowsFollowTheCountProtocol) {
    uint32_t count = 0;
    ASSERT_EQ(dkSmlGetDieVmInfo(c_twoDieDevice, 0, &count, nullptr), DK_SML_ERROR_INSUFFICIENT_SIZE);
    ASSERT_GT(count, 0u);
    std::vector<DkSmlVmInfo> rows(count);
    uint32_t small = count - 1;
    EXPECT_EQ(dkSmlGetDieVmInfo(c_twoDieDevice, 0, &small, rows.data()), DK_SML_ERROR_INSUFFICIENT_SIZE);
    EXPECT_EQ(small, count);
    ASSERT_EQ(dkSmlGetDieVmInfo(c_twoDieDevice, 0, &count, rows.data()), DK_SML_SUCCESS);
    EXPECT_EQ(count, rows.size());
    EXPECT_GT(rows[0].count, 0);
}

}  // namespace
}  // namespace dksml::test
