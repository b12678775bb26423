// The power service on canned driver text: unit lookup, per-way layouts,
// limits, power mode and per-IP states.
#include <gtest/gtest.h>

#include <string>

#include "features/power/dk_power.h"
#include "support/dk_fake_device.h"

namespace dksml::test {
namespace {

// A fake with the model predicates and per-die write failures these rules need.
class PowerDevice : public FakeDevice {
public:
    bool dkk6 = false;
    bool dkk6Series = false;
    IDkDevice* parent = nullptr;
    std::map<unsigned int, DkSmlReturn> writeFailures;

    bool IsDkk6() const override { return dkk6; }
    bool IsDkk6Series() const override { return dkk6Series; }
    IDkDevice* GetPfAncestor() const override { return parent; }
    DkSmlReturn SetDriverData(unsigned int dieId, dravik_smi_opcode op, const std::string& text) override {
        FakeDevice::SetDriverData(dieId, op, text);
        auto failure = writeFailures.find(dieId);
        return failure == writeFailures.end() ? DK_SML_SUCCESS : failure->second;
    }
};

void ServePmbus(PowerDevice& device, unsigned int die, const std::string& text) {
    device.Serve(die, DRAVIK_SMI_SHOWPMBUSVOL, text);
    device.Serve(die, DRAVIK_SMI_SHOWPMBUSCUR, text);
    device.Serve(die, DRAVIK_SMI_SHOWPMBUSPOWER, text);
}

// Each test starts from a fresh single-die fake; the service keeps no state.
class PowerService : public ::testing::Test {
protected:
    PowerDevice device;
    DkPower power;
};

TEST_F(PowerService, PmbusFragmentsTellNumberedRailsApart) {
    ServePmbus(device, 0, "hbm1 voltage: 11\nhbm2 voltage: 22\nhbm voltage: 33\npcie2 voltage: 44\nfan: 5\n");
    struct Case {
        DkSmlPmbusUnit unit;
        DkSmlReturn result;
        uint32_t value;
    };
    const Case cases[] = {
        {DK_SML_PMBUS_UNIT_HBM, DK_SML_SUCCESS, 11},  // first key of the unit wins
        {DK_SML_PMBUS_UNIT_HBM2, DK_SML_SUCCESS, 22},
        {DK_SML_PMBUS_UNIT_PCIE2, DK_SML_SUCCESS, 44},
        {DK_SML_PMBUS_UNIT_PCIE, DK_SML_ERROR_NOT_SUPPORTED, 0},  // "pcie2" is not "pcie "
        {DK_SML_PMBUS_UNIT_SOC, DK_SML_ERROR_NOT_SUPPORTED, 0},
    };
    for (const Case& c : cases) {
        DkSmlPmbusInfo info{};
        EXPECT_EQ(power.GetDiePmbusInfo(&device, 0, c.unit, &info), c.result) << c.unit;
        EXPECT_EQ(info.power, c.value) << c.unit;
    }
}

TEST_F(PowerService, DevicePmbusTakesTheFirstDieThatHasTheRail) {
    device.dieCount = 2;
    ServePmbus(device, 0, "soc voltage: 1\n");
    ServePmbus(device, 1, "core voltage: 7\n");
    DkSmlPmbusInfo info{};
    EXPECT_EQ(power.GetPmbusInfo(&device, DK_SML_PMBUS_UNIT_CORE, &info), DK_SML_SUCCESS);
    EXPECT_EQ(info.voltage, 7u);
    EXPECT_EQ(power.GetPmbusInfo(&device, DK_SML_PMBUS_UNIT_HBM2, &info), DK_SML_ERROR_NOT_SUPPORTED);
    // A real error on die 0 is returned, not skipped.
    device.Fail(0, DRAVIK_SMI_SHOWPMBUSVOL, DK_SML_ERROR_SYSFS);
    EXPECT_EQ(power.GetPmbusInfo(&device, DK_SML_PMBUS_UNIT_CORE, &info), DK_SML_ERROR_SYSFS);
    device.isVf = true;
    EXPECT_EQ(power.GetDiePmbusInfo(&device, 1, DK_SML_PMBUS_UNIT_CORE, &info), DK_SML_ERROR_NOT_SUPPORTED);
}

// Which brand lists the ways way by way and which quantity by quantity is
// pinned by the golden --json transcripts (DKK, DKK-X and DKQ boards).
TEST_F(PowerService, BoardWaysTakeSixValuesWithinTheCallersCount) {
    device.brand = DK_SML_BRAND_DKQ;
    device.Serve(0, DRAVIK_SMI_SHOWBOARDPOWERINFO, "a: 1 2 3\nb: 4 5 6 7\n");  // by quantity; the 7th is ignored
    DkSmlBoardWayElectricInfo ways[3]{};
    uint32_t count = 3;
    ASSERT_EQ(power.GetBoardElectricInfo(&device, &count, ways), DK_SML_SUCCESS);
    ASSERT_EQ(count, 2u);
    const uint32_t expected[2][3] = {{1, 3, 5}, {2, 4, 6}};
    for (int q = 0; q < 3; ++q) {
        EXPECT_EQ(ways[0].values[q], expected[0][q]) << q;
        EXPECT_EQ(ways[1].values[q], expected[1][q]) << q;
    }
    EXPECT_EQ(ways[2].values[0], 0u);
    count = 1;
    EXPECT_EQ(power.GetBoardElectricInfo(&device, &count, ways), DK_SML_ERROR_INSUFFICIENT_SIZE);
    EXPECT_EQ(count, 2u);
}

TEST_F(PowerService, EmptyBoardListIsNotSupported) {
    device.Serve(0, DRAVIK_SMI_SHOWBOARDPOWERINFO, "");
    DkSmlBoardWayElectricInfo way{};
    uint32_t count = 1;
    EXPECT_EQ(power.GetBoardElectricInfo(&device, &count, &way), DK_SML_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(count, 1u);
    // A multi-device model asks its board's other devices; this one belongs
    // to no known board.
    device.dkk6 = true;
    EXPECT_EQ(power.GetBoardElectricInfo(&device, &count, &way), DK_SML_ERROR_NOT_SUPPORTED);
}

// The limit in milliwatts, from the capability file or (DKK6 series) from
// config_tbp in watts, is pinned by the golden --json transcripts.
TEST_F(PowerService, BoardLimitTableSetterAndVf) {
    device.dkk6Series = true;
    device.Serve(0, DRAVIK_SMI_CONFIG_TBP, "450 550 200\n");
    DkSmlBoardPowerLimitInfo info{{9, 9, 9, 9}};
    EXPECT_EQ(power.GetBoardPowerLimitInfo(&device, &info), DK_SML_SUCCESS);
    EXPECT_EQ(info.values[2], 200u);
    EXPECT_EQ(info.values[3], 9u);  // the driver printed three: the fourth is untouched
    device.Serve(0, DRAVIK_SMI_CONFIG_TBP, "");
    EXPECT_EQ(power.GetBoardPowerLimitInfo(&device, &info), DK_SML_ERROR_SYSFS);
    EXPECT_EQ(power.SetBoardPowerLimit(&device, 400), DK_SML_SUCCESS);
    ASSERT_EQ(device.writes.size(), 1u);
    EXPECT_EQ(device.writes[0].text, "400");
    device.dkk6Series = false;
    device.isVf = true;
    uint32_t limit = 0;
    EXPECT_EQ(power.GetBoardPowerLimit(&device, &limit), DK_SML_ERROR_NOT_SUPPORTED);
}

TEST_F(PowerService, PciPowerStateNames) {
    struct Case {
        const char* text;
        DkSmlReturn result;
        DkSmlPciPowerState state;
    };
    const Case cases[] = {
        {" D3hot\t\n", DK_SML_SUCCESS, DK_SML_PCI_POWER_STATE_D3HOT},
        {"D0", DK_SML_SUCCESS, DK_SML_PCI_POWER_STATE_D0},
        {"state: D3cold\n", DK_SML_SUCCESS, DK_SML_PCI_POWER_STATE_D3COLD},
        {"D2\n", DK_SML_ERROR_FAILURE, DK_SML_PCI_POWER_STATE_D0},
        {"", DK_SML_ERROR_SYSFS, DK_SML_PCI_POWER_STATE_D0},
    };
    for (const Case& c : cases) {
        device.Serve(0, DRAVIK_SMI_PCIPOWERSTATE, c.text);
        DkSmlPciPowerState state = DK_SML_PCI_POWER_STATE_D0;
        EXPECT_EQ(power.GetPciPowerState(&device, &state), c.result) << c.text;
        EXPECT_EQ(state, c.state) << c.text;
    }
}

TEST_F(PowerService, PowerModeOverDies) {
    device.dieCount = 2;
    device.Serve(0, DRAVIK_SMI_POW_PERSIST_CTRL, "power mode: 1\n");
    device.Serve(1, DRAVIK_SMI_POW_PERSIST_CTRL, "power mode: 0\n");
    uint32_t mode = 9;
    EXPECT_EQ(power.GetPowerMode(&device, &mode), DK_SML_SUCCESS);
    EXPECT_EQ(mode, 0u);  // any die at 0 makes the device 0

    PowerDevice vf;
    vf.isVf = true;
    EXPECT_EQ(power.GetDiePowerMode(&vf, 0, &mode), DK_SML_ERROR_NOT_SUPPORTED);
    vf.parent = &device;
    EXPECT_EQ(power.GetDiePowerMode(&vf, 0, &mode), DK_SML_SUCCESS);
    EXPECT_EQ(mode, 1u);
    EXPECT_EQ(power.SetDiePowerMode(&vf, 0, 1), DK_SML_ERROR_NOT_SUPPORTED);

    // Every die is written; the failing one is reported.
    device.writeFailures[0] = DK_SML_ERROR_SYSFS_WRITE;
    EXPECT_EQ(power.SetPowerMode(&device, 1), DK_SML_ERROR_SYSFS_WRITE);
    ASSERT_EQ(device.writes.size(), 2u);
    EXPECT_EQ(device.writes[1].die, 1u);
    EXPECT_EQ(device.writes[1].text, "1");
}

// Masks in IP order, one line each: dla, xcore, mc.
constexpr const char* c_ipStates = "dla: 1\nxcore: 165\nmc: 3\n";

TEST_F(PowerService, IpStatesAreBitsOfTheIpLine) {
    // The fake is an "others" model: xcore has 8 instances.
    device.Serve(0, DRAVIK_SMI_IPPOWERSTATE, c_ipStates);
    int32_t states[16];
    std::fill(std::begin(states), std::end(states), -7);
    uint32_t count = 16;
    ASSERT_EQ(power.GetPowerState(&device, DK_SML_DPM_IP_XCORE, states, &count), DK_SML_SUCCESS);
    ASSERT_EQ(count, 8u);
    const int32_t expected[8] = {1, 0, 1, 0, 0, 1, 0, 1};  // 165 = 0b10100101
    for (int i = 0; i < 8; ++i) EXPECT_EQ(states[i], expected[i]) << i;
    EXPECT_EQ(states[8], -7);

    struct Case {
        DkSmlDpmIp ip;
        uint32_t capacity;
        DkSmlReturn result;
        uint32_t countAfter;
    };
    const Case cases[] = {
        {DK_SML_DPM_IP_XCORE, 7, DK_SML_ERROR_INSUFFICIENT_SIZE, 8},
        {DK_SML_DPM_IP_SOC, 16, DK_SML_ERROR_SYSFS, 16},          // no fourth line
        {DK_SML_DPM_IP_NPU, 16, DK_SML_ERROR_NOT_SUPPORTED, 16},  // no instances on this model
        {static_cast<DkSmlDpmIp>(15), 16, DK_SML_ERROR_INVALID_INPUT, 16},
    };
    for (const Case& c : cases) {
        count = c.capacity;
        EXPECT_EQ(power.GetPowerState(&device, c.ip, states, &count), c.result) << c.ip;
        EXPECT_EQ(count, c.countAfter) << c.ip;
    }
}

}  // namespace
}  // namespace dksml::test
