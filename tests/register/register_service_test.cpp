// DkRegister against a device whose register file answers like the driver:
// a queue of values per address, every access recorded in order.
#include <gtest/gtest.h>

#include <deque>
#include <map>

#include "features/register/dk_register.h"
#include "support/dk_fake_device.h"

namespace dksml::test {
namespace {

struct RegisterAccess {
    char kind;  // 'r' or 'w'
    unsigned long address;
    unsigned int value;
    bool operator==(const RegisterAccess&) const = default;
};

class RegisterDevice : public FakeDevice {
public:
    std::map<unsigned long, std::deque<unsigned int>> queues;  // the last value repeats
    std::map<unsigned long, DkSmlReturn> readFailures;
    std::vector<RegisterAccess> log;
    uint32_t index = 0;
    bool series6 = true;

    DkSmlReturn GetRegisterData(unsigned int, unsigned long address, unsigned int* value) override {
        if (auto failure = readFailures.find(address); failure != readFailures.end()) return failure->second;
        std::deque<unsigned int>& queue = queues[address];
        *value = queue.empty() ? 0 : queue.front();
        if (queue.size() > 1) queue.pop_front();
        log.push_back({'r', address, *value});
        return DK_SML_SUCCESS;
    }
    DkSmlReturn SetRegisterData(unsigned int, unsigned long address, unsigned int value) override {
        log.push_back({'w', address, value});
        return writeResult;
    }
    uint32_t GetDeviceId() const override { return index; }
    bool IsDkk6Series() const override { return series6; }
};

class RegisterServiceTest : public ::testing::Test {
protected:
    RegisterDevice device;
    DkRegister registers{[](uint32_t index) { return index == 7 ? 3u : 40217u; }};
};

TEST(XrbmRangeTest, BoundariesOfTheWindows) {
    for (unsigned long inside : {0x60000UL, 0x603DBUL, 0x62BFFUL}) EXPECT_TRUE(IsXrbmAddress(inside)) << inside;
    for (unsigned long outside : {0x603DCUL, 0x5FFFFUL, 0x62C00UL, c_xrbmMutexRegister}) {
        EXPECT_FALSE(IsXrbmAddress(outside)) << outside;
    }
}

// The selection, one write of the "select_gpu_id" request, carries the die in
// the high half; a device the selection cannot name, or a refused selection,
// ends the operation.
TEST_F(RegisterServiceTest, SelectionCarriesTheDieAndItsFailuresEndTheOperation) {
    device.index = 7;
    unsigned int value = 0;
    uint32_t count = 16;
    device.queues[0x1000] = {0xCAFE};
    ASSERT_EQ(registers.GetDieRegisterData(&device, 1, 0x1000, &value, &count), DK_SML_SUCCESS);
    ASSERT_EQ(device.writes.size(), 1u);
    EXPECT_EQ(device.writes[0].op, DRAVIK_SMI_SELECTGPUID);
    EXPECT_EQ(device.writes[0].text, "65539");
    EXPECT_EQ(count, 1u);
    EXPECT_EQ(value, 0xCAFEu);

    device.log.clear();
    device.index = 100;
    EXPECT_EQ(registers.GetRegisterData(&device, 0x1000, &value, &count), DK_SML_ERROR_NOT_SUPPORTED);
    device.index = 0;
    device.writeResult = DK_SML_ERROR_NOT_SUPPORTED;  // the debug file is absent
    EXPECT_EQ(registers.GetRegisterData(&device, 0x1000, &value, &count), DK_SML_ERROR_PERMISSION);
    EXPECT_EQ(registers.SetRegisterData(&device, 0x1000, 1), DK_SML_ERROR_PERMISSION);
    EXPECT_TRUE(device.log.empty());
}

TEST_F(RegisterServiceTest, XrbmReadNeedsRoomForTheWholeBlock) {
    unsigned int values[16] = {};
    uint32_t count = 16;
    EXPECT_EQ(registers.GetRegisterData(&device, 0x60000, values, &count), DK_SML_ERROR_INSUFFICIENT_SIZE);
    EXPECT_EQ(count, 256u);
    EXPECT_TRUE(device.log.empty());
}

TEST_F(RegisterServiceTest, XrbmReadWalksEveryInstanceUnderTheMutex) {
    device.queues[c_xrbmMutexRegister] = {0x80000000u, 0x80000001u, 0};  // held twice, then free
    device.queues[c_xrbmSelectRegister] = {0x55};
    std::deque<unsigned int> block;
    for (unsigned int i = 0; i < 256; ++i) block.push_back(1000 + i);
    device.queues[0x60010] = block;
    std::vector<unsigned int> values(300, 0);
    uint32_t count = 300;
    ASSERT_EQ(registers.GetRegisterData(&device, 0x60010, values.data(), &count), DK_SML_SUCCESS);
    EXPECT_EQ(count, 300u);
    EXPECT_EQ(values[0], 1000u);
    EXPECT_EQ(values[255], 1255u);
    EXPECT_EQ(values[256], 0u);

    // Three mutex reads, four accesses per sub-instance, one release.
    ASSERT_EQ(device.log.size(), 3u + 256u * 4u + 1u);
    const std::vector<RegisterAccess> firstSub{{'r', c_xrbmSelectRegister, 0x55},
                                               {'w', c_xrbmSelectRegister, 0x0000},
                                               {'r', 0x60010, 1000},
                                               {'w', c_xrbmSelectRegister, 0x55}};
    EXPECT_EQ(std::vector<RegisterAccess>(device.log.begin() + 3, device.log.begin() + 7), firstSub);
    // Instance 7, sub-instance 31: the select value packs both.
    EXPECT_EQ(device.log[3 + 255 * 4 + 1], (RegisterAccess{'w', c_xrbmSelectRegister, 0x1F07}));
    EXPECT_EQ(device.log.back(), (RegisterAccess{'w', c_xrbmMutexRegister, 0}));
}

TEST_F(RegisterServiceTest, MutexHeldForTenReadsFailsWithoutReleasing) {
    device.queues[c_xrbmMutexRegister] = {0x80000000u};
    std::vector<unsigned int> values(256);
    uint32_t count = 256;
    EXPECT_EQ(registers.GetRegisterData(&device, 0x60000, values.data(), &count), DK_SML_ERROR_FAILURE);
    EXPECT_EQ(device.log.size(), 10u);
    for (const RegisterAccess& access : device.log) EXPECT_EQ(access.kind, 'r');
}

TEST_F(RegisterServiceTest, ReadErrorMidBlockLeavesTheMutexHeld) {
    device.readFailures[0x60000] = DK_SML_ERROR_SYSFS;
    std::vector<unsigned int> values(256);
    uint32_t count = 256;
    EXPECT_EQ(registers.GetRegisterData(&device, 0x60000, values.data(), &count), DK_SML_ERROR_SYSFS);
    ASSERT_FALSE(device.log.empty());
    for (const RegisterAccess& access : device.log)
        EXPECT_FALSE(access.kind == 'w' && access.address == c_xrbmMutexRegister);
}

TEST_F(RegisterServiceTest, SerialReadStepsByFourAndRefusesXrbm) {
    device.queues[0x2000] = {1};
    device.queues[0x2004] = {2};
    device.queues[0x2008] = {3};
    unsigned int values[3] = {};
    ASSERT_EQ(registers.GetSerialRegisterData(&device, 0x2000, values, 3), DK_SML_SUCCESS);
    EXPECT_EQ(values[2], 3u);
    device.readFailures[0x2004] = DK_SML_ERROR_SYSFS;
    EXPECT_EQ(registers.GetSerialRegisterData(&device, 0x2000, values, 3), DK_SML_ERROR_SYSFS);
    EXPECT_EQ(registers.GetSerialRegisterData(&device, 0x61000, values, 3), DK_SML_ERROR_NOT_SUPPORTED);
}

TEST_F(RegisterServiceTest, XrbmWriteBroadcastsAndKeepsTheSelection) {
    device.queues[c_xrbmMutexRegister] = {0};
    ASSERT_EQ(registers.SetRegisterData(&device, 0x62800, 0xABCD), DK_SML_SUCCESS);
    const std::vector<RegisterAccess> expected{{'r', c_xrbmMutexRegister, 0},
                                               {'w', c_xrbmSelectRegister, 0x8080},
                                               {'w', 0x62800, 0xABCD},
                                               {'w', c_xrbmMutexRegister, 0}};
    EXPECT_EQ(device.log, expected);

    device.log.clear();
    ASSERT_EQ(registers.SetRegisterData(&device, 0x3000, 9), DK_SML_SUCCESS);
    EXPECT_EQ(device.log, (std::vector<RegisterAccess>{{'w', 0x3000, 9}}));
}

TEST_F(RegisterServiceTest, EthernetStatusIsBitSixteen) {
    device.queues[0x7800200] = {0x00010000u};
    uint32_t status = 7;
    ASSERT_EQ(registers.GetDeviceEthStatus(&device, &status), DK_SML_SUCCESS);
    EXPECT_EQ(status, 1u);
    device.queues[0x7800200] = {0xFFFEFFFFu};
    ASSERT_EQ(registers.GetDeviceEthStatus(&device, &status), DK_SML_SUCCESS);
    EXPECT_EQ(status, 0u);
    device.series6 = false;
    EXPECT_EQ(registers.GetDeviceEthStatus(&device, &status), DK_SML_ERROR_NOT_SUPPORTED);
}

}  // namespace
}  // namespace dksml::test
