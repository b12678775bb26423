// The clock, throttle, temperature and fan exports on the "server" virtual
// host, checked against the attribute files the host wrote.
#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "dksml.h"
#include "vhost/dk_virtual_host.h"

namespace dksml::test {
namespace {

constexpr uint32_t c_makerVendor = 0x1e27;
constexpr uint32_t c_unknownIndex = 4242;

// Numbers of the first line that starts with `label` + ":".
std::optional<std::vector<long long>> LineValues(const std::string& text, const std::string& label) {
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind(label + ":", 0) != 0) continue;
        std::istringstream numbers(line.substr(label.size() + 1));
        std::vector<long long> values;
        for (long long v; numbers >> v;) values.push_back(v);
        return values;
    }
    return std::nullopt;
}

struct Gpu {
    uint32_t index;
    std::string bdf;
    uint32_t dies;
    uint32_t vendor;
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
            const std::string bdf = info.bdfId;
            const uint32_t vendor = std::stoul(host->ReadFile("/sys/bus/pci/devices/" + bdf + "/vendor"), nullptr, 16);
            gpus.push_back({index, bdf, dies, vendor});
        }
    }
    static void TearDownTestSuite() {
        gpus.clear();
        delete host;
        host = nullptr;
    }
    void SetUp() override { ASSERT_FALSE(gpus.empty()) << "discovery found no device on the server host"; }

    static std::string Attribute(const Gpu& gpu, uint32_t die, const std::string& name) {
        return host->ReadFile("/sys/bus/pci/devices/" + gpu.bdf + (die == 0 ? "/smi/" : "/smi1/") + name);
    }

    static const Gpu* FindGpu(bool (*wanted)(const Gpu&)) {
        auto found = std::find_if(gpus.begin(), gpus.end(), wanted);
        return found == gpus.end() ? nullptr : &*found;
    }

    static inline vhost::ScopedHost* host = nullptr;
    static inline std::vector<Gpu> gpus;
};

TEST_F(TelemetryApiTest, FrameChecksPointersThenIndexThenDie) {
    const Gpu& gpu = gpus.front();
    DkSmlClocksFreqForAll clocks{};
    uint64_t mask = 0;
    int32_t value = 0;
    uint32_t rpm = 0, pwm = 0;

    EXPECT_EQ(dkSmlGetClocks(c_unknownIndex, 0, nullptr), DK_SML_ERROR_INVALID_INPUT);
    EXPECT_EQ(dkSmlGetCurrentClocksThrottleReason(c_unknownIndex, 0, nullptr), DK_SML_ERROR_INVALID_INPUT);
    EXPECT_EQ(dkSmlGetTemperatureInfo(c_unknownIndex, DK_SML_TEMPERATURE_SOC, nullptr), DK_SML_ERROR_INVALID_INPUT);
    EXPECT_EQ(dkSmlGetDieTemperatureInfo(c_unknownIndex, 9, DK_SML_TEMPERATURE_SOC, nullptr),
              DK_SML_ERROR_INVALID_INPUT);
    EXPECT_EQ(dkSmlGetFanSpeedInfo(c_unknownIndex, &rpm, nullptr), DK_SML_ERROR_INVALID_INPUT);

    EXPECT_EQ(dkSmlGetClocks(c_unknownIndex, 0, &clocks), DK_SML_ERROR_DEVICE_NOT_AVAILABLE);
    EXPECT_EQ(dkSmlGetCurrentClocksThrottleReason(c_unknownIndex, DK_SML_DIE_ALL, &mask),
              DK_SML_ERROR_DEVICE_NOT_AVAILABLE);
    EXPECT_EQ(dkSmlGetTemperatureInfo(c_unknownIndex, DK_SML_TEMPERATURE_SOC, &value),
              DK_SML_ERROR_DEVICE_NOT_AVAILABLE);
    EXPECT_EQ(dkSmlGetFanSpeedInfo(c_unknownIndex, &rpm, &pwm), DK_SML_ERROR_DEVICE_NOT_AVAILABLE);

    EXPECT_EQ(dkSmlGetClocks(gpu.index, gpu.dies, &clocks), DK_SML_ERROR_INVALID_DIE_ID);
    EXPECT_EQ(dkSmlGetCurrentClocksThrottleReason(gpu.index, gpu.dies, &mask), DK_SML_ERROR_INVALID_DIE_ID);
    EXPECT_EQ(dkSmlGetDieTemperatureInfo(gpu.index, gpu.dies, DK_SML_TEMPERATURE_SOC, &value),
              DK_SML_ERROR_INVALID_DIE_ID);
    EXPECT_EQ(dkSmlGetTemperatureInfo(gpu.index, static_cast<DkSmlTemperatureSensors>(5), &value),
              DK_SML_ERROR_INVALID_INPUT);
}

