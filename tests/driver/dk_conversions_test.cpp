// The throwing conversions and the small utilities (the comparison with the
// standard library is in dk_number_std_test.cpp). The throwing GetValue
// readers of dk_text_unused.h are called by no library code; fuzz_conversions
// pins that they throw nothing but the two driver codes.
#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <string>

#include "driver/dk_text.h"
#include "dk_driver_test_util.h"

namespace dksml {
namespace {

using test::ThrownCode;

// The throwing conversions: 3 only for the driver's "not support" marker, 4
// for any other failure. Unqualified calls with std::string arguments must
// reach dksml's functions, not std::stoi & co. found by argument-dependent lookup.
TEST(Conversions, ThrowingFormsAndBaseZero) {
    std::string bad = "x", hex = "1f";  // non-const, as the library's callers hold them
    const struct {
        std::function<long()> call;
        int code;  // -1: returns `value`
        long value;
    } cases[] = {
        {[] { return stoi("not support"); }, 3, 0}, {[] { return stoi("gfx not supported"); }, 3, 0},
        {[] { return stoi("abc"); }, 4, 0}, {[] { return stoi("99999999999"); }, 4, 0},
        {[] { return stoi("99999999999 not support"); }, 3, 0},
        {[] { return static_cast<long>(stoul("not support")); }, 4, 0},
        {[] { return stoi("12 not support"); }, -1, 12}, {[] { return stoi("5", 1); }, 4, 0},  // invalid base
        {[] { return stoi("0x10", 0); }, -1, 16}, {[] { return stoi("010", 0); }, -1, 8},
        {[] { return stoi("-0x10", 0); }, -1, -16}, {[] { return stoi("08", 0); }, -1, 0},  // octal stops at 8
        {[] { return static_cast<long>(stoul("0xffffffffff", 0)); }, -1, 0xffffffffffL},
        {[&] { return stoi(bad); }, 4, 0}, {[] { return stoi(std::string("not support")); }, 3, 0},
        {[&] { return static_cast<long>(stoul(bad)); }, 4, 0}, {[&] { return stol(bad); }, 4, 0},
        {[&] { return static_cast<long>(stof(bad)); }, 4, 0}, {[&] { return stoi(hex, 16); }, -1, 31},
    };
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        long value = 0;
        EXPECT_EQ(ThrownCode([&] { value = cases[i].call(); }), cases[i].code) << "case " << i;
        if (cases[i].code < 0) {
            EXPECT_EQ(value, cases[i].value) << "case " << i;
        }
    }
}

TEST(Conversions, EmbeddedNulLongTextAndNullView) {
    int i = 5;
    EXPECT_FALSE(stoi_nt(std::string_view(), i));  // data() is null: no memcpy from it (found by fuzzing)
    EXPECT_EQ(i, 5);
    ASSERT_TRUE(stoi_nt(std::string_view("12\0" "34", 5), i));
    EXPECT_EQ(i, 12);
    const std::string longText = std::string(5000, ' ') + "77";
    ASSERT_TRUE(stoi_nt(longText, i));
    EXPECT_EQ(i, 77);
    EXPECT_FALSE(stoi_nt(std::string(5000, '9'), i));
}

// --- utilities ----------------------------------------------------------------

TEST(Utilities, IsNumber) {
    for (const char* yes : {"0", "0123456789"}) EXPECT_TRUE(IsNumber(yes)) << yes;
    for (const char* no : {"", "-1", "+1", " 1", "1 ", "1a"}) EXPECT_FALSE(IsNumber(no)) << no;
}

TEST(Utilities, GetBitState) {
    int bits[6];
    std::fill(std::begin(bits), std::end(bits), 9);
    GetBitState("5", bits, 6);
    EXPECT_EQ(std::vector<int>(bits, bits + 6), (std::vector<int>{1, 0, 1, 0, 0, 0}));
    GetBitState("0", bits, 6);
    EXPECT_EQ(std::vector<int>(bits, bits + 6), (std::vector<int>(6, 0)));
    GetBitState("-1", bits, 6);  // arithmetic shift keeps the sign bits
    EXPECT_EQ(std::vector<int>(bits, bits + 6), (std::vector<int>(6, 1)));
    GetBitState("255", bits, 3);
    EXPECT_EQ(std::vector<int>(bits, bits + 3), (std::vector<int>{1, 1, 1}));
    EXPECT_EQ(ThrownCode([&] { GetBitState("x", bits, 6); }), 4);
    EXPECT_EQ(ThrownCode([&] { GetBitState("not support", bits, 6); }), 3);
}

TEST(Utilities, IntToHexString) {
    EXPECT_EQ(IntToHexString(0), "0x0");
    EXPECT_EQ(IntToHexString(255), "0xff");
    EXPECT_EQ(IntToHexString(-1), "0xffffffff");
    EXPECT_EQ(IntToHexString(INT_MIN), "0x80000000");
    EXPECT_EQ(IntToHexString(0x1234abcd), "0x1234abcd");
}

TEST(Utilities, AddValueForArray) {
    int values[4] = {1, 2, INT_MAX, 4};
    AddValueForArray(values, 3, 1);
    // Wraps (found by the fuzz targets: no signed-overflow UB); the fourth is past the count.
    EXPECT_EQ(std::vector<int>(values, values + 4), (std::vector<int>{2, 3, INT_MIN, 4}));
}

}  // namespace
}  // namespace dksml
