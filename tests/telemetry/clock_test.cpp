// DkClock against canned "showclocks" and "pmdecsrc" text.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "features/clock/dk_clock.h"
#include "support/dk_fake_device.h"

namespace dksml::test {
namespace {

std::vector<uint32_t> Values(const DkSmlClockFreq& member) {
    return {member.freq, member.freq + std::min<uint32_t>(member.count, DK_SML_CLOCK_MAX_VALUES)};
}

// Every label with distinct values, so a slip between members shows.
constexpr const char* c_allLabels =
    "csc clock: 100\n"
    "dla clock: 200\n"
    "xcore clock: 300 301\n"
    "mc clock: 400\n"
    "mc0 clock: 500\n"
    "mc1 clock: 600\n"
    "vpue clock: 700\n"
    "vpud clock: 800 801 802 803\n"
    "soc clock: 900\n"
    "dnoc clock: 1000\n"
    "gpu clock: 1100\n"
    "ccx clock: 1200\n"
    "xpu clock: 1300\n";

class ClockTest : public ::testing::Test {
protected:
    FakeDevice device;
    DkClock clock;
    DkSmlClocksFreqForAll all{};
};

// An unsupported line is skipped; a line with more than nine values keeps
// its first nine and does not spill into the next member.
TEST_F(ClockTest, FillsMembersFromTheirLabelsAndZeroesTheRest) {
    device.Serve(0, DRAVIK_SMI_SHOWCLOCKS,
                 "csc clock: 800\ngpu clock: not support\nxcore clock: 1 2 3 4 5 6 7 8 9 10 11 12\nmc clock: 77\n");
    ASSERT_EQ(clock.GetClocksFreq(&device, &all), DK_SML_SUCCESS);
    EXPECT_EQ(Values(all.csc), (std::vector<uint32_t>{800}));
    EXPECT_EQ(all.xcore.count, 9u);
    EXPECT_EQ(Values(all.xcore), (std::vector<uint32_t>{1, 2, 3, 4, 5, 6, 7, 8, 9}));
    EXPECT_EQ(Values(all.mc), (std::vector<uint32_t>{77}));
    for (const DkSmlClockFreq* other : {&all.dla, &all.mc0, &all.mc1, &all.vpue, &all.vpud, &all.soc, &all.dnoc,
                                        &all.gpu, &all.ccx, &all.xpu}) {
        EXPECT_EQ(other->count, 0u);
    }
}

TEST_F(ClockTest, PartnerVendorOffsetSkipsDlaMcAndGpu) {
    device.vendorId = 7713;  // ends in 3: offset 8
    device.Serve(0, DRAVIK_SMI_SHOWCLOCKS, c_allLabels);
    ASSERT_EQ(clock.GetClocksFreq(&device, &all), DK_SML_SUCCESS);

    // dla, mc and gpu are never adjusted.
    const std::pair<const DkSmlClockFreq*, std::vector<uint32_t>> expected[] = {
        {&all.csc, {108}},  {&all.xcore, {308, 309}}, {&all.mc0, {508}},
        {&all.mc1, {608}},  {&all.vpue, {708}},       {&all.vpud, {808, 809, 810, 811}},
        {&all.soc, {908}},  {&all.dnoc, {1008}},      {&all.ccx, {1208}},
        {&all.xpu, {1308}}, {&all.dla, {200}},        {&all.mc, {400}},
        {&all.gpu, {1100}},
    };
    for (const auto& [member, values] : expected) EXPECT_EQ(Values(*member), values) << values[0];
}

TEST_F(ClockTest, BadTextAnswersWithAStatus) {
    for (const char* text : {"", "gpu clock: not support\n", "csc clock 800\n", ": 800\n", "\x01\x02\xff\n"}) {
        device.Serve(0, DRAVIK_SMI_SHOWCLOCKS, text);
        EXPECT_EQ(clock.GetClocksFreq(&device, &all), DK_SML_ERROR_SYSFS) << text;
    }
}

TEST_F(ClockTest, VirtualFunctionIsRefusedWithoutDriverAccess) {
    device.isVf = true;
    device.Serve(0, DRAVIK_SMI_SHOWCLOCKS, "csc clock: 800\n");
    device.Serve(0, DRAVIK_SMI_PMDECSRC, "pmdecsrc: 1\n");
    DkSmlClockStatusForAll status{};
    uint32_t count = 9, freqs[9];
    uint64_t mask = 0;
    EXPECT_EQ(clock.GetClocksFreq(&device, &all), DK_SML_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(clock.GetRealClocksFreq(&device, &all, &status), DK_SML_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(clock.GetIpClocksFreq(&device, DK_SML_CLOCK_IP_CSC, &count, freqs), DK_SML_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(clock.GetCurrentClocksThrottleReason(&device, &mask), DK_SML_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(device.fetchCount, 0);
    EXPECT_TRUE(device.writes.empty());
}

// Real clocks ----------------------------------------------------------------

TEST_F(ClockTest, RealClocksSelectTheReportFirstAndFillStates) {
    device.vendorId = 7713;
    device.dieCount = 2;
    device.Serve(1, DRAVIK_SMI_SHOWCLOCKS, "csc clock: 800\ncsc status: 1\nxcore status: 1 0 1\n");
    DkSmlClockStatusForAll status{};
    ASSERT_EQ(clock.GetDieRealClocksFreq(&device, 1, &all, &status), DK_SML_SUCCESS);

    ASSERT_EQ(device.writes.size(), 1u);
    EXPECT_EQ(device.writes[0].die, 1u);
    EXPECT_EQ(device.writes[0].op, DRAVIK_SMI_SHOWCLOCKS);
    EXPECT_EQ(device.writes[0].text, "4");
    EXPECT_EQ(Values(all.csc), (std::vector<uint32_t>{808}));
    // States are the driver's codes: no vendor offset.
    EXPECT_EQ(status.csc.count, 1u);
    EXPECT_EQ(status.csc.status[0], 1u);
    EXPECT_EQ(status.xcore.count, 3u);
    EXPECT_EQ(status.xcore.status[1], 0u);
    EXPECT_EQ(status.gpu.count, 0u);

    // A refused selection stops before anything is read.
    device.writeResult = DK_SML_ERROR_SYSFS_WRITE;
    const int fetches = device.fetchCount;
    EXPECT_EQ(clock.GetRealClocksFreq(&device, &all, &status), DK_SML_ERROR_SYSFS_WRITE);
    EXPECT_EQ(device.fetchCount, fetches);
}

// One IP ---------------------------------------------------------------------

TEST_F(ClockTest, ReadsOneIp) {
    const struct {
        const char* name;
        const char* text;
        DkSmlClockIp ip;
        DkSmlReturn expected;
        std::vector<uint32_t> values;
    } cases[] = {
        {"XpuFeedsVpud", "xpu clock: 1 2 3 4 5 6\n", DK_SML_CLOCK_IP_VPUD, DK_SML_SUCCESS, {2, 3, 4, 5}},
        {"XpuFeedsCcx", "xpu clock: 1 2 3 4 5 6\n", DK_SML_CLOCK_IP_CCX, DK_SML_SUCCESS, {6}},
        {"XpuReplacesOwnLines", "ccx clock: 99\nxpu clock: 1 2 3 4 5 6\n", DK_SML_CLOCK_IP_CCX, DK_SML_SUCCESS, {6}},
        {"XpuWithFiveValues", "xpu clock: 1 2 3 4 5\ncsc clock: 8\n", DK_SML_CLOCK_IP_CSC, DK_SML_ERROR_FAILURE, {}},
        {"LabelFoundAsSubstring", "die0 gpu clock: 1500\n", DK_SML_CLOCK_IP_GPU, DK_SML_SUCCESS, {1500}},
        {"McIsNotMc0", "mc0 clock: 1\n", DK_SML_CLOCK_IP_MC, DK_SML_ERROR_NOT_SUPPORTED, {}},
        {"Absent", "csc clock: 800\n", DK_SML_CLOCK_IP_SOC, DK_SML_ERROR_NOT_SUPPORTED, {}},
    };
    for (const auto& c : cases) {
        device.Serve(0, DRAVIK_SMI_SHOWCLOCKS, c.text);
        uint32_t freqs[16] = {};
        uint32_t count = 16;
        ASSERT_EQ(clock.GetIpClocksFreq(&device, c.ip, &count, freqs), c.expected) << c.name;
        if (c.expected == DK_SML_SUCCESS) {
            EXPECT_EQ(std::vector<uint32_t>(freqs, freqs + count), c.values) << c.name;
        }
    }
}

// The text is walked with a fixed number of values per line; a longer line
// must still report (and copy) every value it holds. A short capacity gets
// the needed count and nothing copied.
TEST_F(ClockTest, IpLineLongerThanTheFixedWalkKeepsEveryValue) {
    std::string line = "dla clock:";
    std::vector<uint32_t> values;
    for (uint32_t i = 1; i <= 40; ++i) {
        line += " " + std::to_string(i);
        values.push_back(i);
    }
    device.Serve(0, DRAVIK_SMI_SHOWCLOCKS, line + "\n");
    uint32_t freqs[48] = {7};
    uint32_t count = 3;
    EXPECT_EQ(clock.GetIpClocksFreq(&device, DK_SML_CLOCK_IP_DLA, &count, freqs), DK_SML_ERROR_INSUFFICIENT_SIZE);
    EXPECT_EQ(count, 40u);
    EXPECT_EQ(freqs[0], 7u);
    count = 48;
    ASSERT_EQ(clock.GetIpClocksFreq(&device, DK_SML_CLOCK_IP_DLA, &count, freqs), DK_SML_SUCCESS);
    EXPECT_EQ(std::vector<uint32_t>(freqs, freqs + count), values);
}

TEST_F(ClockTest, IpVendorOffsetOnlyForTrainingBrands) {
    struct Case {
        DkSmlDeviceBrand brand;
        uint32_t vendorId;
        uint32_t expected;
    };
    for (const Case& c : {Case{DK_SML_BRAND_DKK, 7713, 808}, Case{DK_SML_BRAND_DKK_X, 7713, 808},
                          Case{DK_SML_BRAND_DKQ, 7713, 800}, Case{DK_SML_BRAND_DKZ, 7713, 800},
                          Case{DK_SML_BRAND_DKK, c_makerVendorId, 800}}) {
        FakeDevice dev;
        dev.brand = c.brand;
        dev.vendorId = c.vendorId;
        dev.Serve(0, DRAVIK_SMI_SHOWCLOCKS, "gpu clock: 800\n");
        uint32_t freq = 0, count = 1;
        ASSERT_EQ(clock.GetIpClocksFreq(&dev, DK_SML_CLOCK_IP_GPU, &count, &freq), DK_SML_SUCCESS);
        EXPECT_EQ(freq, c.expected) << "brand " << c.brand << " vendor " << c.vendorId;
    }
}

// Throttle reasons -----------------------------------------------------------

// The driver's mask is the first line's number. The device's mask is the OR
// of its dies'; a failing die ends the OR with its code and what was gathered
// so far.
TEST_F(ClockTest, ThrottleMaskOfADieAndOfTheDevice) {
    const struct {
        const char* text;
        DkSmlReturn expected;
        uint64_t mask;
    } cases[] = {
        {"pmdecsrc: 18\n", DK_SML_SUCCESS, 18},
        {"pmdecsrc: 18446744073709551615\n", DK_SML_SUCCESS, UINT64_MAX},
        {"pmdecsrc: 2\nother: 8\n", DK_SML_SUCCESS, 2},  // only the first line counts
        {"", DK_SML_ERROR_SYSFS, 0},
        {"pmdecsrc: not support\n", DK_SML_ERROR_SYSFS, 0},
    };
    for (const auto& c : cases) {
        device.Serve(0, DRAVIK_SMI_PMDECSRC, c.text);
        uint64_t mask = 0;
        ASSERT_EQ(clock.GetDieCurrentClocksThrottleReason(&device, 0, &mask), c.expected) << c.text;
        if (c.expected == DK_SML_SUCCESS) {
            EXPECT_EQ(mask, c.mask) << c.text;
        }
    }
    device.dieCount = 2;
    device.Serve(0, DRAVIK_SMI_PMDECSRC, "pmdecsrc: 1\n");
    device.Serve(1, DRAVIK_SMI_PMDECSRC, "pmdecsrc: 4\n");
    uint64_t mask = 0;
    ASSERT_EQ(clock.GetCurrentClocksThrottleReason(&device, &mask), DK_SML_SUCCESS);
    EXPECT_EQ(mask, 5u);
    device.Serve(1, DRAVIK_SMI_PMDECSRC, "pmdecsrc: garbage\n");
    mask = 0xff;
    EXPECT_EQ(clock.GetCurrentClocksThrottleReason(&device, &mask), DK_SML_ERROR_SYSFS);
    EXPECT_EQ(mask, 1u);
}

}  // namespace
}  // namespace dksml::test