TEST_F(TelemetryApiTest, ClocksMatchShowclocksWithTheVendorOffset) {
    ASSERT_NE(FindGpu([](const Gpu& g) { return g.vendor != c_makerVendor; }), nullptr)
        << "the server profile carries a partner board";
    for (const Gpu& gpu : gpus) {
        SCOPED_TRACE(gpu.bdf);
        for (uint32_t die : {DK_SML_DIE_ALL, gpu.dies - 1}) {
            DkSmlClocksFreqForAll clocks{};
            ASSERT_EQ(dkSmlGetClocks(gpu.index, die, &clocks), DK_SML_SUCCESS);
            const std::string text = Attribute(gpu, die == DK_SML_DIE_ALL ? 0 : die, "showclocks");
            const uint32_t offset = gpu.vendor == c_makerVendor ? 0 : gpu.vendor % 10 + 5;

            const auto csc = LineValues(text, "csc clock");
            ASSERT_TRUE(csc.has_value());
            ASSERT_EQ(clocks.csc.count, csc->size());
            EXPECT_EQ(clocks.csc.freq[0], csc->front() + offset);

            const auto dla = LineValues(text, "dla clock");
            ASSERT_EQ(clocks.dla.count, dla ? dla->size() : 0u);
            if (dla) {
                EXPECT_EQ(clocks.dla.freq[0], dla->front());  // never offset
            }
        }
    }
}

TEST_F(TelemetryApiTest, ThrottleReasonOfTheDeviceIsTheOrOfItsDies) {
    for (const Gpu& gpu : gpus) {
        SCOPED_TRACE(gpu.bdf);
        uint64_t expected = 0;
        for (uint32_t die = 0; die < gpu.dies; ++die) {
            uint64_t dieMask = 0;
            ASSERT_EQ(dkSmlGetCurrentClocksThrottleReason(gpu.index, die, &dieMask), DK_SML_SUCCESS);
            const auto fileMask = LineValues(Attribute(gpu, die, "pmdecsrc"), "pmdecsrc");
            ASSERT_TRUE(fileMask.has_value());
            EXPECT_EQ(dieMask, static_cast<uint64_t>(fileMask->front()));
            expected |= dieMask;
        }
        uint64_t mask = 0;
        ASSERT_EQ(dkSmlGetCurrentClocksThrottleReason(gpu.index, DK_SML_DIE_ALL, &mask), DK_SML_SUCCESS);
        EXPECT_EQ(mask, expected);
    }
}

TEST_F(TelemetryApiTest, TemperaturesMatchShowtemp) {
    const Gpu* twoDie = FindGpu([](const Gpu& g) { return g.dies == 2; });
    ASSERT_NE(twoDie, nullptr);
    for (const Gpu& gpu : gpus) {
        SCOPED_TRACE(gpu.bdf);
        long long hottest = LineValues(Attribute(gpu, 0, "showtemp"), "hotspot")->front();
        for (uint32_t die = 1; die < gpu.dies; ++die) {
            hottest = std::max(hottest, LineValues(Attribute(gpu, die, "showtemp"), "hotspot")->front());
        }
        int32_t value = 0;
        ASSERT_EQ(dkSmlGetTemperatureInfo(gpu.index, DK_SML_TEMPERATURE_HOTSPOT, &value), DK_SML_SUCCESS);
        EXPECT_EQ(value, hottest);

        const uint32_t lastDie = gpu.dies - 1;
        ASSERT_EQ(dkSmlGetDieTemperatureInfo(gpu.index, lastDie, DK_SML_TEMPERATURE_SOC, &value), DK_SML_SUCCESS);
        EXPECT_EQ(value, LineValues(Attribute(gpu, lastDie, "showtemp"), "soc")->front());

        // The SGM reading comes from the SGM452 chip or, on the other board
        // variant, from the second TMP435's local sensor.
        const std::string text = Attribute(gpu, 0, "showtemp");
        const auto sgm = LineValues(text, "sgm452") ? LineValues(text, "sgm452") : LineValues(text, "tmp435_u2_local");
        ASSERT_TRUE(sgm.has_value());
        ASSERT_EQ(dkSmlGetDieTemperatureInfo(gpu.index, 0, DK_SML_TEMPERATURE_SGM, &value), DK_SML_SUCCESS);
        EXPECT_EQ(value, sgm->front());
    }
}

TEST_F(TelemetryApiTest, FanMatchesFanCtrlOfDieZero) {
    for (const Gpu& gpu : gpus) {
        SCOPED_TRACE(gpu.bdf);
        const std::string text = Attribute(gpu, 0, "fan_ctrl");
        uint32_t rpm = 0, pwm = 0;
        const DkSmlReturn result = dkSmlGetFanSpeedInfo(gpu.index, &rpm, &pwm);
        if (text.empty()) {
            EXPECT_NE(result, DK_SML_SUCCESS);
            continue;
        }
        ASSERT_EQ(result, DK_SML_SUCCESS);
        EXPECT_EQ(rpm, LineValues(text, "fan_rpm")->front());
        EXPECT_EQ(pwm, LineValues(text, "fan_pwm")->front());
    }
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
