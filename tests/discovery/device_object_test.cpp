// The device object on the server host: name sources, brand, ISA version,
// board type, dies, state and real path.
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "core/dk_system_manager.h"
#include "discovery_host.h"

namespace dksml::test {
namespace {

std::shared_ptr<IDkDevice> Device(uint32_t index) { return DkSystemManager::GetInstance().GetDeviceById(index); }

// The driver's card name (cut to the field), else the board table; a site
// override names every device.
TEST(DeviceName, DriverCardNameThenBoardTableThenSiteOverride) {
    vhost::ScopedHost host("server");
    const std::string longName(100, 'n');
    host.WriteFile(SmiFile("0000:1b:00.0", "showcardname"), longName + "\n");
    host.Remove(SmiFile("0000:1c:00.0", "showcardname"));
    host.Remove(SmiFile("0000:1e:00.2", "showcardname"));
    host.WriteFile(SmiFile("0000:b0:00.0", "showcardname"), "");  // no line: falls through
    ASSERT_EQ(dkSmlInitWithFlags(1), DK_SML_SUCCESS);
    DkSmlDeviceInfo info = InfoOf(0);
    EXPECT_EQ(std::strlen(info.deviceName), sizeof(info.deviceName) - 1);
    EXPECT_EQ(Device(0)->GetDeviceName(), longName);
    EXPECT_STREQ(InfoOf(1).deviceName, "DKK6-AL");
    EXPECT_STREQ(InfoOf(101).deviceName, "DKK2 VF");
    EXPECT_STREQ(InfoOf(4).deviceName, "DKK6U");

    host.WriteFile("/opt/smi/etc/chipname", "Lab Board 7\nignored\n");
    ASSERT_EQ(dkSmlInitWithFlags(1), DK_SML_SUCCESS);
    EXPECT_STREQ(InfoOf(0).deviceName, "Lab Board 7");
    EXPECT_STREQ(InfoOf(100).deviceName, "Lab Board 7");
}

// Brand: x-series ISA, then the ISA map, then the device id, else unknown.
TEST(DeviceBrand, IsaVersionOutranksTheDeviceId) {
    vhost::ScopedHost host("server");
    host.WriteFile(SmiFile("0000:1b:00.0", "showisaversion"), "isa version: 5.1\n");  // a DKK6 id
    host.WriteFile(SmiFile("0000:1e:00.0", "showisaversion"), "isa version: 6.2\n");  // a DKK2 id
    host.WriteFile(SmiFile("0000:1c:00.0", "showisaversion"), "isa version: 3.0\n");
    host.WriteFile(SmiFile("0000:af:00.0", "showisaversion"), "isa version: 9.9\n");  // unlisted
    host.WriteFile(SmiFile("0000:b0:00.0", "showisaversion"), "garbage\n");
    host.WriteFile(DevicePath("0000:b0:00.0", "/device"), "0x1777\n");  // not in the product table
    ASSERT_EQ(dkSmlInitWithFlags(1), DK_SML_SUCCESS);
    EXPECT_EQ(InfoOf(0).brand, DK_SML_BRAND_DKK);
    EXPECT_EQ(InfoOf(2).brand, DK_SML_BRAND_DKK_X);
    EXPECT_EQ(InfoOf(1).brand, DK_SML_BRAND_DKQ);
    EXPECT_EQ(InfoOf(3).brand, DK_SML_BRAND_DKK_X);  // from the DKK6-PL id
    EXPECT_EQ(InfoOf(4).brand, DK_SML_BRAND_UNKNOWN);
    DkSmlIsaVersion isa{};
    ASSERT_EQ(dkSmlGetDeviceIsaVersion(1, &isa), DK_SML_SUCCESS);
    EXPECT_EQ(isa.major, 3u);
    EXPECT_EQ(isa.minor, 0u);
    ASSERT_EQ(dkSmlGetDeviceIsaVersion(4, &isa), DK_SML_SUCCESS);
    EXPECT_EQ(isa.major, 0u);
}

// The device object asks the model tables with its own id.
TEST(DeviceModel, PredicatesFollowTheProductOfEachDevice) {
    auto host = Discovered("server");
    EXPECT_TRUE(Device(0)->IsDkMCM());
    EXPECT_FALSE(Device(1)->IsDkMCM());
    EXPECT_TRUE(Device(100)->IsDkk2());  // the virtual function's id counts as its model
    EXPECT_TRUE(Device(4)->IsDkk6u());
    EXPECT_FALSE(Device(4)->IsDkk6());
}

TEST(DeviceBoardType, HexTextByTheTextRule) {
    vhost::ScopedHost host("server");
    host.WriteFile(SmiFile("0000:1e:00.0", "showboardtype"), "board type: 300\n");
    ASSERT_EQ(dkSmlInitWithFlags(1), DK_SML_SUCCESS);
    char text[16] = {};
    uint32_t size = sizeof(text);
    ASSERT_EQ(Device(2)->GetBoardType(&size, text), DK_SML_SUCCESS);
    EXPECT_STREQ(text, "0x12c");
    EXPECT_EQ(size, 6u);
    size = 5;  // exactly the text length: too small for the terminator
    EXPECT_EQ(Device(2)->GetBoardType(&size, text), DK_SML_ERROR_INSUFFICIENT_SIZE);
    EXPECT_EQ(size, 6u);
}

TEST(DeviceDies, DieIdComesFromTheTopologyFile) {
    vhost::ScopedHost host("server");
    host.WriteFile(SmiFile("0000:1c:00.0", "showtopology"), "1 0\ndie_id: 1\n");
    host.WriteFile(SmiFile("0000:af:00.0", "showtopology"), "3 1\n");
    ASSERT_EQ(dkSmlInitWithFlags(1), DK_SML_SUCCESS);
    EXPECT_EQ(Device(1)->GetDieId(), 1u);
    EXPECT_EQ(Device(1)->SetDieId(), DK_SML_SUCCESS);
    EXPECT_EQ(Device(3)->SetDieId(), DK_SML_ERROR_SYSFS);
    host.Remove(SmiFile("0000:1c:00.0", "showtopology"));
    EXPECT_EQ(Device(1)->SetDieId(), DK_SML_ERROR_SYSFS);
    EXPECT_EQ(Device(100)->SetDieId(), DK_SML_ERROR_NOT_SUPPORTED);
}

TEST(DeviceState, HostingPhysicalFunctionIsActiveWithoutReading) {
    auto host = Discovered("server");
    host->WriteFile(LayoutNodeOf(*host, "0000:1b:00.0") + "/active", "0\n");
    host->WriteFile(LayoutNodeOf(*host, "0000:1e:00.0") + "/active", "0\n");
    int32_t state = -1;
    ASSERT_EQ(dkSmlGetDeviceState(0, &state), DK_SML_SUCCESS);
    EXPECT_EQ(state, 0);
    ASSERT_EQ(dkSmlGetDeviceState(2, &state), DK_SML_SUCCESS);
    EXPECT_EQ(state, 1);
    ASSERT_EQ(dkSmlGetDeviceState(1, &state), DK_SML_SUCCESS);
    EXPECT_EQ(state, 1);
    // An inactive node: the driver refused the device's dies.
    DkSmlDeviceUnavailableReasonInfo reason{};
    ASSERT_EQ(Device(0)->GetDieUnavailableReason(1, &reason), DK_SML_SUCCESS);
    EXPECT_EQ(reason.reason, 103u);
    ASSERT_EQ(Device(1)->GetDieUnavailableReason(0, &reason), DK_SML_SUCCESS);
    EXPECT_EQ(reason.reason, 0u);
    EXPECT_EQ(Device(1)->GetDieUnavailableReason(1, &reason), DK_SML_ERROR_INVALID_DIE_ID);
}

TEST(DeviceRealPath, ReportedAsOnARealHost) {
    auto host = Discovered("server");
    char path[256] = {};
    uint32_t size = sizeof(path);
    ASSERT_EQ(dkSmlGetDeviceRealPath(0, path, &size), DK_SML_SUCCESS);
    const std::string real = path;
    EXPECT_EQ(real.rfind("/sys/devices/pci0000:", 0), 0u) << real;
    EXPECT_EQ(real.substr(real.size() - 13), "/0000:1b:00.0");
    EXPECT_EQ(size, real.size() + 1);
    size = static_cast<uint32_t>(real.size());
    EXPECT_EQ(dkSmlGetDeviceRealPath(0, path, &size), DK_SML_ERROR_INSUFFICIENT_SIZE);
    EXPECT_EQ(size, real.size() + 1);
}

TEST(DeviceRenderNodes, CardAndRenderNumbersFromDriByPath) {
    auto host = Discovered("server");
    for (uint32_t index : {0u, 1u, 2u, 100u}) {
        SCOPED_TRACE(index);
        const std::string bdf = Device(index)->GetBdfId();
        const std::string card = std::filesystem::read_symlink(host->Path("/dev/dri/by-path/pci-" + bdf + "-card"));
        EXPECT_EQ("card" + std::to_string(Device(index)->GetCardId()), card.substr(card.rfind('/') + 1));
        EXPECT_EQ(Device(index)->GetRenderId(), Device(index)->GetCardId() + 128);
    }
}

std::vector<uint32_t> BoardIds() {
    std::vector<uint32_t> ids;
    for (uint32_t index : {0u, 1u, 2u, 3u, 4u, 5u, 100u}) ids.push_back(DkSystemManager::GetInstance().GetDeviceBoardId(index));
    return ids;
}

// The server's 1b and 1c share one board serial; every other PF has its own,
// and virtual functions have none.
TEST(DeviceBoard, EqualSerialsOfNeighboursShareABoard) {
    auto host = Discovered("server");
    EXPECT_EQ(BoardIds(), (std::vector<uint32_t>{0, 0, 1, 2, 3, 4, UINT32_MAX}));
    DkBoardInfo board;
    ASSERT_EQ(DkSystemManager::GetInstance().GetDeviceBoardInfo(1, &board), DK_SML_SUCCESS);
    EXPECT_EQ(board.boardId, 0u);
    ASSERT_EQ(board.deviceCount, 2u);
    EXPECT_EQ(board.deviceIds[0], 0u);
    EXPECT_EQ(board.deviceIds[1], 1u);
    EXPECT_EQ(DkSystemManager::GetInstance().GetDeviceBoardInfo(100, &board), DK_SML_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(DkSystemManager::GetInstance().GetDeviceBoardId(42), UINT32_MAX);
}

// Only the device examined just before counts: an unreadable serial in
// between, or a distant device with the same serial, starts a new board.
TEST(DeviceBoard, UnreadableOrDistantSerialsStartNewBoards) {
    nlohmann::json profile = vhost::LoadProfile("server");
    for (nlohmann::json& device : profile["devices"]) {
        if (device["bus_id"] == "0000:1c:00.0") device["attributes"]["showe2prominfo"] = nullptr;
        if (device["bus_id"] == "0000:b0:00.0") device["board_serial"] = "DKB6A2311000042";
        if (device["bus_id"] == "0000:af:00.0") device["attributes"]["showe2prominfo"] = "board serial:\n";
    }
    vhost::ScopedHost host(profile);
    ASSERT_EQ(dkSmlInitWithFlags(1), DK_SML_SUCCESS);
    EXPECT_EQ(BoardIds(), (std::vector<uint32_t>{0, UINT32_MAX, 1, UINT32_MAX, 2, 3, UINT32_MAX}));
    char serial[32];
    uint32_t size = sizeof serial;
    ASSERT_EQ(dkSmlGetBoardSerial(4, serial, &size), DK_SML_SUCCESS);
    EXPECT_STREQ(serial, "DKB6A2311000042");
    EXPECT_EQ(size, 16u);
    size = 15;
    EXPECT_EQ(dkSmlGetBoardSerial(4, serial, &size), DK_SML_ERROR_INSUFFICIENT_SIZE);
    EXPECT_EQ(size, 16u);
    EXPECT_EQ(dkSmlGetBoardSerial(1, serial, &size), DK_SML_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(dkSmlGetBoardSerial(3, serial, &size), DK_SML_ERROR_SYSFS);
    EXPECT_EQ(dkSmlGetBoardSerial(100, serial, &size), DK_SML_ERROR_NOT_SUPPORTED);
}

}  // namespace
}  // namespace dksml::test
