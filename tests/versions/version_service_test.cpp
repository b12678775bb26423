// DkVersion against a fake device: the copy rule, the firmware record and
// the unit table.
#include <gtest/gtest.h>

#include <cstring>
#include <utility>

#include "features/version/dk_version.h"
#include "features/version/dk_version_text.h"
#include "support/dk_fake_device.h"

namespace dksml::test {
namespace {

class VersionServiceTest : public ::testing::Test {
protected:
    void SetUp() override {
        device.Serve(0, DRAVIK_SMI_SHOWVBIOS, "vbios version:  016.4.000.041 \t\n");
        device.Serve(0, DRAVIK_SMI_SHOWDRIVERVERSION, "driver version: 6.2.15\n");
        device.Serve(0, DRAVIK_SMI_SHOWFWINFO, "SMP0: 1.10.3\nSMP1: 1.10.4\nCCX0: 2.4.1\nVR1: 0x21\n");
    }
    FakeDevice device;
    DkVersion version;
};

TEST_F(VersionServiceTest, CopyRuleAtTheBufferBoundary) {
    const std::string value = "016.4.000.041";  // 13 characters
    char buffer[32];
    uint32_t size = static_cast<uint32_t>(value.size()) + 1;
    ASSERT_EQ(version.GetDieUnitVersion(&device, 0, DK_SML_VERSION_VBIOS, buffer, &size), DK_SML_SUCCESS);
    EXPECT_EQ(std::string(buffer), value);
    EXPECT_EQ(size, value.size() + 1);

    size = static_cast<uint32_t>(value.size());
    ASSERT_EQ(version.GetDieUnitVersion(&device, 0, DK_SML_VERSION_VBIOS, buffer, &size),
              DK_SML_ERROR_INSUFFICIENT_SIZE);
    EXPECT_EQ(size, value.size() + 1);
    EXPECT_STREQ(buffer, "unknown");

    char tiny[4];
    size = sizeof tiny;
    ASSERT_EQ(version.GetDieUnitVersion(&device, 0, DK_SML_VERSION_DRIVER, tiny, &size),
              DK_SML_ERROR_INSUFFICIENT_SIZE);
    EXPECT_STREQ(tiny, "unk");  // cut, still terminated
    EXPECT_EQ(size, 7u);
}

TEST_F(VersionServiceTest, UnitsByFirmwareKey) {
    char buffer[64];
    uint32_t size = sizeof buffer;
    ASSERT_EQ(version.GetDieUnitVersion(&device, 0, DK_SML_VERSION_FW_SMP1, buffer, &size), DK_SML_SUCCESS);
    EXPECT_STREQ(buffer, "1.10.4");
    size = sizeof buffer;
    EXPECT_EQ(version.GetDieUnitVersion(&device, 0, DK_SML_VERSION_FW_MCU, buffer, &size),
              DK_SML_ERROR_NOT_SUPPORTED);
    size = sizeof buffer;
    EXPECT_EQ(version.GetDieUnitVersion(&device, 0, static_cast<DkSmlVersionUnit>(11), buffer, &size),
              DK_SML_ERROR_INVALID_INPUT);
    EXPECT_STREQ(buffer, "unknown");
}

TEST_F(VersionServiceTest, BadTextLeavesUnknown) {
    const std::pair<const char*, DkSmlReturn> cases[] = {
        {"", DK_SML_ERROR_SYSFS},
        {"driver version: \t\n", DK_SML_ERROR_SYSFS},
        {"driver version: 0123456789abcdefXYZ\n", DK_SML_ERROR_INSUFFICIENT_SIZE},
    };
    for (const auto& [text, expected] : cases) {
        device.Serve(0, DRAVIK_SMI_SHOWDRIVERVERSION, text);
        char buffer[16];
        std::memset(buffer, 'x', sizeof buffer);
        uint32_t size = sizeof buffer;
        EXPECT_EQ(version.GetDieUnitVersion(&device, 0, DK_SML_VERSION_DRIVER, buffer, &size), expected) << text;
        EXPECT_STREQ(buffer, "unknown") << text;
    }
}

TEST_F(VersionServiceTest, DieVersionKeepsInitialTextsOfAbsentKeys) {
    device.brand = DK_SML_BRAND_DKZ;  // no compute stack on this line
    DkSmlVersion record{};
    EXPECT_EQ(version.GetDieVersion(&device, 0, &record), DK_SML_ERROR_NOT_SUPPORTED);
    EXPECT_STREQ(record.fwVersion.smp0, "1.10.3");
    EXPECT_STREQ(record.fwVersion.vr1, "0x21");
    EXPECT_STREQ(record.fwVersion.mcu, "not support");
    EXPECT_STREQ(record.fwVersion.ccx3, "not support");
    EXPECT_STREQ(record.vbiosVersion, "016.4.000.041");
    EXPECT_STREQ(record.driverVersion, "6.2.15");
    EXPECT_STREQ(record.vornVersion, "unknown");

    device.Serve(0, DRAVIK_SMI_SHOWFWINFO, "SMP0 1.0\n");
    EXPECT_EQ(version.GetDieVersion(&device, 0, &record), DK_SML_ERROR_SYSFS);
    EXPECT_STREQ(record.fwVersion.smp0, "unknown");
    EXPECT_STREQ(record.fwVersion.smp1, "unknown");
}

TEST(VersionTextTest, ValueAfterTheFirstColon) {
    EXPECT_EQ(VersionValue("a: b: c \r\n"), "b: c");
    EXPECT_EQ(VersionValue("plain\n"), "plain");
    EXPECT_EQ(VersionValue(":   \n"), "");
}

}  // namespace
}  // namespace dksml::test
