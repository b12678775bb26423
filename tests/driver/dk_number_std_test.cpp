// The number readers against the standard library on one table of inputs:
// the stoi family must give what std::sto* gives, ExtractNumber exactly what
// `std::istringstream >> T` gives (libstdc++), success/failure and the value.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <iomanip>
#include <optional>
#include <sstream>
#include <string>
#include <typeinfo>

#include "driver/dk_text.h"
#include "dk_driver_test_util.h"

namespace dksml {
namespace {

using test::ThrownCode;

const char* const c_inputs[] = {
    "0", "-0", "+0", "1", "-1", "+5", "007", "  42", "\t\n 42", "42 MHz", "1200 MHz", "12abc", "abc",
    "", " ", "\t", "-", "+", "--1", "+-1", "- 1", ".", ".5", "5.", "5.5", "1e3", "1E3", "1e", "1e+", "1e-",
    "1e+3", "1e-3", "e5", "0e5", "1.5e3", "00.5", "000", "0x10", "0X1f", "010", "1,000", "nan", "inf",
    "-inf", "0x1p3", "127", "128", "-128", "-129", "255", "256", "32767", "32768", "-32768", "-32769",
    "65535", "65536", "-65535", "-65536", "2147483647", "2147483648", "-2147483648", "-2147483649",
    "4294967295", "4294967296", "-4294967295", "-4294967296", "9223372036854775807",
    "9223372036854775808", "-9223372036854775808", "-9223372036854775809", "18446744073709551615",
    "18446744073709551616", "-18446744073709551615", "-18446744073709551616",
    "99999999999999999999999999999", "3.4028235e38", "3.5e38", "-3.5e38", "1e308", "1e309", "-1e309",
    "1e-50", "1e-400", "0.0000001", "123456789012345678901234567890.5", "not support", "1\n2",
    "\v\f\r7", "\t-42", "09", "0x", "0xg", "1e39", "z", "Z", "  -0x10",
};

template <typename Fn>
auto StdOrNull(Fn&& fn) -> std::optional<decltype(fn())> {
    try {
        return fn();
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

TEST(Conversions, MatchTheStandardOnes) {
    for (const char* cstr : c_inputs) {
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

            // Keeps the low 32 bits on purpose: "-1" gives 4294967295.
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

template <typename T>
void ExpectSameAsStream(const std::string& text) {
    std::istringstream in(text);
    T fromStream = T(77);
    in >> fromStream;
    const bool streamOk = !in.fail();
    T ours = T(77);
    const bool ok = ExtractNumber<T>(text, ours);
    ASSERT_EQ(ok, streamOk) << typeid(T).name() << " '" << text << "'";
    if (ok) {
        EXPECT_EQ(std::memcmp(&ours, &fromStream, sizeof(T)), 0)
            << typeid(T).name() << " '" << text << "' ours " << std::setprecision(17) << ours << " stream "
            << fromStream;
    } else {
        EXPECT_EQ(ours, T(77)) << "output must be untouched on failure";
    }
}

template <typename... T>
void ExpectSameAsStreamFor(const std::string& text) {
    (ExpectSameAsStream<T>(text), ...);
}

void ExpectAllTypesSame(const std::string& text) {
    ExpectSameAsStreamFor<int, unsigned int, long, unsigned long, long long, unsigned long long, short,
                          unsigned short, float, double>(text);
}

TEST(ExtractNumber, InputsMatchTheStream) {
    for (const char* text : c_inputs) ExpectAllTypesSame(text);
}

TEST(ExtractNumber, MegabyteInputs) {
    const std::string digits(1 << 20, '9');
    ExpectAllTypesSame(digits);
    ExpectAllTypesSame(std::string(1 << 20, '0') + "12");
    ExpectAllTypesSame(std::string(1 << 20, ' ') + "12");
    ExpectAllTypesSame("0." + std::string(1 << 20, '0') + "1");
}

// GetHexArrayValue reads like `stream >> std::hex >> value`, GetArrayValue
// like `stream >> value`: compare slot by slot with a stream loop.
template <typename T>
std::vector<T> StreamArray(const std::string& valuePart, std::size_t count, T fill, bool hex) {
    std::vector<T> out(count, fill);
    std::istringstream in(valuePart);
    if (hex) in >> std::hex;
    for (std::size_t i = 0; i < count; ++i) {
        T v = T(0);  // "0 when there was no number"
        in >> v;
        out[i] = v;
        if (in.fail()) break;
    }
    return out;
}

TEST(ArrayReaders, MatchAStreamLoop) {
    const char* const parts[] = {
        " 5 6", " 1 2 3 4 5", "", "   ", " x", " 7 x 8", " -1 -2", " 0x10 0X1F ff FF g", " 0x", " 0xg 5",
        " 99999999999 1", " 4294967296 1", " 00 0x0 1", " +a -b", " 1\t2",
    };
    for (const char* part : parts) {
        const std::string line = std::string("v:") + part;
        for (std::size_t count : {0u, 1u, 3u, 6u}) {
            auto check = [&](auto fill, bool hex, auto read) {
                using T = decltype(fill);
                std::vector<T> got(count, T(99));
                DkTextLines lines(line);
                read(lines, got.data());
                EXPECT_EQ(got, StreamArray<T>(part, count, fill, hex)) << (hex ? "hex" : "dec") << " '" << line
                                                                        << "' " << count;
            };
            check(-1, false, [&](DkTextLines& l, int* out) { GetArrayValue<int>(l, out, count, -1); });
            check(7u, false, [&](DkTextLines& l, unsigned* out) { GetArrayValue<unsigned>(l, out, count, 7u); });
            check(7u, true, [&](DkTextLines& l, unsigned* out) { GetHexArrayValue(l, out, count, 7u); });
        }
    }
}

TEST(ArrayReaders, NoLineThrows4) {
    int values[2] = {};
    DkTextLines lines("");
    EXPECT_EQ(ThrownCode([&] { GetArrayValue<int>(lines, values, 2, 0); }), DK_SML_ERROR_SYSFS);
}

}  // namespace
}  // namespace dksml
