// The throwing conversions, the GetValue readers and the small utilities
// (the comparison with the standard library is in dk_number_std_test.cpp).
#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <string>
#include <type_traits>

#include "driver/dk_text.h"
#include "dk_driver_test_util.h"

namespace dksml {
namespace {

using test::ThrownCode;

// The throwing conversions: 3 only for the driver's "not support" marker, 4
// for any other failure. Unqualified calls with std::string arguments must
// reach dksml's functions, not std::stoi & co. found by argument-dependent lookup.
// The values they return are those of the _nt forms, compared with the
// standard library (base 0 included) in dk_number_std_test.cpp.
TEST(Conversions, ThrowingForms) {
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

// --- throwing readers ---------------------------------------------------------

// One reader applied to one text: the code it throws (-1 for none) and, on
// success, the value it stored, as text.
struct ReaderCase {
    const char* text;
    std::function<std::string(DkTextLines&)> read;
    int code;
    const char* value;
};

template <typename T, typename Fn>
std::function<std::string(DkTextLines&)> Reader(Fn fn) {
    return [fn](DkTextLines& lines) {
        T value{};
        fn(lines, value);
        if constexpr (std::is_same_v<T, std::string>) return value;
        else return std::to_string(value);
    };
}

TEST(GetValue, EveryTypeAndForm) {
    using ushort = unsigned short;
    using ulong = unsigned long;
    const auto u16 = Reader<ushort>([](DkTextLines& l, ushort& v) { GetValue(l, v); });
    const auto hex = Reader<unsigned>([](DkTextLines& l, unsigned& v) { GetValue(l, v, 16); });
    const auto dec = Reader<unsigned>([](DkTextLines& l, unsigned& v) { GetValue(l, v, 10); });
    const auto i32 = Reader<int>([](DkTextLines& l, int& v) { GetValue(l, v); });
    const auto i64 = Reader<long>([](DkTextLines& l, long& v) { GetValue(l, v); });
    const auto u64 = Reader<ulong>([](DkTextLines& l, ulong& v) { GetValue(l, v); });
    const auto str = Reader<std::string>([](DkTextLines& l, std::string& v) { GetValue(l, v); });
    const auto space = Reader<unsigned>([](DkTextLines& l, unsigned& v) { GetValueSpace(l, v); });
    // GetValueD: base 0 on the whole line (no colon handling); unsigned long in base 10
    const auto di = Reader<int>([](DkTextLines& l, int& v) { GetValueD(l, v); });
    const auto du = Reader<unsigned>([](DkTextLines& l, unsigned& v) { GetValueD(l, v); });
    const auto dul = Reader<ulong>([](DkTextLines& l, ulong& v) { GetValueD(l, v); });
    const ReaderCase cases[] = {
        {"x: 65535\n", u16, -1, "65535"}, {"x: 70000\n", u16, 4, ""}, {"x: -1\n", u16, 4, ""},
        {"x: not support\n", u16, 3, ""}, {"", u16, 4, ""}, {"123\n", u16, -1, "123"}, {"id: 1f\n", hex, -1, "31"},
        {"id: 0x1f\n", hex, -1, "31"}, {"1f\n", hex, 4, ""},  // a base needs a colon
        {"v: -1\n", dec, -1, "4294967295"}, {"v: 4294967295\n", dec, 4, ""},  // stoi range
        {"t: -12 C\n", i32, -1, "-12"}, {"t: abc\n", i32, 4, ""}, {"t: not support\n", i32, 3, ""},
        {"t: 9000000000\n", i64, -1, "9000000000"}, {"t: not support\n", i64, 4, ""},
        {"t: 18446744073709551615\n", u64, -1, "18446744073709551615"},
        {"name:  gfx a:b \n", str, -1, "  gfx a:b "}, {"whole\n", str, -1, "whole"},
        {"speed 16\n", space, -1, "16"}, {"16\n", space, -1, "16"}, {"0x10\n", di, -1, "16"},
        {"010\n", di, -1, "8"}, {"10\n", di, -1, "10"}, {"a: 10\n", di, 4, ""}, {"0xff\n", du, -1, "255"},
        {"0x10\n", dul, -1, "0"}, {"123456789012\n", dul, -1, "123456789012"},
    };
    for (const ReaderCase& c : cases) {
        DkTextLines lines(c.text);
        std::string value;
        EXPECT_EQ(ThrownCode([&] { value = c.read(lines); }), c.code) << c.text;
        if (c.code < 0) {
            EXPECT_EQ(value, c.value) << c.text;
        }
    }
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
