// The two parsers of untrusted bytes behind topology and PCIe: the kernel's
// CPU list text and the firmware's SMBIOS table.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "features/pcie/dk_smbios.h"
#include "features/topology/dk_cpu_list.h"

namespace dksml {
namespace {

struct CpuListCase {
    const char* text;
    bool parsed;
    std::set<uint32_t> cpus;
};

class CpuList : public testing::TestWithParam<CpuListCase> {};

TEST_P(CpuList, YieldsTheListedCpusAndSkipsJunk) {
    std::set<uint32_t> cpus;
    EXPECT_EQ(ParseCpuList(GetParam().text, cpus), GetParam().parsed);
    EXPECT_EQ(cpus, GetParam().cpus);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, CpuList,
    testing::Values(CpuListCase{"0-3,8,10-11", true, {0, 1, 2, 3, 8, 10, 11}}, CpuListCase{"", false, {}},
                    CpuListCase{"x,2", true, {2}}, CpuListCase{"5-3", true, {}}, CpuListCase{"7", true, {7}},
                    CpuListCase{"1-2-3,4", true, {4}}, CpuListCase{",,", true, {}}, CpuListCase{"-1,3-", true, {}},
                    CpuListCase{"2,2,1-2", true, {1, 2}}, CpuListCase{"0-1,x,,5-3", true, {0, 1}},
                    CpuListCase{"4294967296", true, {}}, CpuListCase{"3 ", true, {3}}));

TEST(CpuList, AHugeRangeIsCutAtTheLargestCpuNumber) {
    std::set<uint32_t> cpus;
    ASSERT_TRUE(ParseCpuList("0-99999999", cpus));
    EXPECT_EQ(cpus.size(), c_maxCpuNumber + 1u);
    EXPECT_EQ(*cpus.rbegin(), c_maxCpuNumber);
}

TEST(CpuList, FormatsAscendingRanges) {
    EXPECT_EQ(FormatCpuList({0, 1, 2, 3, 8, 10, 11}), "0-3,8,10-11");
    EXPECT_EQ(FormatCpuList({}), "");
    EXPECT_EQ(FormatCpuList({5}), "5");
}

// ----- SMBIOS -----------------------------------------------------------------

std::string Structure(uint8_t type, std::string fields, std::string strings = std::string("\0\0", 2)) {
    std::string bytes;
    bytes += static_cast<char>(type);
    bytes += static_cast<char>(4 + fields.size());
    bytes += std::string("\x01\x00", 2);
    return bytes + fields + strings;
}

std::string Slot(uint16_t id, uint8_t bus, uint8_t devfn) {
    std::string fields = std::string("\x01\xb6\x0d\x04\x04", 5);
    fields += static_cast<char>(id & 0xff);
    fields += static_cast<char>(id >> 8);
    fields += std::string("\x0c\x01\x00\x00", 4);
    fields += static_cast<char>(bus);
    fields += static_cast<char>(devfn);
    return Structure(9, fields, std::string("SLOT\0\0", 6));
}

std::string Bios() { return Structure(0, std::string(14, '\x01'), std::string("Vendor\0" "1.0\0\0", 12)); }
std::string End() { return Structure(127, ""); }

TEST(SmbiosSlot, FindsTheSlotOfEveryFunctionOfTheDevice) {
    const std::string table = Bios() + Slot(3, 0x1a, 0) + Slot(0x0102, 0x1b, 0) + End();
    uint32_t slot = 0;
    EXPECT_EQ(FindDmiSlot(table, 0x1b00, &slot), DK_SML_SUCCESS);
    EXPECT_EQ(slot, 0x0102u);
    // A firmware that records function 2 in the slot still names the device.
    const std::string withFunction = Bios() + Slot(7, 0x1b, 0x02) + End();
    EXPECT_EQ(FindDmiSlot(withFunction, 0x1b00, &slot), DK_SML_SUCCESS);
    EXPECT_EQ(slot, 7u);
}

struct BrokenTable {
    const char* name;
    std::string bytes;
    DkSmlReturn expected;
};

class SmbiosBroken : public testing::TestWithParam<BrokenTable> {};

TEST_P(SmbiosBroken, EndsWithADefinedCode) {
    uint32_t slot = 4242;
    EXPECT_EQ(FindDmiSlot(GetParam().bytes, 0x1b00, &slot), GetParam().expected);
    EXPECT_EQ(slot, 4242u);
}

INSTANTIATE_TEST_SUITE_P(
    Tables, SmbiosBroken,
    testing::Values(BrokenTable{"empty", "", DK_SML_ERROR_NOT_SUPPORTED},
                    BrokenTable{"no_match", Bios() + Slot(1, 0x20, 0) + End(), DK_SML_ERROR_NOT_SUPPORTED},
                    BrokenTable{"length_below_four", std::string("\x09\x02\x00\x00", 4), DK_SML_ERROR_SYSFS},
                    BrokenTable{"strings_without_double_zero", Bios().substr(0, Bios().size() - 1), DK_SML_ERROR_SYSFS},
                    BrokenTable{"ends_inside_a_structure", Slot(1, 0x1b, 0).substr(0, 10), DK_SML_ERROR_SYSFS},
                    BrokenTable{"end_marker_stops_the_walk", End() + Slot(1, 0x1b, 0), DK_SML_ERROR_NOT_SUPPORTED},
                    BrokenTable{"one_stray_byte", std::string("\x09", 1), DK_SML_ERROR_NOT_SUPPORTED}),
    [](const testing::TestParamInfo<BrokenTable>& param) { return std::string(param.param.name); });

}  // namespace
}  // namespace dksml
