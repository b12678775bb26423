// DkTemperature against canned "showtemp" and "showtstemp" text.
#include <gtest/gtest.h>

#include <string>

#include "features/temperature/dk_temperature.h"
#include "support/dk_fake_device.h"

namespace dksml::test {
namespace {

constexpr int32_t c_invalid = DK_SML_TEMPERATURE_INVALID;

class TemperatureTest : public ::testing::Test {
protected:
    DkSmlTemperature ReadDie(const std::string& text) {
        device.Serve(0, DRAVIK_SMI_SHOWTEMP, text);
        DkSmlTemperature t;
        temperature.InitTemperature(&t);
        EXPECT_EQ(temperature.GetDieTemperature(&device, 0, &t), DK_SML_SUCCESS);
        return t;
    }

    FakeDevice device;
    DkTemperature temperature;
};

// Whole structure of one die -------------------------------------------------

TEST_F(TemperatureTest, KeyLandsInItsField) {
    const struct {
        const char* text;
        int32_t DkSmlTemperature::*field;
        int32_t expected;
    } cases[] = {
        {"xcore_temp: 61\n", &DkSmlTemperature::core, 61},
        {"core_hotspot: 70\n", &DkSmlTemperature::hotspot, 70},  // the hotspot key beats core
        {"core_hotspot: 70\n", &DkSmlTemperature::core, c_invalid},
        {"tmp435_u1_local: 33\n", &DkSmlTemperature::emcLocal, 33},
        {"emclocal: 31\ntmp435_u1_local: 33\n", &DkSmlTemperature::emcLocal, 33},  // the later line wins
        {"tmp435_u2_local: 34\n", &DkSmlTemperature::sgm, 34},
        {"sgm: 40\n", &DkSmlTemperature::sgm, 40},
        {"mc0: 50\nmc1: 52\n", &DkSmlTemperature::memCtrlMax, 52},
        {"mc0: 50\n", &DkSmlTemperature::memCtrlMax, c_invalid},  // needs both
        {"sensor[3]: 60\nsensor[12]: 71\nsensor[5]: 65\n", &DkSmlTemperature::hottestSensorIndex, 12},
        {"sensor[3]: 70\nsensor[5]: 70\n", &DkSmlTemperature::hottestSensorIndex, 3},  // a tie keeps the first
        {"sensor[4]: 90\n", &DkSmlTemperature::soc, c_invalid},
        {"sensor[]: 90\nsensor[2]: 50\n", &DkSmlTemperature::hottestSensorIndex, 2},
        {"soc: 99999999999\n", &DkSmlTemperature::soc, INT32_MAX},  // clamped
    };
    for (const auto& c : cases) {
        DkSmlTemperature t = ReadDie(c.text);
        EXPECT_EQ(t.*c.field, c.expected) << c.text;
    }
}

TEST_F(TemperatureTest, DieReadPassesErrorsUp) {
    DkSmlTemperature t;
    temperature.InitTemperature(&t);
    EXPECT_EQ(temperature.GetDieTemperature(&device, 0, &t), DK_SML_ERROR_NOT_SUPPORTED);  // no attribute
    device.Serve(0, DRAVIK_SMI_SHOWTEMP, "hotspot 65\n");
    EXPECT_EQ(temperature.GetDieTemperature(&device, 0, &t), DK_SML_ERROR_SYSFS);
}

// Merge over dies ------------------------------------------------------------

// Field by field: the larger valid reading wins; an invalid or out-of-range
// reading never wins and is replaced by any valid one, a negative included.
TEST_F(TemperatureTest, TwoDieMergeIgnoresInvalidAndTakesTheLarger) {
    device.dieCount = 2;
    device.Serve(0, DRAVIK_SMI_SHOWTEMP, "hotspot: 65535\nsoc: 55\ncore: 60\nhotlimit: 100\nmc1: -10\nsgm: 40\n"
                                         "emclocal: 70000\nsensor[7]: 80\n");
    device.Serve(1, DRAVIK_SMI_SHOWTEMP, "hotspot: 62\nsoc: 57\ncore: 40\nhotlimit: 70000\nmc0: -3\nmc1: -5\n"
                                         "emclocal: 3\nhbm: 1\nsensor[2]: 90\n");
    DkSmlTemperature t{};
    ASSERT_EQ(temperature.GetTemperature(&device, &t), DK_SML_SUCCESS);
    EXPECT_EQ(t.hotspot, 62);
    EXPECT_EQ(t.soc, 57);
    EXPECT_EQ(t.core, 60);
    EXPECT_EQ(t.hotLimit, 100);
    EXPECT_EQ(t.mc0, -3);  // a negative reading beats no reading
    EXPECT_EQ(t.mc1, -5);
    EXPECT_EQ(t.memCtrlMax, -3);  // die 1's; die 0 has no pair
    EXPECT_EQ(t.sgm, 40);
    EXPECT_EQ(t.emcLocal, 3);
    EXPECT_EQ(t.hottestSensorIndex, 7);  // largest index, not the hottest die's
    EXPECT_EQ(t.emcRemote, c_invalid);
    // The merge stops at a failing die.
    device.Fail(1, DRAVIK_SMI_SHOWTEMP, DK_SML_ERROR_SYSFS);
    EXPECT_EQ(temperature.GetTemperature(&device, &t), DK_SML_ERROR_SYSFS);
}

// Single values --------------------------------------------------------------

TEST_F(TemperatureTest, SelectorReadsOneValue) {
    const struct {
        const char* text;
        DkSmlTemperatureSensors sensor;
        DkSmlReturn expected;
        int32_t value;
    } cases[] = {
        {"xcore: 61\ncore: 60\n", DK_SML_TEMPERATURE_CORE, DK_SML_SUCCESS, 61},  // the first key in the file wins
        {"sgm: 40\n", DK_SML_TEMPERATURE_SGM, DK_SML_ERROR_NOT_SUPPORTED, 0},    // needs the chip name
        {"sgm452_temp: 41\n", DK_SML_TEMPERATURE_SGM, DK_SML_SUCCESS, 41},
        {"tmp435_u2_local: 42\n", DK_SML_TEMPERATURE_SGM, DK_SML_SUCCESS, 42},
        // the order of the names beats the order of the file
        {"tmp435_u1_local: 30\nemclocal: 31\n", DK_SML_TEMPERATURE_EMC_LOCAL, DK_SML_SUCCESS, 31},
        {"soc: 50\n", DK_SML_TEMPERATURE_HOTLIMIT, DK_SML_ERROR_NOT_SUPPORTED, 0},
        {"soc: 50\n", static_cast<DkSmlTemperatureSensors>(5), DK_SML_ERROR_INVALID_INPUT, 0},
        {"soc 50\n", DK_SML_TEMPERATURE_SOC, DK_SML_ERROR_SYSFS, 0},
    };
    for (const auto& c : cases) {
        device.Serve(0, DRAVIK_SMI_SHOWTEMP, c.text);
        int32_t value = -999;
        ASSERT_EQ(temperature.GetDieTemperature(&device, 0, c.sensor, &value), c.expected) << c.text;
        if (c.expected == DK_SML_SUCCESS) {
            EXPECT_EQ(value, c.value) << c.text;
        }
    }
}

TEST_F(TemperatureTest, DeviceHotspotIsThePlainLargerValue) {
    device.dieCount = 2;
    device.Serve(0, DRAVIK_SMI_SHOWTEMP, "hotspot: 60\nhotlimit: 100\n");
    device.Serve(1, DRAVIK_SMI_SHOWTEMP, "hotspot: 65535\nhotlimit: 105\n");
    int32_t value = 0;
    ASSERT_EQ(temperature.GetTemperature(&device, DK_SML_TEMPERATURE_HOTSPOT, &value), DK_SML_SUCCESS);
    EXPECT_EQ(value, 65535);
    // Any other selector reports die 0 only.
    ASSERT_EQ(temperature.GetTemperature(&device, DK_SML_TEMPERATURE_HOTLIMIT, &value), DK_SML_SUCCESS);
    EXPECT_EQ(value, 100);
    // The hotspot fails when a later die has none.
    device.Serve(1, DRAVIK_SMI_SHOWTEMP, "soc: 50\n");
    EXPECT_EQ(temperature.GetTemperature(&device, DK_SML_TEMPERATURE_HOTSPOT, &value), DK_SML_ERROR_NOT_SUPPORTED);
}

// Sensor table ---------------------------------------------------------------

// A literal 65535 ends a row, a row keeps at most 16 readings, an overlong
// line does not spill into the next row, and rows stop at the table size.
TEST_F(TemperatureTest, SensorTableRowsAndCounts) {
    std::string text = "row0: 45 46 47\nrow1: 1 2 65535 4\nrow2:\nrow3: 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17\n";
    text += "row4: 1 2" + std::string(10000, ' ') + "3\nrow5: 9\n";
    for (int row = 6; row < 50; ++row) text += "row" + std::to_string(row) + ": " + std::to_string(row) + "\n";
    device.Serve(0, DRAVIK_SMI_SHOWTSTEMP, text);
    DkSmlTemperatureSensorForAll table{};
    ASSERT_EQ(temperature.GetTemperatureSensor(&device, &table), DK_SML_SUCCESS);
    ASSERT_EQ(table.rowCount, static_cast<uint32_t>(DK_SML_TEMPERATURE_SENSOR_ROWS));
    EXPECT_EQ(table.rows[0].count, 3u);
    EXPECT_EQ(table.rows[0].readings[2], 47);
    EXPECT_EQ(table.rows[0].readings[3], c_invalid);
    EXPECT_EQ(table.rows[1].count, 2u);
    EXPECT_EQ(table.rows[1].readings[3], 4);
    EXPECT_EQ(table.rows[2].count, 0u);
    EXPECT_EQ(table.rows[3].count, 16u);
    EXPECT_EQ(table.rows[3].readings[15], 16);
    EXPECT_EQ(table.rows[4].count, 2u);
    EXPECT_EQ(table.rows[5].readings[0], 9);
    EXPECT_EQ(table.rows[DK_SML_TEMPERATURE_SENSOR_ROWS - 1].readings[0], DK_SML_TEMPERATURE_SENSOR_ROWS - 1);
}

TEST_F(TemperatureTest, SensorTableGateAndMissingFile) {
    struct Case {
        DkSmlDeviceBrand brand;
        bool isVf;
        DkSmlReturn expected;
    };
    device.Serve(0, DRAVIK_SMI_SHOWTSTEMP, "row0: 1\n");
    DkSmlTemperatureSensorForAll table{};
    for (const Case& c : {Case{DK_SML_BRAND_DKK, false, DK_SML_SUCCESS}, Case{DK_SML_BRAND_DKK_X, false, DK_SML_SUCCESS},
                          Case{DK_SML_BRAND_DKQ, false, DK_SML_ERROR_NOT_SUPPORTED},
                          Case{DK_SML_BRAND_DKZ, false, DK_SML_ERROR_NOT_SUPPORTED},
                          Case{DK_SML_BRAND_DKK, true, DK_SML_ERROR_NOT_SUPPORTED}}) {
        device.brand = c.brand;
        device.isVf = c.isVf;
        EXPECT_EQ(temperature.GetTemperatureSensor(&device, &table), c.expected) << c.brand << " vf " << c.isVf;
    }
    device.brand = DK_SML_BRAND_DKK;
    device.isVf = false;
    device.Fail(0, DRAVIK_SMI_SHOWTSTEMP, DK_SML_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(temperature.GetTemperatureSensor(&device, &table), DK_SML_ERROR_SYSFS);
}

}  // namespace
}  // namespace dksml::test
