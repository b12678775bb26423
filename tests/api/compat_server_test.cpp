// The compatibility family on the "server" host: refused handles and outputs,
// the exact name-length test and the fixed answers. Handle numbering and
// lookups are in the discovery tests.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "api_host.h"
#include "support/dk_server_suite.h"

namespace dksml::test {
namespace {

// Every per-handle compatibility export as a table entry, callable with any
// handle and with null or valid outputs.
struct CompatExport {
    const char* name;
    bool takesPointer;
    std::function<DkSmlExReturn(TableOutputs&, DkSmlExDevice, bool null)> call;
};

#define DK_COMPAT(name, takesPointer, body)                                                             \
    CompatExport {                                                                                      \
        #name, takesPointer, [](TableOutputs& o, DkSmlExDevice h, bool n) -> DkSmlExReturn {            \
            (void)o;                                                                                    \
            (void)n;                                                                                    \
            return body;                                                                                \
        }                                                                                               \
    }

const std::vector<CompatExport>& CompatExports() {
    static const std::vector<CompatExport> exports = {
        DK_COMPAT(dkSmlExDeviceGetName, true, dkSmlExDeviceGetName(h, o.Any(n), DK_SML_EX_DEVICE_NAME_BUFFER_SIZE)),
        DK_COMPAT(dkSmlExDeviceGetUUID, true, dkSmlExDeviceGetUUID(h, o.Any(n), DK_SML_EX_DEVICE_UUID_BUFFER_SIZE)),
        DK_COMPAT(dkSmlExDeviceGetPciInfo, true, dkSmlExDeviceGetPciInfo(h, o.Any(n))),
        DK_COMPAT(dkSmlExDeviceGetMinorNumber, true, dkSmlExDeviceGetMinorNumber(h, P(n, o.count))),
        DK_COMPAT(dkSmlExDeviceGetComputeCapability, true, dkSmlExDeviceGetComputeCapability(h, o.Any(n), o.Any(n))),
        DK_COMPAT(dkSmlExDeviceGetTemperature, true, dkSmlExDeviceGetTemperature(h, DK_SML_EX_TEMPERATURE_GPU, P(n, o.count))),
        DK_COMPAT(dkSmlExDeviceGetTemperatureThreshold, true, dkSmlExDeviceGetTemperatureThreshold(h, DK_SML_EX_TEMPERATURE_THRESHOLD_SHUTDOWN, P(n, o.count))),
        DK_COMPAT(dkSmlExDeviceGetClockInfo, true, dkSmlExDeviceGetClockInfo(h, DK_SML_EX_CLOCK_SM, P(n, o.count))),
        DK_COMPAT(dkSmlExDeviceGetClock, true, dkSmlExDeviceGetClock(h, DK_SML_EX_CLOCK_MEM, DK_SML_EX_CLOCK_ID_CURRENT, P(n, o.count))),
        DK_COMPAT(dkSmlExDeviceGetApplicationsClock, true, dkSmlExDeviceGetApplicationsClock(h, DK_SML_EX_CLOCK_SM, P(n, o.count))),
        DK_COMPAT(dkSmlExDeviceGetSupportedMemoryClocks, true, dkSmlExDeviceGetSupportedMemoryClocks(h, P(n, o.count), o.Any(n))),
        DK_COMPAT(dkSmlExDeviceGetSupportedGraphicsClocks, true, dkSmlExDeviceGetSupportedGraphicsClocks(h, 0, P(n, o.count), o.Any(n))),
        DK_COMPAT(dkSmlExDeviceGetSupportedGraphicsClocks_v2, true, dkSmlExDeviceGetSupportedGraphicsClocks_v2(h, 0, P(n, o.count), o.Any(n))),
        DK_COMPAT(dkSmlExDeviceSetApplicationsClocks, false, dkSmlExDeviceSetApplicationsClocks(h, 0, 1000)),
        DK_COMPAT(dkSmlExDeviceResetApplicationsClocks, false, dkSmlExDeviceResetApplicationsClocks(h)),
        DK_COMPAT(dkSmlExDeviceGetPerformanceState, true, dkSmlExDeviceGetPerformanceState(h, o.Any(n))),
        DK_COMPAT(dkSmlExDeviceGetAutoBoostedClocksEnabled, true, dkSmlExDeviceGetAutoBoostedClocksEnabled(h, o.Any(n), o.Any(n))),
        DK_COMPAT(dkSmlExDeviceSetAutoBoostedClocksEnabled, false, dkSmlExDeviceSetAutoBoostedClocksEnabled(h, DK_SML_EX_FEATURE_ENABLED)),
        DK_COMPAT(dkSmlExDeviceGetSupportedClocksThrottleReasons, true, dkSmlExDeviceGetSupportedClocksThrottleReasons(h, o.Any(n))),
        DK_COMPAT(dkSmlExDeviceGetCurrentClocksThrottleReasons, true, dkSmlExDeviceGetCurrentClocksThrottleReasons(h, o.Any(n))),
        DK_COMPAT(dkSmlExGetPowerUsage, true, dkSmlExGetPowerUsage(h, P(n, o.count))),
        DK_COMPAT(dkSmlExGetPowerManagementLimit, true, dkSmlExGetPowerManagementLimit(h, P(n, o.count))),
        DK_COMPAT(dkSmlExDeviceGetEnforcedPowerLimit, true, dkSmlExDeviceGetEnforcedPowerLimit(h, P(n, o.count))),
        DK_COMPAT(dkSmlExDeviceGetUtilization, true, dkSmlExDeviceGetUtilization(h, o.Any(n))),
        DK_COMPAT(dkSmlExDeviceGetMemoryInfo, true, dkSmlExDeviceGetMemoryInfo(h, o.Any(n))),
        DK_COMPAT(dkSmlExDeviceGetCurrPcieLinkWidth, true, dkSmlExDeviceGetCurrPcieLinkWidth(h, P(n, o.count))),
        DK_COMPAT(dkSmlExGetMaxPcieLinkWidth, true, dkSmlExGetMaxPcieLinkWidth(h, P(n, o.count))),
        DK_COMPAT(dkSmlExGetPcieThroughput, true, dkSmlExGetPcieThroughput(h, DK_SML_EX_PCIE_UTIL_TX_BYTES, P(n, o.count))),
        DK_COMPAT(dkSmlExDeviceGetCpuAffinity, true, dkSmlExDeviceGetCpuAffinity(h, 4, o.Any(n))),
        DK_COMPAT(dkSmlExDeviceSetCpuAffinity, false, dkSmlExDeviceSetCpuAffinity(h)),
        DK_COMPAT(dkSmlExDeviceGetTopologyCommonAncestor, true, dkSmlExDeviceGetTopologyCommonAncestor(h, h, o.Any(n))),
        DK_COMPAT(dkSmlExDeviceGetP2PStatus, true, dkSmlExDeviceGetP2PStatus(h, h, DK_SML_EX_P2P_CAPS_INDEX_READ, o.Any(n))),
        DK_COMPAT(dkSmlExDeviceGetDravikLinkState, true, dkSmlExDeviceGetDravikLinkState(h, 0, o.Any(n))),
        DK_COMPAT(dkSmlExDeviceGetDravikLinkRemotePciInfo_v2, true, dkSmlExDeviceGetDravikLinkRemotePciInfo_v2(h, 0, o.Any(n))),
        DK_COMPAT(dkSmlExDeviceGetDravikLinkRemoteDeviceType, true, dkSmlExDeviceGetDravikLinkRemoteDeviceType(h, 0, o.Any(n))),
        DK_COMPAT(dkSmlExDeviceGetFieldValues, true, dkSmlExDeviceGetFieldValues(h, 2, o.Any(n))),
        DK_COMPAT(dkSmlExDeviceGetFanSpeed, true, dkSmlExDeviceGetFanSpeed(h, P(n, o.count))),
        DK_COMPAT(dkSmlExDeviceGetFanSpeed_v2, true, dkSmlExDeviceGetFanSpeed_v2(h, 0, P(n, o.count))),
        DK_COMPAT(dkSmlExDeviceGetComputeRunningProcesses, true, dkSmlExDeviceGetComputeRunningProcesses(h, P(n, o.count), o.Any(n))),
    };
    return exports;
}

#undef DK_COMPAT

class CompatServerTest : public ServerSuite {
protected:
    void SetUp() override {
        ASSERT_GT(dkSmlGetDeviceCount(), 0u) << "discovery found no device on the server host";
        handle = HandleAt(0);
    }
    DkSmlExDevice handle = nullptr;  // die 0 of the first device
};

// Null and forged handles are refused before anything is read, whatever the
// outputs; a valid handle with a null output is refused too. The forged
// handle points at caller memory filled with a pattern that would crash or
// mislead if it were read as a die record.
TEST_F(CompatServerTest, BadHandlesAndNullOutputsAreInvalidArguments) {
    alignas(16) unsigned char forged[256];
    std::memset(forged, 0xA5, sizeof(forged));
    const DkSmlExDevice badHandles[] = {nullptr, reinterpret_cast<DkSmlExDevice>(forged)};
    for (const CompatExport& entry : CompatExports()) {
        for (DkSmlExDevice bad : badHandles) {
            for (bool nullOutputs : {false, true}) {
                TableOutputs outputs;
                EXPECT_EQ(entry.call(outputs, bad, nullOutputs), DK_SML_EX_ERROR_INVALID_ARGUMENT)
                    << entry.name << (bad ? " forged" : " null") << (nullOutputs ? " with null outputs" : "");
            }
        }
        if (!entry.takesPointer) continue;
        TableOutputs outputs;
        EXPECT_EQ(entry.call(outputs, handle, true), DK_SML_EX_ERROR_INVALID_ARGUMENT) << entry.name << " valid";
    }
    for (unsigned char byte : forged) ASSERT_EQ(byte, 0xA5);
    EXPECT_EQ(dkSmlExDeviceGetFieldValues(nullptr, 0, nullptr), DK_SML_EX_ERROR_INVALID_ARGUMENT);
}

// A buffer exactly as long as the name is accepted (the copy loses its last
// character); one shorter is not.
TEST_F(CompatServerTest, NameLengthTestIsExact) {
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

TEST_F(CompatServerTest, FixedAnswers) {
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
    const DkSmlExDevice second = HandleAt(7);  // the last die of the server
    DkSmlExGpuP2PStatus status = DK_SML_EX_P2P_STATUS_UNKNOWN;
    EXPECT_EQ(dkSmlExDeviceGetP2PStatus(handle, second, DK_SML_EX_P2P_CAPS_INDEX_UNKNOWN, &status),
              DK_SML_EX_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(dkSmlExDeviceGetP2PStatus(handle, second, DK_SML_EX_P2P_CAPS_INDEX_WRITE, &status), DK_SML_EX_SUCCESS);
    EXPECT_EQ(status, DK_SML_EX_P2P_STATUS_OK);
}

TEST_F(CompatServerTest, UnservedSensorsAndKindsAreNotSupported) {
    uint32_t value = 0;
    EXPECT_EQ(dkSmlExDeviceGetTemperature(handle, static_cast<DkSmlExTemperatureSensors>(1), &value),
              DK_SML_EX_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(dkSmlExDeviceGetTemperatureThreshold(handle, DK_SML_EX_TEMPERATURE_THRESHOLD_SLOWDOWN, &value),
              DK_SML_EX_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(dkSmlExDeviceGetFanSpeed_v2(handle, 1, &value), DK_SML_EX_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(dkSmlExGetPcieThroughput(handle, static_cast<DkSmlExPcieUtilCounter>(2), &value),
              DK_SML_EX_ERROR_NOT_SUPPORTED);
    // The clock type is looked at only after the die's clocks were read.
    EXPECT_EQ(dkSmlExDeviceGetClockInfo(handle, DK_SML_EX_CLOCK_GRAPHICS, &value), DK_SML_EX_ERROR_NOT_SUPPORTED);
}

// Clocks and the temperature are die 0's native readings: SM is the first
// compute clock, memory the first memory-controller clock, and the
// temperature the hot spot in whole degrees (the native reading is in
// hundredths).
TEST_F(CompatServerTest, ReadingsAreDieZerosNativeOnes) {
    DkSmlClocksFreqForAll native{};
    ASSERT_EQ(dkSmlGetClocks(0, 0, &native), DK_SML_SUCCESS);
    int32_t hotspot = 0;
    ASSERT_EQ(dkSmlGetDieTemperatureInfo(0, 0, DK_SML_TEMPERATURE_HOTSPOT, &hotspot), DK_SML_SUCCESS);
    uint32_t value = 12345;
    ASSERT_EQ(dkSmlExDeviceGetClockInfo(handle, DK_SML_EX_CLOCK_SM, &value), DK_SML_EX_SUCCESS);
    EXPECT_EQ(value, native.xcore.freq[0]);
    ASSERT_EQ(dkSmlExDeviceGetClockInfo(handle, DK_SML_EX_CLOCK_MEM, &value), DK_SML_EX_SUCCESS);
    EXPECT_EQ(value, native.mc.freq[0]);
    ASSERT_EQ(dkSmlExDeviceGetTemperature(handle, DK_SML_EX_TEMPERATURE_GPU, &value), DK_SML_EX_SUCCESS);
    EXPECT_EQ(value, static_cast<uint32_t>(hotspot / 100));
}

}  // namespace
}  // namespace dksml::test
