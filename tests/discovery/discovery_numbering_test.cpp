// Device numbering, virtual-function linking, die records and rediscovery on
// the shipped server, guest, no-driver and empty hosts.
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "api/api_host.h"
#include "core/dk_system_manager.h"
#include "discovery_host.h"

namespace dksml::test {
namespace {

// Which device gets which index, name, brand and die count on each shipped
// host, and the device counts, are pinned by dksmi's golden transcripts.
TEST(ServerDiscovery, IdentityComesFromTheLayoutNode) {
    auto host = Discovered("server");
    DkSmlDeviceInfo info = InfoOf(0);
    EXPECT_EQ(info.gpuId, 48651u);
    const std::string node = LayoutNodeOf(*host, "0000:1b:00.0");  // the UUID is in the transcripts
    EXPECT_EQ(std::to_string(info.nodeId), node.substr(node.rfind('/') + 1));
    uint32_t index = 99;
    EXPECT_TRUE(DkSystemManager::GetInstance().GetDeviceIdByGpuId(55731, index));
    EXPECT_EQ(index, 4u);
    EXPECT_EQ(DkSystemManager::GetInstance().GetGpuIdByDeviceId(1), 51342u);
    EXPECT_EQ(DkSystemManager::GetInstance().GetGpuIdByDeviceId(6), 0u);  // limited
}

// The lists themselves are pinned by the golden transcripts.
TEST(ServerDiscovery, LinksVirtualFunctionsToTheirPhysicalFunction) {
    auto host = Discovered("server");
    uint32_t vfs[4] = {};
    uint32_t count = 1;
    EXPECT_EQ(dkSmlGetVirtualDevicesByPhysicalId(2, &count, vfs), DK_SML_ERROR_INSUFFICIENT_SIZE);
    EXPECT_EQ(count, 2u);

    auto& manager = DkSystemManager::GetInstance();
    IDkDevice* ancestor = manager.GetPfAncestor(manager.GetDeviceById(101).get());
    ASSERT_NE(ancestor, nullptr);
    EXPECT_EQ(ancestor->GetDeviceId(), 2u);
    EXPECT_EQ(manager.GetDeviceById(101)->GetPfAncestor(), ancestor);
    EXPECT_EQ(manager.GetPfAncestor(manager.GetDeviceById(0).get()), nullptr);
}

// Die records: physical dies take the running die number (each number's
// device and die are checked with the compatibility handles), virtual
// functions their own index.
TEST(ServerDiscovery, NumbersDiesAcrossDevices) {
    auto host = Discovered("server");
    auto& manager = DkSystemManager::GetInstance();
    EXPECT_EQ(manager.GetDieByVornId(8), nullptr);
    EXPECT_EQ(manager.GetDieByVornId(100), nullptr);  // a virtual function has no compute-stack number
    const DkDieInfo* vf = manager.GetDieBySmlId(100);
    ASSERT_NE(vf, nullptr);
    EXPECT_EQ(vf->device->GetBdfId(), "0000:1e:00.1");
    EXPECT_EQ(manager.GetDieBySmlId(3), manager.GetDieByVornId(4));
    EXPECT_EQ(manager.GetDieBySmlId(6), nullptr);  // limited

    DkDieInfo stranger;
    EXPECT_EQ(manager.FindDieByHandle(&stranger), nullptr);
    EXPECT_EQ(manager.FindDieByHandle(nullptr), nullptr);
}

TEST(ServerDiscovery, FindsDevicesByAnySpellingOfTheirBusId) {
    auto host = Discovered("server");
    auto& manager = DkSystemManager::GetInstance();
    const struct {
        const char* text;
        bool found;
        uint32_t index;
    } cases[] = {
        {"0000:1e:00.0", true, 2}, {"0:1e:0.0", true, 2},  {"0000:1E:00.2", true, 101},
        {"0:1b:0.0", true, 0},     {"zz:1e:00.0", false, 0}, {"0000:1e:00.7", false, 0},
        {"", false, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        uint32_t index = 999;
        EXPECT_EQ(manager.GetDeviceIdByBdf(c.text, index), c.found);
        if (c.found) {
            EXPECT_EQ(index, c.index);
        }
    }
}

// Compatibility handles of an earlier pass are refused, even of a device that
// is still there (1c's die); a plain init keeps them.
TEST(ServerDiscovery, RediscoveryRenumbersAndInvalidatesHandles) {
    auto host = Discovered("server");
    auto& manager = DkSystemManager::GetInstance();
    const DkSmlExDevice oldHandle = HandleAt(2);
    char uuid[DK_SML_UUID_LENGTH] = {};

    host->Remove(DevicePath("0000:1b:00.0"));
    EXPECT_EQ(dkSmlInit(), DK_SML_SUCCESS);  // flags 0: no new pass
    EXPECT_EQ(dkSmlGetDeviceCount(), 6u);
    EXPECT_EQ(dkSmlExDeviceGetUUID(oldHandle, uuid, sizeof(uuid)), DK_SML_EX_SUCCESS);

    ASSERT_EQ(dkSmlInitWithFlags(1), DK_SML_SUCCESS);
    EXPECT_EQ(dkSmlGetDeviceCount(), 5u);
    EXPECT_EQ(dkSmlExDeviceGetUUID(oldHandle, uuid, sizeof(uuid)), DK_SML_EX_ERROR_INVALID_ARGUMENT);
    EXPECT_STREQ(InfoOf(0).bdfId, "0000:1c:00.0");
    EXPECT_STREQ(InfoOf(100).bdfId, "0000:1e:00.1");
    EXPECT_EQ(LimitedIndices(), std::vector<uint32_t>{5});
    const DkDieInfo* first = manager.GetDieByVornId(0);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first->device->GetBdfId(), "0000:1c:00.0");
    EXPECT_EQ(manager.FindDieByHandle(HandleAt(0)), first);
    EXPECT_EQ(manager.GetDieByVornId(6), nullptr);  // 1b took its two dies with it
}

// A guest sees only virtual functions: they have die records but no
// compute-stack number.
TEST(GuestDiscovery, VirtualFunctionsHaveNoComputeStackNumber) {
    auto host = Discovered("guest");
    EXPECT_EQ(DkSystemManager::GetInstance().GetDieByVornId(0), nullptr);
    EXPECT_NE(DkSystemManager::GetInstance().GetDieBySmlId(101), nullptr);
}

TEST(EmptyDiscovery, FindsNothingAndStaysUninitialised) {
    {
        vhost::ScopedHost server("server");
        ASSERT_EQ(dkSmlInitWithFlags(1), DK_SML_SUCCESS);
    }
    vhost::ScopedHost host("empty");
    EXPECT_EQ(dkSmlInitWithFlags(1), DK_SML_ERROR_NO_DEVICE);
    EXPECT_EQ(dkSmlGetDeviceCount(), 0u);
    EXPECT_EQ(dkSmlGetPfDeviceCount(), 0u);
    DkSmlDeviceInfo info{};
    EXPECT_EQ(dkSmlGetDeviceInfo(0, &info), DK_SML_ERROR_DEVICE_NOT_AVAILABLE);
    EXPECT_TRUE(LimitedIndices().empty());
    // Not initialised: every init looks again instead of answering from a
    // remembered state.
    EXPECT_EQ(dkSmlInit(), DK_SML_ERROR_NO_DEVICE);
    EXPECT_EQ(dkSmlInit(), DK_SML_ERROR_NO_DEVICE);
    EXPECT_EQ(dkSmlInitWithFlags(7), DK_SML_ERROR_NO_DEVICE);
}

TEST(VendorOverride, AcceptsOnlyTheConfiguredVendor) {
    vhost::ScopedHost host("server");
    host.WriteFile("/opt/smi/etc/vendorid", "0x1e28\n");  // the partner board only
    ASSERT_EQ(dkSmlInitWithFlags(1), DK_SML_SUCCESS);
    EXPECT_EQ(dkSmlGetDeviceCount(), 1u);
    EXPECT_STREQ(InfoOf(0).bdfId, "0000:1c:00.0");
    EXPECT_EQ(dkSmlGetPfDeviceCount(), 0u);
}

}  // namespace
}  // namespace dksml::test
