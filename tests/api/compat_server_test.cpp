// The compatibility family on the "server" host: handle lookups, the count
// rule, the exact buffer-length tests and the fixed answers.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "api_host.h"
#include "compat_exports.h"

namespace dksml::test {
namespace {

using namespace std::string_view_literals;

class CompatServerTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { host = MakeHost("server"sv).release(); }
    static void TearDownTestSuite() {
        delete host;
        host = nullptr;
    }
    void SetUp() override { ASSERT_GT(dkSmlGetDeviceCount(), 0u) << "discovery found no device on the server host"; }

    static DkSmlExDevice HandleAt(uint32_t index) {
        DkSmlExDevice handle = nullptr;
        EXPECT_EQ(dkSmlExGetDeviceHandleByIndex(index, &handle), DK_SML_EX_SUCCESS) << index;
        return handle;
    }

    static uint32_t CompatCount() {
        uint32_t count = 0;
        EXPECT_EQ(dkSmlExDeviceGetCount(&count), DK_SML_EX_SUCCESS);
        return count;
    }

    static inline vhost::ScopedHost* host = nullptr;
};

// Without slice mode every die of every physical device is one unit.
TEST_F(CompatServerTest, CountIsTheDiesOfThePhysicalDevices) {
    uint32_t dies = 0;
    for (uint32_t index = 0; index < dkSmlGetDeviceCount(); ++index) {
        uint32_t dieCount = 0;
        ASSERT_EQ(dkSmlGetDeviceDieCount(index, &dieCount), DK_SML_SUCCESS);
        dies += dieCount;
    }
    EXPECT_EQ(CompatCount(), dies);
    uint32_t second = 0;
    EXPECT_EQ(dkSmlExVornDeviceGetCount(&second), DK_SML_EX_SUCCESS);
    EXPECT_EQ(second, dies);
}

TEST_F(CompatServerTest, EveryComputeNumberHasItsOwnHandle) {
    const uint32_t count = CompatCount();
    std::set<DkSmlExDevice> handles;
    for (uint32_t index = 0; index < count; ++index) handles.insert(HandleAt(index));
    EXPECT_EQ(handles.size(), count);
    DkSmlExDevice beyond = nullptr;
    EXPECT_EQ(dkSmlExGetDeviceHandleByIndex(count, &beyond), DK_SML_EX_ERROR_INVALID_ARGUMENT);
}

TEST_F(CompatServerTest, BusIdLookupAcceptsShortFieldsAndRejectsNonHex) {
    DkSmlDeviceInfo info{};
    ASSERT_EQ(dkSmlGetDeviceInfo(0, &info), DK_SML_SUCCESS);
    const std::string canonical = info.bdfId;
    DkSmlExDevice full = nullptr;
    ASSERT_EQ(dkSmlExGetDeviceHandleByPciBusId(canonical.c_str(), &full), DK_SML_EX_SUCCESS);

    // "0000:1b:00.0" -> "0:1b:0.0"
    const std::string bus = canonical.substr(5, 2);
    const std::string shortForm = "0:" + bus + ":0." + canonical.substr(11);
    DkSmlExDevice shortHandle = nullptr;
    EXPECT_EQ(dkSmlExGetDeviceHandleByPciBusId(shortForm.c_str(), &shortHandle), DK_SML_EX_SUCCESS) << shortForm;
    EXPECT_EQ(shortHandle, full);

    DkSmlExDevice none = nullptr;
    EXPECT_EQ(dkSmlExGetDeviceHandleByPciBusId(("zz" + canonical.substr(4)).c_str(), &none),
              DK_SML_EX_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(dkSmlExGetDeviceHandleByPciBusId("0000:ff:1f.7", &none), DK_SML_EX_ERROR_INVALID_ARGUMENT);
}

TEST_F(CompatServerTest, UuidLookupFindsDieZeroOfTheDevice) {
    const DkSmlExDevice first = HandleAt(0);
    char uuid[DK_SML_EX_DEVICE_UUID_BUFFER_SIZE] = {};
    ASSERT_EQ(dkSmlExDeviceGetUUID(first, uuid, sizeof(uuid)), DK_SML_EX_SUCCESS);
    DkSmlExDevice found = nullptr;
    EXPECT_EQ(dkSmlExDeviceGetHandleByUUID(uuid, &found), DK_SML_EX_SUCCESS);
    EXPECT_EQ(found, first);
    EXPECT_EQ(dkSmlExDeviceGetHandleByUUID("GPU-not-a-device", &found), DK_SML_EX_ERROR_INVALID_ARGUMENT);
}

// A buffer exactly as long as the name is accepted (the copy loses its last
// character); one shorter is not.
TEST_F(CompatServerTest, NameLengthTestIsExact) {
    const DkSmlExDevice handle = HandleAt(0);
    char name[DK_SML_EX_DEVICE_NAME_BUFFER_SIZE] = {};
    ASSERT_EQ(dkSmlExDeviceGetName(handle, name, sizeof(name)), DK_SML_EX_SUCCESS);
    const std::string full = name;
    ASSERT_FALSE(full.empty());
    const auto length = static_cast<uint32_t>(full.size());

    char exact[DK_SML_EX_DEVICE_NAME_BUFFER_SIZE];
    std::fill(std::begin(exact), std::end(exact), 'x');
    EXPECT_EQ(dkSmlExDeviceGetName(handle, exact, length), DK_SML_EX_SUCCESS);
    EXPECT_EQ(std::string(exact), full.substr(0, full.size() - 1));
    EXPECT_EQ(exact[length], 'x') << "wrote past the given length";
    EXPECT_EQ(dkSmlExDeviceGetName(handle, exact, length - 1), DK_SML_EX_ERROR_INSUFFICIENT_SIZE);
}

TEST_F(CompatServerTest, UuidNeedsRoomForItsTerminator) {
    const DkSmlExDevice handle = HandleAt(0);
    char uuid[DK_SML_EX_DEVICE_UUID_BUFFER_SIZE] = {};
    ASSERT_EQ(dkSmlExDeviceGetUUID(handle, uuid, sizeof(uuid)), DK_SML_EX_SUCCESS);
    const auto length = static_cast<uint32_t>(std::string(uuid).size());
    char copy[DK_SML_EX_DEVICE_UUID_BUFFER_SIZE] = {};
    EXPECT_EQ(dkSmlExDeviceGetUUID(handle, copy, length), DK_SML_EX_ERROR_INSUFFICIENT_SIZE);
    EXPECT_EQ(dkSmlExDeviceGetUUID(handle, copy, length + 1), DK_SML_EX_SUCCESS);
    EXPECT_STREQ(copy, uuid);
    EXPECT_EQ(dkSmlExDeviceGetUUID(handle, copy, 0), DK_SML_EX_ERROR_INVALID_ARGUMENT);
}

TEST_F(CompatServerTest, PciInfoMatchesTheNativeBusId) {
    DkSmlDeviceInfo info{};
    ASSERT_EQ(dkSmlGetDeviceInfo(0, &info), DK_SML_SUCCESS);
    DkSmlExDevice handle = nullptr;
    ASSERT_EQ(dkSmlExGetDeviceHandleByPciBusId(info.bdfId, &handle), DK_SML_EX_SUCCESS);
    DkSmlExPciInfo pci{};
    ASSERT_EQ(dkSmlExDeviceGetPciInfo(handle, &pci), DK_SML_EX_SUCCESS);
    EXPECT_STREQ(pci.busId, info.bdfId);
    EXPECT_EQ(pci.bus, std::stoul(std::string(info.bdfId).substr(5, 2), nullptr, 16));
}

TEST_F(CompatServerTest, FixedAnswers) {
    const DkSmlExDevice handle = HandleAt(0);
    int32_t major = 0;
    int32_t minor = -1;
    EXPECT_EQ(dkSmlExDeviceGetComputeCapability(handle, &major, &minor), DK_SML_EX_SUCCESS);
    EXPECT_EQ(major, 9);
    EXPECT_EQ(minor, 0);
    EXPECT_EQ(dkSmlExDeviceResetApplicationsClocks(handle), DK_SML_EX_SUCCESS);
    EXPECT_EQ(dkSmlExDeviceSetAutoBoostedClocksEnabled(handle, DK_SML_EX_FEATURE_ENABLED),
              DK_SML_EX_ERROR_NOT_SUPPORTED);
    DkSmlExEnableState enabled = DK_SML_EX_FEATURE_ENABLED;
    DkSmlExEnableState byDefault = DK_SML_EX_FEATURE_ENABLED;
    EXPECT_EQ(dkSmlExDeviceGetAutoBoostedClocksEnabled(handle, &enabled, &byDefault), DK_SML_EX_SUCCESS);
    EXPECT_EQ(enabled, DK_SML_EX_FEATURE_DISABLED);
    EXPECT_EQ(byDefault, DK_SML_EX_FEATURE_DISABLED);
}

TEST_F(CompatServerTest, P2PStatusRefusesTheUnknownCapability) {
    const DkSmlExDevice first = HandleAt(0);
    const DkSmlExDevice second = HandleAt(CompatCount() - 1);
    DkSmlExGpuP2PStatus status = DK_SML_EX_P2P_STATUS_UNKNOWN;
    EXPECT_EQ(dkSmlExDeviceGetP2PStatus(first, second, DK_SML_EX_P2P_CAPS_INDEX_UNKNOWN, &status),
              DK_SML_EX_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(dkSmlExDeviceGetP2PStatus(first, second, DK_SML_EX_P2P_CAPS_INDEX_WRITE, &status), DK_SML_EX_SUCCESS);
    EXPECT_EQ(status, DK_SML_EX_P2P_STATUS_OK);
}

TEST_F(CompatServerTest, UnservedSensorsAndKindsAreNotSupported) {
    const DkSmlExDevice handle = HandleAt(0);
    uint32_t value = 0;
    EXPECT_EQ(dkSmlExDeviceGetTemperature(handle, static_cast<DkSmlExTemperatureSensors>(1), &value),
              DK_SML_EX_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(dkSmlExDeviceGetTemperatureThreshold(handle, DK_SML_EX_TEMPERATURE_THRESHOLD_SLOWDOWN, &value),
              DK_SML_EX_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(dkSmlExDeviceGetFanSpeed_v2(handle, 1, &value), DK_SML_EX_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(dkSmlExGetPcieThroughput(handle, static_cast<DkSmlExPcieUtilCounter>(2), &value),
              DK_SML_EX_ERROR_NOT_SUPPORTED);
}

// The clock type is looked at only after the die's clocks were read.
TEST_F(CompatServerTest, ClockInfoServesTypesOneToThree) {
    const DkSmlExDevice handle = HandleAt(0);
    uint32_t clock = 0;
    EXPECT_EQ(dkSmlExDeviceGetClockInfo(handle, DK_SML_EX_CLOCK_GRAPHICS, &clock), DK_SML_EX_ERROR_NOT_SUPPORTED);
    DkSmlClocksFreqForAll native{};
    ASSERT_EQ(dkSmlGetClocks(0, 0, &native), DK_SML_SUCCESS);
    ASSERT_EQ(dkSmlExDeviceGetClockInfo(handle, DK_SML_EX_CLOCK_SM, &clock), DK_SML_EX_SUCCESS);
    EXPECT_EQ(clock, native.xcore.freq[0]);
    ASSERT_EQ(dkSmlExDeviceGetClockInfo(handle, DK_SML_EX_CLOCK_MEM, &clock), DK_SML_EX_SUCCESS);
    EXPECT_EQ(clock, native.mc.freq[0]);
}

TEST_F(CompatServerTest, TemperatureIsTheDieHotSpotInHundredths) {
    const DkSmlExDevice handle = HandleAt(0);
    int32_t hotspot = 0;
    ASSERT_EQ(dkSmlGetDieTemperatureInfo(0, 0, DK_SML_TEMPERATURE_HOTSPOT, &hotspot), DK_SML_SUCCESS);
    uint32_t value = 12345;
    ASSERT_EQ(dkSmlExDeviceGetTemperature(handle, DK_SML_EX_TEMPERATURE_GPU, &value), DK_SML_EX_SUCCESS);
    EXPECT_EQ(value, static_cast<uint32_t>(hotspot / 100));
}

TEST_F(CompatServerTest, ValidHandleWithNullOutputIsStillAnInvalidArgument) {
    const DkSmlExDevice handle = HandleAt(0);
    for (const CompatExport& entry : CompatExports()) {
        if (!entry.takesPointer) continue;
        CompatOutputs outputs;
        EXPECT_EQ(entry.call(outputs, handle, true), DK_SML_EX_ERROR_INVALID_ARGUMENT) << entry.name;
    }
}

}  // namespace
}  // namespace dksml::test
