// Devices that are found but cannot be served: numbering and reasons.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "core/dk_system_manager.h"
#include "discovery_host.h"

namespace dksml::test {
namespace {

DkSmlLimitedDeviceInfo LimitedInfoOf(uint32_t index) {
    DkSmlLimitedDeviceInfo info{};
    EXPECT_EQ(dkSmlGetLimitedDeviceInfo(index, &info), DK_SML_SUCCESS) << "device " << index;
    return info;
}

// The server's limited device (the DKK1 at d8:00.0, which lacks
// "pcipowerstate"), its number and its reason are pinned by the golden
// transcripts, as is every GPU of the host without the driver; its state is
// not.
// The usable devices report no reason; without a module list the reason
// cannot be told.
TEST(LimitedDevices, LimitedDeviceIsInactive) {
    auto host = Discovered("server");
    ASSERT_EQ(LimitedIndices(), std::vector<uint32_t>{6});
    int32_t state = 7;
    EXPECT_EQ(dkSmlGetDeviceState(6, &state), DK_SML_SUCCESS);
    EXPECT_EQ(state, 0);
    for (uint32_t index : {0u, 2u, 100u}) {
        DkSmlDeviceUnavailableReasonInfo reason{};
        reason.reason = 55;
        reason.reasonText[0] = 'x';
        ASSERT_EQ(dkSmlGetDeviceUnavailableReason(index, &reason), DK_SML_SUCCESS);
        EXPECT_EQ(reason.reason, 0u);
        EXPECT_STREQ(reason.reasonText, "");
    }
    DkSmlDeviceUnavailableReasonInfo reason{};
    EXPECT_EQ(dkSmlGetDeviceUnavailableReason(7, &reason), DK_SML_ERROR_DEVICE_NOT_AVAILABLE);
    host->Remove("/proc/modules");
    EXPECT_EQ(dkSmlGetDeviceUnavailableReason(6, &reason), DK_SML_ERROR_SYSFS);
}

TEST(LimitedDevices, UnreadablePowerStateFileIsInaccessibleSysfs) {
    vhost::ScopedHost host("server");
    // A directory in the file's place: unreadable for root as well.
    host.Remove(SmiFile("0000:1c:00.0", "pcipowerstate"));
    host.WriteFile(SmiFile("0000:1c:00.0", "pcipowerstate/placeholder"), "");
    ASSERT_EQ(dkSmlInitWithFlags(1), DK_SML_SUCCESS);
    EXPECT_EQ(dkSmlGetDeviceCount(), 5u);
    EXPECT_STREQ(InfoOf(1).bdfId, "0000:1e:00.0");  // the rest move up
    ASSERT_EQ(LimitedIndices(), (std::vector<uint32_t>{5, 6}));
    EXPECT_STREQ(LimitedInfoOf(5).bdfId, "0000:1c:00.0");
    EXPECT_EQ(LimitedInfoOf(5).vendorId, 0x1e28u);
    DkSmlDeviceUnavailableReasonInfo reason = ReasonOf(5);
    EXPECT_EQ(reason.reason, 102u);
    EXPECT_STREQ(reason.reasonText, "Dravik Sysfs File Unaccessible");
}

TEST(LimitedDevices, PhysicalFunctionWithoutLayoutNode) {
    vhost::ScopedHost host("server");
    host.Remove(LayoutNodeOf(host, "0000:1b:00.0"));
    ASSERT_EQ(dkSmlInitWithFlags(1), DK_SML_SUCCESS);
    EXPECT_EQ(dkSmlGetDeviceCount(), 5u);
    ASSERT_EQ(LimitedIndices(), (std::vector<uint32_t>{5, 6}));
    EXPECT_STREQ(LimitedInfoOf(5).bdfId, "0000:1b:00.0");
    EXPECT_EQ(ReasonOf(5).reason, 101u);
    uint32_t dies = 0;
    EXPECT_EQ(DkSystemManager::GetInstance().GetLimitedDeviceDieCount(5, &dies), DK_SML_SUCCESS);
    EXPECT_EQ(dies, 2u);
    // The driver is loaded and readable but published no node: it refused the dies.
    DkSmlDeviceUnavailableReasonInfo die{};
    EXPECT_EQ(DkSystemManager::GetInstance().GetLimitedDieUnavailableReason(5, 1, &die), DK_SML_SUCCESS);
    EXPECT_EQ(die.reason, 103u);
    EXPECT_STREQ(die.reasonText, "Driver And Vbios Compatibility Check Failed");
    EXPECT_EQ(DkSystemManager::GetInstance().GetLimitedDieUnavailableReason(5, 2, &die),
              DK_SML_ERROR_INVALID_DIE_ID);
}

TEST(LimitedDevices, VirtualFunctionsKeepTheirOwnNumbering) {
    vhost::ScopedHost host("server");
    host.WriteFile(SmiFile("0000:1e:00.1", "showvendorid"), "");  // no line
    ASSERT_EQ(dkSmlInitWithFlags(1), DK_SML_SUCCESS);
    EXPECT_EQ(dkSmlGetPfDeviceCount(), 1u);
    EXPECT_STREQ(InfoOf(100).bdfId, "0000:1e:00.2");
    ASSERT_EQ(LimitedIndices(), (std::vector<uint32_t>{6, 101}));
    DkSmlLimitedDeviceInfo vf = LimitedInfoOf(101);
    EXPECT_STREQ(vf.bdfId, "0000:1e:00.1");
    EXPECT_EQ(vf.isVf, 1u);
    uint32_t vfs[4] = {};
    uint32_t count = 4;
    ASSERT_EQ(dkSmlGetVirtualDevicesByPhysicalId(2, &count, vfs), DK_SML_SUCCESS);
    EXPECT_EQ(std::vector<uint32_t>(vfs, vfs + count), std::vector<uint32_t>{100});
}

TEST(LimitedDevices, ListFollowsTheCountRule) {
    vhost::ScopedHost host("no-driver");
    dkSmlInitWithFlags(1);
    uint32_t indices[1] = {};
    uint32_t count = 1;
    EXPECT_EQ(dkSmlGetAllLimitedDevices(&count, indices), DK_SML_ERROR_INSUFFICIENT_SIZE);
    EXPECT_EQ(count, 2u);
    EXPECT_EQ(dkSmlGetAllLimitedDevices(nullptr, indices), DK_SML_ERROR_INVALID_INPUT);
    DkSmlLimitedDeviceInfo info{};
    EXPECT_EQ(dkSmlGetLimitedDeviceInfo(7, &info), DK_SML_ERROR_DEVICE_NOT_AVAILABLE);
}

}  // namespace
}  // namespace dksml::test
