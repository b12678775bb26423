// DkDpm against a fake device: the exact lines written, the level rules per
// model and brand, and the answers to malformed driver text.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "features/dpm/dk_dpm.h"
#include "support/dk_fake_device.h"

namespace dksml::test {
namespace {

class ModelDevice : public FakeDevice {
public:
    bool dkk3 = false, dkk6 = false, dkk6u = false, dkq9 = false;
    bool IsDkk3() const override { return dkk3; }
    bool IsDkk6() const override { return dkk6; }
    bool IsDkk6u() const override { return dkk6u; }
    bool IsDkq9() const override { return dkq9; }
};

class DpmServiceTest : public ::testing::Test {
protected:
    ModelDevice device;
    DkDpm dpm;
};

TEST_F(DpmServiceTest, MaxLevelIsTheCountMinusOne) {
    device.Serve(0, DRAVIK_SMI_DPMCOUNT, "dla: 8\nxcore: 10\nhbmpower: 2\nhbm: 3\n");
    uint32_t level = 0;
    ASSERT_EQ(dpm.GetDieDpmIpMaxPerfLevel(&device, 0, DK_SML_DPM_IP_XCORE, &level), DK_SML_SUCCESS);
    EXPECT_EQ(level, 9u);
    // The first line that contains the name wins, as the driver's own tool reads it.
    ASSERT_EQ(dpm.GetDpmIpMaxPerfLevel(&device, DK_SML_DPM_IP_HBM, &level), DK_SML_SUCCESS);
    EXPECT_EQ(level, 1u);

    DkSmlDpmForAll all{};
    ASSERT_EQ(dpm.GetDpmMaxPerfLevel(&device, &all), DK_SML_SUCCESS);
    EXPECT_EQ(all.level[DK_SML_DPM_IP_HBM], 2u);  // the whole-record read matches labels exactly
    EXPECT_EQ(all.level[DK_SML_DPM_IP_MC], DK_SML_DPM_LEVEL_NONE);
}

TEST_F(DpmServiceTest, Dkk3CapsTheReadLevelAtNine) {
    device.dkk3 = true;
    device.Serve(0, DRAVIK_SMI_DPMCOUNT, "xcore: 16\n");
    uint32_t level = 0;
    ASSERT_EQ(dpm.GetDpmIpMaxPerfLevel(&device, DK_SML_DPM_IP_XCORE, &level), DK_SML_SUCCESS);
    EXPECT_EQ(level, 9u);
    EXPECT_EQ(dpm.SetDpmMaxPerfLevel(&device, DK_SML_DPM_IP_XCORE, 10), DK_SML_ERROR_INVALID_INPUT);
}

TEST_F(DpmServiceTest, BadCountTextAnswersTheDefinedCode) {
    const struct {
        const char* text;
        DkSmlDpmIp ip;
        DkSmlReturn expected;
    } cases[] = {
        {"xcore 10\n", DK_SML_DPM_IP_XCORE, DK_SML_ERROR_SYSFS},
        {"dla: 8\n", DK_SML_DPM_IP_XCORE, DK_SML_ERROR_INVALID_INPUT},  // the domain is absent
        {"xcore: ten\n", DK_SML_DPM_IP_XCORE, DK_SML_ERROR_SYSFS},
        {"xcore: not support\n", DK_SML_DPM_IP_XCORE, DK_SML_ERROR_NOT_SUPPORTED},
        {"xcore: 0\n", DK_SML_DPM_IP_XCORE, DK_SML_ERROR_SYSFS},
        {"", DK_SML_DPM_IP_XCORE, DK_SML_ERROR_INVALID_INPUT},
        {"xcore: 99999999999\n", DK_SML_DPM_IP_XCORE, DK_SML_ERROR_SYSFS},
        {"xcore: 3\n", static_cast<DkSmlDpmIp>(15), DK_SML_ERROR_INVALID_INPUT},
    };
    for (const auto& c : cases) {
        device.Serve(0, DRAVIK_SMI_DPMCOUNT, c.text);
        uint32_t level = 77;
        EXPECT_EQ(dpm.GetDpmIpMaxPerfLevel(&device, c.ip, &level), c.expected) << c.text;
        EXPECT_EQ(level, 77u) << c.text;
    }
}

TEST_F(DpmServiceTest, MaxLevelWriteRaisesTheLevelByOne) {
    device.dkk6 = true;
    ASSERT_EQ(dpm.SetDieDpmMaxPerfLevel(&device, 1, DK_SML_DPM_IP_XCORE, 9), DK_SML_SUCCESS);
    ASSERT_EQ(device.writes.size(), 1u);
    EXPECT_EQ(device.writes[0].die, 1u);
    EXPECT_EQ(device.writes[0].op, DRAVIK_SMI_DPMCOUNT);
    EXPECT_EQ(device.writes[0].text, "xcore 10");
}

TEST(DpmModelTest, ModelTableDecides) {
    const struct {
        const char* name;
        bool dkk6, dkk6u, dkq9;
        DkSmlDpmIp ip;
        uint32_t level;
        DkSmlReturn expected;
    } cases[] = {
        {"Dkk6XcoreTop", true, false, false, DK_SML_DPM_IP_XCORE, 9, DK_SML_SUCCESS},
        {"Dkk6XcorePastTop", true, false, false, DK_SML_DPM_IP_XCORE, 10, DK_SML_ERROR_INVALID_INPUT},
        {"Dkq9UsesDkk6Table", false, false, true, DK_SML_DPM_IP_CCX, 3, DK_SML_SUCCESS},
        {"Dkk6uHasNoDla", false, true, false, DK_SML_DPM_IP_DLA, 0, DK_SML_ERROR_INVALID_INPUT},
        {"Dkk6uHbm", false, true, false, DK_SML_DPM_IP_HBM, 2, DK_SML_SUCCESS},
        {"Dkk1XcoreEight", false, false, false, DK_SML_DPM_IP_XCORE, 8, DK_SML_ERROR_INVALID_INPUT},
        {"Dkk1NoCcx", false, false, false, DK_SML_DPM_IP_CCX, 0, DK_SML_ERROR_INVALID_INPUT},
        {"OutOfEnum", false, false, false, static_cast<DkSmlDpmIp>(99), 0, DK_SML_ERROR_INVALID_INPUT},
    };
    for (const auto& c : cases) {
        ModelDevice device;
        device.dkk6 = c.dkk6;
        device.dkk6u = c.dkk6u;
        device.dkq9 = c.dkq9;
        EXPECT_EQ(DkDpm().SetDpmMaxPerfLevel(&device, c.ip, c.level), c.expected) << c.name;
        EXPECT_EQ(device.writes.size(), c.expected == DK_SML_SUCCESS ? 1u : 0u) << c.name;
    }
}

TEST_F(DpmServiceTest, CurrentLevelIsWrittenAsItIs) {
    device.brand = DK_SML_BRAND_DKK;
    ASSERT_EQ(dpm.SetDpmPerfLevel(&device, DK_SML_DPM_IP_DLA, 2), DK_SML_SUCCESS);
    ASSERT_EQ(device.writes.size(), 1u);
    EXPECT_EQ(device.writes[0].op, DRAVIK_SMI_SETPERFLEVEL);
    EXPECT_EQ(device.writes[0].text, "dla 2");

    device.brand = DK_SML_BRAND_DKQ;
    EXPECT_EQ(dpm.SetDpmPerfLevel(&device, DK_SML_DPM_IP_MC, 3), DK_SML_SUCCESS);
    EXPECT_EQ(dpm.SetDpmPerfLevel(&device, DK_SML_DPM_IP_MC, 4), DK_SML_ERROR_INVALID_INPUT);
    EXPECT_EQ(dpm.SetDpmPerfLevel(&device, DK_SML_DPM_IP_VPUE, 0), DK_SML_ERROR_INVALID_INPUT);
    device.brand = DK_SML_BRAND_DKZ;
    EXPECT_EQ(dpm.SetDpmPerfLevel(&device, DK_SML_DPM_IP_DLA, 0), DK_SML_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(device.writes.size(), 2u);
}

TEST_F(DpmServiceTest, RotationStepsEightLevelsForNpuFourOtherwise) {
    device.brand = DK_SML_BRAND_DKK;
    EXPECT_EQ(dpm.SetDpmPerfLevelRotation(&device, DK_SML_DPM_IP_NPU), DK_SML_SUCCESS);
    EXPECT_TRUE(device.writes.empty());  // npu is in no table: every step refused, the rotation still answers 0
    device.writeResult = DK_SML_ERROR_SYSFS_WRITE;
    EXPECT_EQ(dpm.SetDpmPerfLevelRotation(&device, DK_SML_DPM_IP_XCORE), DK_SML_SUCCESS);
    ASSERT_EQ(device.writes.size(), 4u);
    EXPECT_EQ(device.writes[3].text, "xcore 3");
}

TEST_F(DpmServiceTest, VirtualFunctionsAreRefused) {
    device.isVf = true;
    uint32_t level = 0;
    DkSmlDpmPerfLevel levels{};
    EXPECT_EQ(dpm.GetDpmIpMaxPerfLevel(&device, DK_SML_DPM_IP_XCORE, &level), DK_SML_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(dpm.SetDpmMaxPerfLevel(&device, DK_SML_DPM_IP_XCORE, 1), DK_SML_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(dpm.SetDpmPerfLevelRotation(&device, DK_SML_DPM_IP_XCORE), DK_SML_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(dpm.GetDpmIpClockInfo(&device, DK_SML_DPM_IP_XCORE, &levels), DK_SML_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(dpm.SetDpmInterval(&device, DK_SML_DPM_IP_XCORE, 5), DK_SML_ERROR_NOT_SUPPORTED);
}

TEST_F(DpmServiceTest, LevelRowsAndTheirLimits) {
    device.Serve(0, DRAVIK_SMI_SHOWCLKRANGE, "xcore: 300 450 600\nmc: 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17\n"
                                              "dla: 100 fast\n");
    device.Serve(0, DRAVIK_SMI_SHOWPERFLEVEL, "xcore: 2\nmc:\n");
    DkSmlDpmPerfLevel levels{};
    ASSERT_EQ(dpm.GetDpmIpClockInfo(&device, DK_SML_DPM_IP_XCORE, &levels), DK_SML_SUCCESS);
    ASSERT_EQ(levels.count, 3u);
    EXPECT_EQ(levels.values[2], 600u);
    EXPECT_EQ(dpm.GetDpmIpClockInfo(&device, DK_SML_DPM_IP_MC, &levels), DK_SML_ERROR_SYSFS);   // 17 > 16
    EXPECT_EQ(dpm.GetDpmIpClockInfo(&device, DK_SML_DPM_IP_DLA, &levels), DK_SML_ERROR_SYSFS);  // not a number
    EXPECT_EQ(dpm.GetDpmIpClockInfo(&device, DK_SML_DPM_IP_SOC, &levels), DK_SML_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(dpm.GetDpmIpVddInfo(&device, DK_SML_DPM_IP_XCORE, &levels), DK_SML_ERROR_NOT_SUPPORTED);

    uint32_t level = 0;
    ASSERT_EQ(dpm.GetCurrentDpmIpPerfLevel(&device, DK_SML_DPM_IP_XCORE, &level), DK_SML_SUCCESS);
    EXPECT_EQ(level, 2u);
    EXPECT_EQ(dpm.GetCurrentDpmIpPerfLevel(&device, DK_SML_DPM_IP_MC, &level), DK_SML_ERROR_SYSFS);
}

TEST_F(DpmServiceTest, TableOperationsWriteTheirCommands) {
    device.Serve(0, DRAVIK_SMI_DPM_TABLE_CTRL, "xcore clock: 300 600\nxcore vdd: 650 700\nxcore hide: 2\n"
                                                 "xcore backup clock: 300 500\nxcore param: 5 30 70\n");
    device.Serve(0, DRAVIK_SMI_DPMUSAGE, "xcore: 10 20 30000000000\n");
    DkSmlDpmInfoForAll info{};
    ASSERT_EQ(dpm.GetDpmCurrent(&device, &info), DK_SML_SUCCESS);
    EXPECT_EQ(info.voltage[DK_SML_DPM_IP_XCORE].values[1], 700u);
    ASSERT_EQ(dpm.GetDpmBackup(&device, &info), DK_SML_SUCCESS);
    EXPECT_EQ(info.clock[DK_SML_DPM_IP_XCORE].values[1], 500u);
    EXPECT_EQ(info.voltage[DK_SML_DPM_IP_XCORE].count, 0u);
    uint32_t mask = 0;
    ASSERT_EQ(dpm.GetDpmHide(&device, DK_SML_DPM_IP_XCORE, &mask), DK_SML_SUCCESS);
    EXPECT_EQ(mask, 2u);
    DkSmlDpmCounterForAll counters{};
    ASSERT_EQ(dpm.GetDpmCounter(&device, &counters), DK_SML_SUCCESS);
    EXPECT_EQ(counters.counter[DK_SML_DPM_IP_XCORE][2], 30000000000ull);

    ASSERT_EQ(dpm.SetDpmBackup(&device), DK_SML_SUCCESS);
    ASSERT_EQ(dpm.SetDpmHide(&device, DK_SML_DPM_IP_MC, 5), DK_SML_SUCCESS);
    ASSERT_EQ(dpm.SetDpmInfo(&device, DK_SML_DPM_IP_XCORE, 3, 1500), DK_SML_SUCCESS);
    ASSERT_EQ(dpm.ClearDpmCounter(&device), DK_SML_SUCCESS);
    ASSERT_EQ(dpm.SetDpmMaxLevel(&device, DK_SML_DPM_IP_XCORE, 7), DK_SML_SUCCESS);
    const std::vector<std::string> expected{"backup", "hide mc 5", "set xcore 3 1500", "clear", "xcore 8"};
    ASSERT_EQ(device.writes.size(), expected.size());
    for (size_t i = 0; i < expected.size(); ++i) EXPECT_EQ(device.writes[i].text, expected[i]);
    EXPECT_EQ(dpm.SetDpmHide(&device, DK_SML_DPM_IP_MC, 1u << 16), DK_SML_ERROR_INVALID_INPUT);
}

// The interval file is read and written as a request of the die.
TEST_F(DpmServiceTest, IntervalReadsEveryDomainAndWritesTheAllowedOne) {
    device.Serve(0, DRAVIK_SMI_DPMINTERVAL, "dla: 5\nxcore: 10\n");
    DkSmlDpmInterval interval{};
    ASSERT_EQ(dpm.GetDpmInterval(&device, &interval), DK_SML_SUCCESS);
    EXPECT_EQ(interval.interval[DK_SML_DPM_IP_DLA], 5u);
    EXPECT_EQ(interval.interval[DK_SML_DPM_IP_XCORE], 10u);

    device.brand = DK_SML_BRAND_DKK_X;
    EXPECT_EQ(dpm.SetDpmInterval(&device, DK_SML_DPM_IP_DLA, 7), DK_SML_ERROR_INVALID_INPUT);
    ASSERT_EQ(dpm.SetDpmInterval(&device, DK_SML_DPM_IP_XCORE, 65535), DK_SML_SUCCESS);
    ASSERT_EQ(device.writes.size(), 1u);  // the refused one wrote nothing
    EXPECT_EQ(device.writes[0].op, DRAVIK_SMI_DPMINTERVAL);
    EXPECT_EQ(device.writes[0].text, "xcore 65535");
    device.brand = DK_SML_BRAND_DKQ;
    ASSERT_EQ(dpm.SetDpmInterval(&device, DK_SML_DPM_IP_DLA, 7), DK_SML_SUCCESS);
    ASSERT_EQ(device.writes.size(), 2u);
    EXPECT_EQ(device.writes[1].text, "dla 7");
    device.brand = DK_SML_BRAND_DKZ;
    EXPECT_EQ(dpm.SetDpmInterval(&device, DK_SML_DPM_IP_DLA, 7), DK_SML_ERROR_NOT_SUPPORTED);
}

TEST_F(DpmServiceTest, IntervalBadTextKeepsTheCallersRecord) {
    DkSmlDpmInterval interval{};
    interval.interval[0] = 42;
    for (const char* text : {"xcore: 70000\n", "xcore: soon\n", "dpm interval\n", ""}) {
        device.Serve(0, DRAVIK_SMI_DPMINTERVAL, text);
        EXPECT_EQ(dpm.GetDpmInterval(&device, &interval), DK_SML_ERROR_SYSFS) << text;
        EXPECT_EQ(interval.interval[0], 42u);
    }
    device.Fail(0, DRAVIK_SMI_DPMINTERVAL, DK_SML_ERROR_NOT_SUPPORTED);
    EXPECT_NE(dpm.GetDpmInterval(&device, &interval), DK_SML_SUCCESS);
}

}  // namespace
}  // namespace dksml::test
