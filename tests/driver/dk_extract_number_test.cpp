// ExtractNumber must give exactly what `std::istringstream >> T` gives
// (libstdc++): success/failure and the value on success.
#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <typeinfo>

#include "driver/dk_text.h"

namespace dksml {
namespace {

const char* const c_fixedInputs[] = {
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
    "\v\f\r7",
};

template <typename T>
std::string Show(T v) {
    if constexpr (std::is_floating_point_v<T>) {
        std::ostringstream os;
        os.precision(17);
        os << v;
        return os.str();
    } else {
        return std::to_string(v);
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
            << typeid(T).name() << " '" << text << "' ours " << Show(ours) << " stream " << Show(fromStream);
    } else {
        EXPECT_EQ(ours, T(77)) << "output must be untouched on failure";
    }
}

template <typename T>
void ExpectAllSame(const std::string& text) {
    ExpectSameAsStream<T>(text);
}

void ExpectAllTypesSame(const std::string& text) {
    ExpectAllSame<int>(text);
    ExpectAllSame<unsigned int>(text);
    ExpectAllSame<long>(text);
    ExpectAllSame<unsigned long>(text);
    ExpectAllSame<long long>(text);
    ExpectAllSame<unsigned long long>(text);
    ExpectAllSame<short>(text);
    ExpectAllSame<unsigned short>(text);
    ExpectAllSame<float>(text);
    ExpectAllSame<double>(text);
}

TEST(ExtractNumber, FixedInputsMatchTheStream) {
    for (const char* text : c_fixedInputs) ExpectAllTypesSame(text);
}

TEST(ExtractNumber, RandomInputsMatchTheStream) {
    const std::string alphabet = " \t\n-+0123456789.eExXab";
    std::mt19937 rng(20261121);
    for (int i = 0; i < 20000; ++i) {
        std::string text;
        const int len = static_cast<int>(rng() % 24);
        for (int j = 0; j < len; ++j) text.push_back(alphabet[rng() % alphabet.size()]);
        ExpectAllTypesSame(text);
        if (HasFatalFailure() || HasFailure()) return;
    }
}

TEST(ExtractNumber, LibstdcxxRulesSpelledOut) {
    unsigned int u = 0;
    ASSERT_TRUE(ExtractNumber("-1", u));
    EXPECT_EQ(u, 4294967295u);  // unsigned wraps a leading '-'
    ASSERT_TRUE(ExtractNumber("-4294967295", u));
    EXPECT_EQ(u, 1u);
    EXPECT_FALSE(ExtractNumber("-4294967296", u));  // magnitude does not fit
    EXPECT_FALSE(ExtractNumber("4294967296", u));

    int i = 5;
    EXPECT_FALSE(ExtractNumber("2147483648", i));  // overflow fails
    EXPECT_EQ(i, 5);
    ASSERT_TRUE(ExtractNumber("  1200 MHz", i));
    EXPECT_EQ(i, 1200);
    ASSERT_TRUE(ExtractNumber("0x10", i));  // decimal only: stops at 'x'
    EXPECT_EQ(i, 0);
    ASSERT_TRUE(ExtractNumber("010", i));  // no octal
    EXPECT_EQ(i, 10);

    double d = 0;
    EXPECT_FALSE(ExtractNumber("1e", d));  // libstdc++ hands "1e" to strtod whole
    ASSERT_TRUE(ExtractNumber("1.5e3x", d));
    EXPECT_EQ(d, 1500.0);
    float f = 0;
    EXPECT_FALSE(ExtractNumber("1e39", f));  // overflow
    EXPECT_FALSE(ExtractNumber("inf", f));
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
            {
                std::vector<int> got(count, 99);
                DkTextLines lines(line);
                GetArrayValue<int>(lines, got.data(), count, -1);
                EXPECT_EQ(got, StreamArray<int>(part, count, -1, false)) << "int '" << line << "' " << count;
            }
            {
                std::vector<unsigned int> got(count, 99);
                DkTextLines lines(line);
                GetArrayValue<unsigned int>(lines, got.data(), count, 7u);
                EXPECT_EQ(got, StreamArray<unsigned int>(part, count, 7u, false)) << "uint '" << line << "'";
            }
            {
                std::vector<unsigned int> got(count, 99);
                DkTextLines lines(line);
                GetHexArrayValue(lines, got.data(), count, 7u);
                EXPECT_EQ(got, StreamArray<unsigned int>(part, count, 7u, true)) << "hex '" << line << "'";
            }
        }
    }
}

TEST(ArrayReaders, SpecExample) {
    int values[4] = {9, 9, 9, 9};
    DkTextLines lines("v: 5 6\n");
    GetArrayValue<int>(lines, values, 4, -1);
    EXPECT_EQ(values[0], 5);
    EXPECT_EQ(values[1], 6);
    EXPECT_EQ(values[2], 0);
    EXPECT_EQ(values[3], -1);
}

TEST(ArrayReaders, HexWithAndWithoutPrefix) {
    unsigned int values[3] = {};
    DkTextLines lines("mask: 0x1F ff 10\n");
    GetHexArrayValue(lines, values, 3, 0u);
    EXPECT_EQ(values[0], 0x1Fu);
    EXPECT_EQ(values[1], 0xFFu);
    EXPECT_EQ(values[2], 0x10u);
}

TEST(ArrayReaders, NoLineThrows4) {
    int values[2] = {};
    DkTextLines lines("");
    try {
        GetArrayValue<int>(lines, values, 2, 0);
        FAIL() << "no throw";
    } catch (DkSmlReturn code) {
        EXPECT_EQ(code, DK_SML_ERROR_SYSFS);
    }
}

}  // namespace
}  // namespace dksml
