// DkFan and DkVoltageMonitor against canned "fan_ctrl" and "showvmread" text.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "features/fan/dk_fan.h"
#include "features/voltage/dk_voltage.h"
#include "support/dk_fake_device.h"

namespace dksml::test {
namespace {

// The fan is a board part: it is read and written through die 0 whatever
// the die count.
TEST(FanTest, NeedsExactlyOneSpeedAndOneDutyOnDieZero) {
    const struct {
        const char* text;
        DkSmlReturn expected;
        uint32_t rpm, pwm;
    } cases[] = {
        {"fan_rpm: 2400\nfan_pwm: 128\n", DK_SML_SUCCESS, 2400, 128},
        {"fan_rpm_0: 1\nboard fan_pwm: 2\nfan_mode: 3\n", DK_SML_SUCCESS, 1, 2},  // keys by substring
        {"fan_rpm: 2400\n", DK_SML_ERROR_NOT_SUPPORTED, 0, 0},
        {"fan_rpm: 2400\nfan_pwm: 128\nfan_pwm: 129\n", DK_SML_ERROR_NOT_SUPPORTED, 0, 0},
        {"", DK_SML_ERROR_NOT_SUPPORTED, 0, 0},
        {"fan_rpm 2400\n", DK_SML_ERROR_SYSFS, 0, 0},
    };
    FakeDevice device;
    device.dieCount = 2;
    DkFan fan;
    for (const auto& c : cases) {
        device.Serve(0, DRAVIK_SMI_FAN_CTRL, c.text);
        uint32_t rpm = 0, pwm = 0;
        ASSERT_EQ(fan.GetFanSpeedInfo(&device, &rpm, &pwm), c.expected) << c.text;
        if (c.expected == DK_SML_SUCCESS) {
            EXPECT_EQ(rpm, c.rpm) << c.text;
            EXPECT_EQ(pwm, c.pwm) << c.text;
        }
    }
    EXPECT_EQ(fan.SetFanPwm(&device, 4000000000u), DK_SML_SUCCESS);
    ASSERT_EQ(device.writes.size(), 1u);
    EXPECT_EQ(device.writes[0].die, 0u);
    EXPECT_EQ(device.writes[0].op, DRAVIK_SMI_FAN_CTRL);
    EXPECT_EQ(device.writes[0].text, "4000000000");
}

TEST(FanTest, GateRefusesOtherBrandsAndVirtualFunctions) {
    DkFan fan;
    uint32_t rpm = 0, pwm = 0;
    for (auto [brand, isVf] : {std::pair{DK_SML_BRAND_DKQ, false}, std::pair{DK_SML_BRAND_DKZ, false},
                               std::pair{DK_SML_BRAND_DKK, true}, std::pair{DK_SML_BRAND_DKK_X, true}}) {
        FakeDevice device;
        device.brand = brand;
        device.isVf = isVf;
        device.Serve(0, DRAVIK_SMI_FAN_CTRL, "fan_rpm: 1\nfan_pwm: 2\n");
        EXPECT_EQ(fan.GetFanSpeedInfo(&device, &rpm, &pwm), DK_SML_ERROR_NOT_SUPPORTED);
        EXPECT_EQ(fan.SetFanPwm(&device, 5), DK_SML_ERROR_NOT_SUPPORTED);
        EXPECT_EQ(device.fetchCount, 0);
        EXPECT_TRUE(device.writes.empty());
    }
}

// Voltage monitor ------------------------------------------------------------

class VoltageTest : public ::testing::Test {
protected:
    FakeDevice device;
    DkVoltageMonitor monitor;
    DkSmlVmInfo entries[4]{};
};

TEST_F(VoltageTest, RowsAndCounts) {
    device.Serve(1, DRAVIK_SMI_SHOWVMREAD,
                 "vm0: 850 851 852\nvm1: 1 2 x 4\nvm2: 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17\nvm3:\n");
    uint32_t count = 4;
    ASSERT_EQ(monitor.GetDieVmInfo(&device, 1, &count, entries), DK_SML_SUCCESS);
    EXPECT_EQ(count, 4u);
    EXPECT_EQ(entries[0].count, 3);
    EXPECT_EQ(entries[0].readings[2], 852);
    EXPECT_EQ(entries[0].readings[3], -1);
    EXPECT_EQ(entries[1].count, 2);
    EXPECT_EQ(entries[1].readings[2], -1);
    EXPECT_EQ(entries[2].count, 16);
    EXPECT_EQ(entries[2].readings[15], 16);
    EXPECT_EQ(entries[3].count, 0);
}

// Without the attribute or a count pointer the read is refused. A small
// capacity gets the line count and nothing filled; a larger one is trimmed to
// the line count.
TEST_F(VoltageTest, CountProtocol) {
    uint32_t count = 4;
    EXPECT_EQ(monitor.GetVmInfo(&device, &count, entries), DK_SML_ERROR_NOT_SUPPORTED);  // no attribute
    EXPECT_EQ(monitor.GetVmInfo(&device, nullptr, entries), DK_SML_ERROR_INVALID_INPUT);
    EXPECT_EQ(monitor.GetVmInfo(&device, &count, nullptr), DK_SML_ERROR_INVALID_INPUT);
    device.Serve(0, DRAVIK_SMI_SHOWVMREAD, "vm0: 1\nvm1: 2\nvm2: 3\n");
    entries[0].count = 77;
    count = 2;
    EXPECT_EQ(monitor.GetVmInfo(&device, &count, entries), DK_SML_ERROR_INSUFFICIENT_SIZE);
    EXPECT_EQ(count, 3u);
    EXPECT_EQ(entries[0].count, 77);
    count = 0;
    EXPECT_EQ(monitor.GetVmInfo(&device, &count, nullptr), DK_SML_ERROR_INSUFFICIENT_SIZE);
    EXPECT_EQ(count, 3u);
    count = 4;
    ASSERT_EQ(monitor.GetVmInfo(&device, &count, entries), DK_SML_SUCCESS);
    EXPECT_EQ(count, 3u);
}

}  // namespace
}  // namespace dksml::test
