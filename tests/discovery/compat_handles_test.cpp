// Compatibility handles: one per die of each physical device (each its die's
// record), found by compute-stack number, bus id or UUID. Handles after a
// rediscovery are in the numbering tests.
#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "api/api_host.h"
#include "core/dk_system_manager.h"
#include "discovery_host.h"

namespace dksml::test {
namespace {

TEST(CompatHandles, OneHandlePerDieOfEachPhysicalDevice) {
    auto host = Discovered("server");
    uint32_t count = 0;
    ASSERT_EQ(dkSmlExDeviceGetCount(&count), DK_SML_EX_SUCCESS);
    EXPECT_EQ(count, 8u);  // DKK6-A and DKK6-PL have two dies each
    ASSERT_EQ(dkSmlExVornDeviceGetCount(&count), DK_SML_EX_SUCCESS);
    EXPECT_EQ(count, 8u);
    // Dies of one device share its identity; the next number is the next
    // device. Each handle is its own die's record.
    const struct {
        uint32_t vornId, deviceIndex, die;
        const char* bdf;
    } rows[] = {{0, 0, 0, "0000:1b:00.0"}, {1, 0, 1, "0000:1b:00.0"}, {2, 1, 0, "0000:1c:00.0"},
                {3, 2, 0, "0000:1e:00.0"}, {4, 3, 0, "0000:af:00.0"}, {5, 3, 1, "0000:af:00.0"},
                {6, 4, 0, "0000:b0:00.0"}, {7, 5, 0, "0000:e1:00.0"}};
    auto& manager = DkSystemManager::GetInstance();
    for (const auto& row : rows) {
        SCOPED_TRACE(row.vornId);
        const DkSmlExDevice handle = HandleAt(row.vornId);
        const DkDieInfo* die = manager.GetDieByVornId(row.vornId);
        ASSERT_NE(die, nullptr);
        EXPECT_EQ(die->device->GetDeviceId(), row.deviceIndex);
        EXPECT_EQ(die->dieIndex, row.die);
        EXPECT_EQ(manager.FindDieByHandle(handle), die);
        DkSmlExPciInfo pci{};
        ASSERT_EQ(dkSmlExDeviceGetPciInfo(handle, &pci), DK_SML_EX_SUCCESS);
        EXPECT_STREQ(pci.busId, row.bdf);
        EXPECT_EQ(pci.bus, std::stoul(std::string(row.bdf).substr(5, 2), nullptr, 16));
    }
    DkSmlExDevice handle = nullptr;
    EXPECT_EQ(dkSmlExGetDeviceHandleByIndex(8, &handle), DK_SML_EX_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(dkSmlExGetDeviceHandleByIndex(100, &handle), DK_SML_EX_ERROR_INVALID_ARGUMENT);
}

TEST(CompatHandles, BusIdInAnyWidthFindsTheSameHandle) {
    auto host = Discovered("server");
    DkSmlExDevice longForm = nullptr, shortForm = nullptr;
    ASSERT_EQ(dkSmlExGetDeviceHandleByPciBusId("0000:1e:00.0", &longForm), DK_SML_EX_SUCCESS);
    ASSERT_EQ(dkSmlExGetDeviceHandleByPciBusId("0:1e:0.0", &shortForm), DK_SML_EX_SUCCESS);
    EXPECT_EQ(longForm, shortForm);
    EXPECT_EQ(longForm, HandleAt(3));
    DkSmlExDevice handle = nullptr;
    EXPECT_EQ(dkSmlExGetDeviceHandleByPciBusId("zz:1e:00.0", &handle), DK_SML_EX_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(dkSmlExGetDeviceHandleByPciBusId("0000:d8:00.0", &handle), DK_SML_EX_ERROR_INVALID_ARGUMENT);  // limited
}

TEST(CompatHandles, UuidRoundTripAndBufferRule) {
    auto host = Discovered("server");
    DkSmlExDevice handle = HandleAt(2);
    char uuid[DK_SML_UUID_LENGTH] = {};
    ASSERT_EQ(dkSmlExDeviceGetUUID(handle, uuid, sizeof(uuid)), DK_SML_EX_SUCCESS);
    ASSERT_GT(std::strlen(uuid), 0u);
    DkSmlExDevice byUuid = nullptr;
    ASSERT_EQ(dkSmlExDeviceGetHandleByUUID(uuid, &byUuid), DK_SML_EX_SUCCESS);
    EXPECT_EQ(byUuid, handle);
    char exact[DK_SML_UUID_LENGTH] = {};
    const auto length = static_cast<uint32_t>(std::strlen(uuid));
    EXPECT_EQ(dkSmlExDeviceGetUUID(handle, exact, length), DK_SML_EX_ERROR_INSUFFICIENT_SIZE);
    EXPECT_EQ(dkSmlExDeviceGetUUID(handle, exact, 0), DK_SML_EX_ERROR_INVALID_ARGUMENT);
    ASSERT_EQ(dkSmlExDeviceGetUUID(handle, exact, length + 1), DK_SML_EX_SUCCESS);
    EXPECT_STREQ(exact, uuid);
    EXPECT_EQ(dkSmlExDeviceGetHandleByUUID("GPU-not-a-device", &byUuid), DK_SML_EX_ERROR_INVALID_ARGUMENT);
}

}  // namespace
}  // namespace dksml::test
