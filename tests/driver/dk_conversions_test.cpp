// The stoi family, the throwing GetValue readers and the small utilities.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <optional>
#include <string>

#include "driver/dk_text.h"
#include "dk_driver_test_util.h"

namespace dksml {
namespace {

using test::ThrownCode;

template <typename Fn>
auto StdOrNull(Fn&& fn) -> std::optional<decltype(fn())> {
    try {
        return fn();
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

const char* const c_conversionInputs[] = {
    "0", "42", " 42", "\t-42", "+7", "42abc", "abc", "", " ", "-", "0x1A", "0X1a", "010", "09", "0x",
    "0xg", "2147483647", "2147483648", "-2147483648", "-2147483649", "4294967295", "4294967296", "-1",
    "18446744073709551615", "18446744073709551616", "-18446744073709551615", "9223372036854775807",
    "9223372036854775808", "-9223372036854775809", "1.5", "1e3", "inf", "nan", "1e39", "1e-50", "0x1p3",
    "not support", "z", "Z", "  -0x10",
};

TEST(Conversions, MatchTheStandardOnes) {
    for (const char* cstr : c_conversionInputs) {
        const std::string text = cstr;
        for (int base : {0, 8, 10, 16, 36}) {
            int i = 123;
            const auto si = StdOrNull([&] { return std::stoi(text, nullptr, base); });
            EXPECT_EQ(stoi_nt(text, i, base), si.has_value()) << text << " base " << base;
            EXPECT_EQ(i, si.value_or(123)) << text << " base " << base;

            unsigned long ul = 123;
            const auto sul = StdOrNull([&] { return std::stoul(text, nullptr, base); });
            EXPECT_EQ(stoul_nt(text, ul, base), sul.has_value()) << text << " base " << base;
            EXPECT_EQ(ul, sul.value_or(123)) << text << " base " << base;

            unsigned int ui = 123;
            EXPECT_EQ(stoui_nt(text, ui, base), sul.has_value()) << text;
            EXPECT_EQ(ui, sul ? static_cast<unsigned int>(*sul) : 123u) << text;
        }
        const auto sl = StdOrNull([&] { return std::stol(text); });
        EXPECT_EQ(ThrownCode([&] { (void)dksml::stol(text); }), sl ? -1 : 4) << text;
        if (sl) {
            EXPECT_EQ(dksml::stol(text), *sl);
        }

        float f = 1.25f;
        const auto sf = StdOrNull([&] { return std::stof(text); });
        EXPECT_EQ(stof_nt(text, f), sf.has_value()) << text;
        if (sf && !std::isnan(*sf)) {
            EXPECT_EQ(f, *sf) << text;
        }
        if (!sf) {
            EXPECT_EQ(f, 1.25f);
        }
        EXPECT_EQ(ThrownCode([&] { (void)dksml::stof(text); }), sf ? -1 : 4) << text;
    }
}

TEST(Conversions, StoiThrows3OnlyForNotSupport) {
    EXPECT_EQ(ThrownCode([] { (void)stoi("not support"); }), 3);
    EXPECT_EQ(ThrownCode([] { (void)stoi("gfx not supported"); }), 3);
    EXPECT_EQ(ThrownCode([] { (void)stoi("abc"); }), 4);
    EXPECT_EQ(ThrownCode([] { (void)stoi("99999999999"); }), 4);
    EXPECT_EQ(ThrownCode([] { (void)stoi("99999999999 not support"); }), 3);
    EXPECT_EQ(ThrownCode([] { (void)stoul("not support"); }), 4);
    EXPECT_EQ(stoi("12 not support"), 12);
    EXPECT_EQ(ThrownCode([] { (void)stoi("5", 1); }), 4);  // invalid base
}

TEST(Conversions, BaseZero) {
    EXPECT_EQ(stoi("0x10", 0), 16);
    EXPECT_EQ(stoi("010", 0), 8);
    EXPECT_EQ(stoi("10", 0), 10);
    EXPECT_EQ(stoi("-0x10", 0), -16);
    EXPECT_EQ(stoi("08", 0), 0);  // octal stops at 8
    EXPECT_EQ(stoul("0xffffffffff", 0), 0xffffffffffUL);
}

TEST(Conversions, StouiNtTruncatesOnPurpose) {
    unsigned int out = 0;
    ASSERT_TRUE(stoui_nt("-1", out));
    EXPECT_EQ(out, 4294967295u);
    ASSERT_TRUE(stoui_nt("4294967296", out));
    EXPECT_EQ(out, 0u);
    ASSERT_TRUE(stoui_nt("0x100000005", out, 16));
    EXPECT_EQ(out, 5u);
    out = 9;
    EXPECT_FALSE(stoui_nt("x", out));
    EXPECT_EQ(out, 9u);
}

TEST(Conversions, EmbeddedNulAndLongText) {
    int i = 0;
    ASSERT_TRUE(stoi_nt(std::string_view("12\0" "34", 5), i));
    EXPECT_EQ(i, 12);
    const std::string longText = std::string(5000, ' ') + "77";
    ASSERT_TRUE(stoi_nt(longText, i));
    EXPECT_EQ(i, 77);
    EXPECT_FALSE(stoi_nt(std::string(5000, '9'), i));
}

// --- throwing readers ---------------------------------------------------------

template <typename T, typename Fn>
std::pair<int, T> Read(const char* text, Fn&& fn, T init) {
    DkTextLines lines(text);
    T value = init;
    const int code = ThrownCode([&] { fn(lines, value); });
    return {code, value};
}

TEST(GetValue, UnsignedShort) {
    auto get = [](DkTextLines& l, unsigned short& v) { GetValue(l, v); };
    EXPECT_EQ(Read<unsigned short>("x: 65535\n", get, 1), std::make_pair(-1, (unsigned short)65535));
    EXPECT_EQ(Read<unsigned short>("x: 70000\n", get, 1).first, 4);
    EXPECT_EQ(Read<unsigned short>("x: -1\n", get, 1).first, 4);
    EXPECT_EQ(Read<unsigned short>("x: not support\n", get, 1).first, 3);
    EXPECT_EQ(Read<unsigned short>("", get, 1).first, 4);
    EXPECT_EQ(Read<unsigned short>("123\n", get, 1), std::make_pair(-1, (unsigned short)123));
}

TEST(GetValue, UnsignedIntWithBaseNeedsAColon) {
    auto hex = [](DkTextLines& l, unsigned int& v) { GetValue(l, v, 16); };
    EXPECT_EQ(Read<unsigned int>("id: 1f\n", hex, 0), std::make_pair(-1, 0x1Fu));
    EXPECT_EQ(Read<unsigned int>("id: 0x1f\n", hex, 0), std::make_pair(-1, 0x1Fu));
    EXPECT_EQ(Read<unsigned int>("1f\n", hex, 0).first, 4);
    auto dec = [](DkTextLines& l, unsigned int& v) { GetValue(l, v, 10); };
    EXPECT_EQ(Read<unsigned int>("v: -1\n", dec, 0), std::make_pair(-1, 4294967295u));
    EXPECT_EQ(Read<unsigned int>("v: 4294967295\n", dec, 0).first, 4);  // stoi range
}

TEST(GetValue, OtherTypes) {
    auto geti = [](DkTextLines& l, int& v) { GetValue(l, v); };
    EXPECT_EQ(Read<int>("t: -12 C\n", geti, 0), std::make_pair(-1, -12));
    EXPECT_EQ(Read<int>("t: abc\n", geti, 0).first, 4);
    EXPECT_EQ(Read<int>("t: not support\n", geti, 0).first, 3);
    auto getl = [](DkTextLines& l, long& v) { GetValue(l, v); };
    EXPECT_EQ(Read<long>("t: 9000000000\n", getl, 0L), std::make_pair(-1, 9000000000L));
    EXPECT_EQ(Read<long>("t: not support\n", getl, 0L).first, 4);
    auto getul = [](DkTextLines& l, unsigned long& v) { GetValue(l, v); };
    EXPECT_EQ(Read<unsigned long>("t: 18446744073709551615\n", getul, 0UL),
              std::make_pair(-1, 18446744073709551615UL));
    auto gets = [](DkTextLines& l, std::string& v) { GetValue(l, v); };
    EXPECT_EQ(Read<std::string>("name:  gfx a:b \n", gets, ""), std::make_pair(-1, std::string("  gfx a:b ")));
    EXPECT_EQ(Read<std::string>("whole\n", gets, ""), std::make_pair(-1, std::string("whole")));
    auto space = [](DkTextLines& l, unsigned int& v) { GetValueSpace(l, v); };
    EXPECT_EQ(Read<unsigned int>("speed 16\n", space, 0), std::make_pair(-1, 16u));
    EXPECT_EQ(Read<unsigned int>("16\n", space, 0), std::make_pair(-1, 16u));
}

TEST(GetValueD, BaseZeroOnTheWholeLine) {
    auto di = [](DkTextLines& l, int& v) { GetValueD(l, v); };
    EXPECT_EQ(Read<int>("0x10\n", di, 0), std::make_pair(-1, 16));
    EXPECT_EQ(Read<int>("010\n", di, 0), std::make_pair(-1, 8));
    EXPECT_EQ(Read<int>("10\n", di, 0), std::make_pair(-1, 10));
    EXPECT_EQ(Read<int>("a: 10\n", di, 0).first, 4);  // no colon handling
    auto du = [](DkTextLines& l, unsigned int& v) { GetValueD(l, v); };
    EXPECT_EQ(Read<unsigned int>("0xff\n", du, 0), std::make_pair(-1, 255u));
    auto dul = [](DkTextLines& l, unsigned long& v) { GetValueD(l, v); };
    EXPECT_EQ(Read<unsigned long>("0x10\n", dul, 5UL), std::make_pair(-1, 0UL));  // base 10
    EXPECT_EQ(Read<unsigned long>("123456789012\n", dul, 5UL), std::make_pair(-1, 123456789012UL));
}

// --- utilities ----------------------------------------------------------------

TEST(Utilities, IsNumber) {
    EXPECT_TRUE(IsNumber("0"));
    EXPECT_TRUE(IsNumber("0123456789"));
    EXPECT_FALSE(IsNumber(""));
    EXPECT_FALSE(IsNumber("-1"));
    EXPECT_FALSE(IsNumber("+1"));
    EXPECT_FALSE(IsNumber(" 1"));
    EXPECT_FALSE(IsNumber("1 "));
    EXPECT_FALSE(IsNumber("1a"));
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
    int values[4] = {1, 2, 3, 4};
    AddValueForArray(values, 3, -1);
    EXPECT_EQ(std::vector<int>(values, values + 4), (std::vector<int>{0, 1, 2, 4}));
    unsigned int u[2] = {1, 2};
    AddValueForArray(u, 2, 10u);
    EXPECT_EQ(u[1], 12u);
}

}  // namespace
}  // namespace dksml

namespace dksml {
namespace {

// Unqualified calls with std::string arguments must reach dksml's functions,
// not std::stoi & co. found by argument-dependent lookup.
TEST(Conversions, UnqualifiedCallsWithStdStringThrowDkSmlReturn) {
    std::string bad = "x";
    EXPECT_EQ(ThrownCode([&] { (void)stoi(bad); }), 4);
    EXPECT_EQ(ThrownCode([&] { (void)stoi(std::string("not support")); }), 3);
    EXPECT_EQ(ThrownCode([&] { (void)stoul(bad); }), 4);
    EXPECT_EQ(ThrownCode([&] { (void)stol(bad); }), 4);
    EXPECT_EQ(ThrownCode([&] { (void)stof(bad); }), 4);
    std::string hex = "1f";
    EXPECT_EQ(stoi(hex, 16), 31);
    EXPECT_EQ(stoi("0x10", 0), 16);
}

}  // namespace
}  // namespace dksml

namespace dksml {
namespace {

// Found by the fuzz targets.
TEST(FuzzRegressions, DefaultConstructedViewAndWrappingAdd) {
    int i = 5;
    EXPECT_FALSE(stoi_nt(std::string_view(), i));  // data() is null: no memcpy from it
    EXPECT_EQ(i, 5);
    int values[2] = {INT_MAX, INT_MIN};
    AddValueForArray(values, 2, 1);
    EXPECT_EQ(values[0], INT_MIN);  // wraps, no signed-overflow UB
    EXPECT_EQ(values[1], INT_MIN + 1);
}

}  // namespace
}  // namespace dksml
