// ReadSysfs forms, ReadStringStream, ProcessValueByColon, ParseValueAfterColon,
// ParseKeyValue and GetKVData/GetData.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "driver/dk_text.h"
#include "dk_driver_test_util.h"

namespace dksml {
namespace {

using test::TempDir;
using test::ThrownCode;

// --- ReadSysfs with an extractor -------------------------------------------

// One int per file; an absent file (4) and no extractor (1) change nothing.
// What each extractor keeps of a line is pinned by Extractors.Table, the
// number read from it by ExtractNumber.InputsMatchTheStream.
TEST(ReadSysfsExtractor, OneIntTable) {
    struct Case {
        const char* content;
        ValueExtractor extractor;
        DkSmlReturn code;
        int value;
    };
    const Case cases[] = {
        {"42\n", ExtractRawValueStr, DK_SML_SUCCESS, 42},
        {"not supported\n", ExtractRawValueStr, DK_SML_ERROR_NOT_SUPPORTED, 0},
        {"gfx: not support\n", ExtractValueStrByColon, DK_SML_ERROR_NOT_SUPPORTED, 0},
        {"abc\n", ExtractRawValueStr, DK_SML_ERROR_SYSFS, 0},
        {"", ExtractRawValueStr, DK_SML_ERROR_SYSFS, 0},
        {"GFX: 800\n", ExtractValueStrByColon, DK_SML_SUCCESS, 800},
    };
    TempDir dir;
    int n = 0;
    for (const Case& c : cases) {
        const std::string path = dir.Write("f" + std::to_string(n++), c.content);
        int value = 12345;
        EXPECT_EQ(ReadSysfs(path, c.extractor, value), c.code) << "'" << c.content << "'";
        EXPECT_EQ(value, c.code == DK_SML_SUCCESS ? c.value : 12345) << "'" << c.content << "'";
    }
    int value = 1;
    EXPECT_EQ(ReadSysfs(dir / "absent", ExtractRawValueStr, value), DK_SML_ERROR_SYSFS);
    EXPECT_EQ(ReadSysfs(dir.Write("f", "5\n"), nullptr, value), DK_SML_ERROR_FAILURE);
    EXPECT_EQ(value, 1);
}

TEST(ReadSysfsExtractor, SeveralOutputsPartialRead) {
    TempDir dir;
    const std::string path = dir.Write("multi", "a: 1\nb: 2.5\nc: not support\nd: 4\n");
    int a = 0;
    double b = 0;
    unsigned c = 77;
    long d = 88;
    EXPECT_EQ(ReadSysfs(path, ExtractValueStrByColon, a, b, c, d), DK_SML_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(a, 1);
    EXPECT_EQ(b, 2.5);
    EXPECT_EQ(c, 77u);  // the failing one is untouched
    EXPECT_EQ(d, 88);   // later ones never read

    const std::string shortFile = dir.Write("short", "1\n2\n");
    int x = 0, y = 0, z = 9;
    EXPECT_EQ(ReadSysfs(shortFile, ExtractRawValueStr, x, y, z), DK_SML_ERROR_SYSFS);
    EXPECT_EQ(x, 1);
    EXPECT_EQ(y, 2);
    EXPECT_EQ(z, 9);

    const std::string good = dir.Write("good", "v: 3\nw: 4000000000\nname: gfx extra\nb: 1\n");
    int v = 0;
    unsigned long long w = 0;
    std::string name;
    bool flag = false;
    EXPECT_EQ(ReadSysfs(good, ExtractValueStrByColon, v, w, name, flag), DK_SML_SUCCESS);
    EXPECT_EQ(v, 3);
    EXPECT_EQ(w, 4000000000ull);
    EXPECT_EQ(name, "gfx");  // one word, as `stream >> std::string`
    EXPECT_TRUE(flag);
    // A bool follows the stream: only 0 and 1 read.
    EXPECT_EQ(ReadSysfs(dir.Write("b2", "2\n"), ExtractRawValueStr, flag), DK_SML_ERROR_SYSFS);
}

// --- line parsers -----------------------------------------------------------

// ExtractNumber on what the colon extractor keeps; both are pinned on their
// own (ExtractNumber.InputsMatchTheStream, Extractors.Table). Here: that they
// are combined, and that the "not support" marker gets no code of its own.
TEST(ProcessValueByColon, NumberAfterTheColonWithoutMarkerCheck) {
    int i = 0;
    EXPECT_EQ(ProcessValueByColon<int>("x: -5 W", &i), DK_SML_SUCCESS);
    EXPECT_EQ(i, -5);
    i = 3;
    EXPECT_EQ(ProcessValueByColon<int>("x: not support", &i), DK_SML_ERROR_SYSFS);
    EXPECT_EQ(i, 3);
}

TEST(ReadSysfsLineParser, EachOutputTakesALine) {
    unsigned int out[3] = {9, 9, 9};
    DkTextLines lines("a: 1\nb: 2\nc: 3\n");
    EXPECT_EQ(ReadSysfs<unsigned int>(lines, ProcessValueByColon<unsigned int>, out, 3), DK_SML_SUCCESS);
    EXPECT_EQ(std::vector<unsigned int>(out, out + 3), (std::vector<unsigned int>{1, 2, 3}));

    int partial[3] = {9, 9, 9};
    DkTextLines bad("a: 1\nb: x\nc: 3\n");
    EXPECT_EQ(ReadSysfs<int>(bad, ProcessValueByColon<int>, partial, 3), DK_SML_ERROR_SYSFS);
    EXPECT_EQ(std::vector<int>(partial, partial + 3), (std::vector<int>{1, 9, 9}));

    int missing[2] = {0, 0};
    DkTextLines one("a: 1\n");
    EXPECT_EQ(ReadSysfs<int>(one, ProcessValueByColon<int>, missing, 2), DK_SML_ERROR_SYSFS);

    TempDir dir;
    long fromFile[2] = {};
    EXPECT_EQ(ReadSysfs<long>(dir.Write("p", "x: 5\ny: 6\n"), ProcessValueByColon<long>, fromFile, 2),
              DK_SML_SUCCESS);
    EXPECT_EQ(fromFile[1], 6);
    EXPECT_EQ(ReadSysfs<long>(dir / "absent", ProcessValueByColon<long>, fromFile, 1), DK_SML_ERROR_SYSFS);
}

DkSmlReturn ParserReturning3(std::string_view, int*) { return DK_SML_ERROR_NOT_SUPPORTED; }

// Both cursor forms take one line each and fail once the lines run out.
TEST(CursorForms, EachCallTakesOneLine) {
    DkTextLines lines("v: 8\n10\nw: 9\n");
    int v = 0;
    int raw = 0;
    EXPECT_EQ(ReadStringStream<int>(lines, ProcessValueByColon<int>, &v), DK_SML_SUCCESS);
    EXPECT_EQ(v, 8);
    EXPECT_EQ(ReadSysfs(lines, ExtractRawValueStr, raw), DK_SML_SUCCESS);
    EXPECT_EQ(raw, 10);
    EXPECT_EQ(ReadStringStream<int>(lines, ParserReturning3, &v), DK_SML_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(ReadStringStream<int>(lines, ProcessValueByColon<int>, &v), DK_SML_ERROR_SYSFS);
    EXPECT_EQ(ReadSysfs(lines, ExtractRawValueStr, raw), DK_SML_ERROR_SYSFS);
}

// --- ParseValueAfterColon ---------------------------------------------------

TEST(ParseValueAfterColon, ValuesOfEveryLine) {
    std::vector<unsigned int> out;
    EXPECT_EQ(ParseValueAfterColon<unsigned int>("a: 1 2 3\nb: 4\n", out), DK_SML_SUCCESS);
    EXPECT_EQ(out, (std::vector<unsigned int>{1, 2, 3, 4}));

    out.clear();
    EXPECT_EQ(ParseValueAfterColon<unsigned int>("a: 1\nb: not support\n", out), DK_SML_SUCCESS);
    EXPECT_EQ(out, (std::vector<unsigned int>{1}));

    out.clear();
    EXPECT_EQ(ParseValueAfterColon<unsigned int>("a:", out), DK_SML_ERROR_SYSFS);
    EXPECT_EQ(ParseValueAfterColon<unsigned int>("a: 1\n\nb: 2\n", out), DK_SML_ERROR_SYSFS);  // empty line

    std::vector<int> ints;
    EXPECT_EQ(ParseValueAfterColon<int>("5 6\nx: -1 junk 7\ny: \n", ints), DK_SML_SUCCESS);
    EXPECT_EQ(ints, (std::vector<int>{5, 6, -1}));
    ints.clear();
    EXPECT_EQ(ParseValueAfterColon<int>("", ints), DK_SML_SUCCESS);
    EXPECT_TRUE(ints.empty());
}

// --- ParseKeyValue ------------------------------------------------------------

TEST(ParseKeyValue, ListAndMap) {
    const char* text =
        "GFX: 1200 1300\n"
        "  MEM\t: 800\n"
        "SOC: not support\n"
        "VCN: none\n"
        "FCLK: -5 x 9\n";
    DkKeyValueList list;
    ASSERT_EQ(ParseKeyValue(text, list), DK_SML_SUCCESS);
    EXPECT_EQ(list, (DkKeyValueList{{"GFX", {1200, 1300}}, {"MEM", {800}}, {"FCLK", {-5}}}));

    DkKeyValueMap map;
    ASSERT_EQ(ParseKeyValue(text, map), DK_SML_SUCCESS);
    EXPECT_EQ(map, (DkKeyValueMap{{"GFX", {1200, 1300}}, {"MEM", {800}}, {"FCLK", {-5}}}));
}

TEST(ParseKeyValue, FailuresLeaveTheOutputAlone) {
    const char* const bad[] = {"a: 1\nno colon\n", ": 5\n", " \t: 5\n", "a: 1\n\n", "\n"};
    for (const char* text : bad) {
        DkKeyValueList list = {{"keep", {1}}};
        EXPECT_EQ(ParseKeyValue(text, list), DK_SML_ERROR_SYSFS) << text;
        ASSERT_EQ(list.size(), 1u);
        EXPECT_EQ(list[0].first, "keep");
        DkKeyValueMap map = {{"keep", {1}}};
        EXPECT_EQ(ParseKeyValue(text, map), DK_SML_ERROR_SYSFS) << text;
        EXPECT_EQ(map.size(), 1u);
    }
}

TEST(ParseKeyValue, DuplicatesEmptyTextAndLabelWithColons) {
    DkKeyValueList list;
    ASSERT_EQ(ParseKeyValue("fan_rpm: 1\nfan_rpm: 2\n", list), DK_SML_SUCCESS);
    EXPECT_EQ(list, (DkKeyValueList{{"fan_rpm", {1}}, {"fan_rpm", {2}}}));  // file order, both kept
    DkKeyValueMap map;
    ASSERT_EQ(ParseKeyValue("fan_rpm: 1\nfan_rpm: 2\n", map), DK_SML_SUCCESS);
    EXPECT_EQ(map, (DkKeyValueMap{{"fan_rpm", {2}}}));  // last one wins
    ASSERT_EQ(ParseKeyValue("", list), DK_SML_SUCCESS);
    EXPECT_TRUE(list.empty());
    // "a" has " b: 3", which holds no integer first.
    ASSERT_EQ(ParseKeyValue("a: b: 3\nc:4", list), DK_SML_SUCCESS);
    EXPECT_EQ(list, (DkKeyValueList{{"c", {4}}}));
}

// --- GetKVData / GetData ------------------------------------------------------

TEST(GetKVData, JoinsTrimmedPairsTruncatesAndFails) {
    char wide[64];
    ASSERT_EQ(GetKVData("Vendor: abc\nModel:  x1 \n", wide, sizeof wide), DK_SML_SUCCESS);
    EXPECT_STREQ(wide, "Vendor:abc;Model:x1;");
    char buffer[8];
    ASSERT_EQ(GetKVData("Vendor: abc\n", buffer, sizeof buffer), DK_SML_SUCCESS);
    EXPECT_STREQ(buffer, "Vendor:");  // size - 1 characters
    char one[1] = {'x'};
    ASSERT_EQ(GetKVData("a: b\n", one, 1), DK_SML_SUCCESS);
    EXPECT_EQ(one[0], '\0');
    char keep[8] = "keep";
    EXPECT_EQ(GetKVData("a: b\nno colon\n", keep, sizeof keep), DK_SML_ERROR_SYSFS);
    EXPECT_STREQ(keep, "keep");
    ASSERT_EQ(GetKVData("", keep, sizeof keep), DK_SML_SUCCESS);
    EXPECT_STREQ(keep, "");
    ASSERT_EQ(GetKVData("a:\tb:c\t\n", buffer, sizeof buffer), DK_SML_SUCCESS);
    EXPECT_STREQ(buffer, "a:b:c;");
}

TEST(GetData, ThrowsWhereGetKVDataReturns4) {
    char buffer[32];
    DkTextLines lines("skip: 1\nA: 1\nB: 2\n");
    std::string_view first;
    ASSERT_TRUE(lines.Next(first));
    GetData(lines, buffer, sizeof buffer);
    EXPECT_STREQ(buffer, "A:1;B:2;");
    DkTextLines bad("A: 1\nB\n");
    EXPECT_EQ(ThrownCode([&] { GetData(bad, buffer, sizeof buffer); }), DK_SML_ERROR_SYSFS);
}

TEST(ExtractTagValue, KeepsTheColonInTheTag) {
    std::string_view tag = "t", value = "v";
    EXPECT_FALSE(ExtractTagValue("no colon", tag, value));
    EXPECT_EQ(tag, "t");
    ASSERT_TRUE(ExtractTagValue("Name: x:y", tag, value));
    EXPECT_EQ(tag, "Name:");
    EXPECT_EQ(value, " x:y");
    ASSERT_TRUE(ExtractTagValue(":", tag, value));
    EXPECT_EQ(tag, ":");
    EXPECT_EQ(value, "");
}

}  // namespace
}  // namespace dksml
