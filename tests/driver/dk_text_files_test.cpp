// Lines, whole-file reads, extractors and file tests. GetEnv is pinned by
// the register-dump tests in dk_handler_test.cpp (variable set and unset).
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "driver/dk_text.h"
#include "dk_driver_test_util.h"

namespace dksml {
namespace {

using test::TempDir;

std::vector<std::string> Lines(std::string_view text) {
    DkTextLines lines(text);
    std::vector<std::string> out;
    std::string_view line;
    while (lines.Next(line)) out.emplace_back(line);
    return out;
}

std::vector<std::string> GetlineLines(const std::string& text) {
    std::istringstream in(text);
    std::vector<std::string> out;
    std::string line;
    while (std::getline(in, line)) out.push_back(line);
    return out;
}

TEST(DkTextLines, BehavesLikeGetline) {
    const std::vector<std::string> cases = {
        "", "\n", "\n\n", "a", "a\n", "a\nb", "a\nb\n", "a\n\nb\n\n", "\na", "x:1\r\ny:2\r\n",
        std::string("nul\0inside\nline2", 16), "  \t \n", "last line without newline",
    };
    for (const std::string& text : cases) {
        EXPECT_EQ(Lines(text), GetlineLines(text)) << "text: '" << text << "'";
    }
}

TEST(DkTextLines, AtEndAndNoMoreLines) {
    DkTextLines lines("a\n");
    std::string_view line;
    EXPECT_FALSE(lines.AtEnd());
    ASSERT_TRUE(lines.Next(line));
    EXPECT_TRUE(lines.AtEnd());
    EXPECT_FALSE(lines.Next(line));
    EXPECT_EQ(line, "a");  // untouched when there is no line
}

// Exact bytes (an embedded NUL included) for empty files, small ones and
// sizes around the read buffer's.
TEST(ReadFileText, ReadsExactBytes) {
    TempDir dir;
    for (std::size_t size : {0u, 15u, 4095u, 4096u, 4097u, 8191u, 8192u, 8193u, 65535u, 65536u, 65537u,
                             200000u, 1u << 20}) {
        std::string content("a: 1\nb: 2\n\0tail", 15);
        for (std::size_t i = 0; content.size() < size; ++i)
            content += "line " + std::to_string(i) + ": " + std::to_string(i * 7) + "\n";
        content.resize(size);
        std::string text = "old";
        ASSERT_EQ(ReadFileText(dir.Write("f" + std::to_string(size), content), text), DK_SML_SUCCESS) << size;
        EXPECT_TRUE(text == content) << size;
    }
}

TEST(ReadFileText, FailuresLeaveTheOutputAlone) {
    TempDir dir;
    std::string text = "keep";
    EXPECT_EQ(ReadFileText(dir / "absent", text), DK_SML_ERROR_SYSFS);
    EXPECT_EQ(ReadFileText(dir.Path().string(), text), DK_SML_ERROR_SYSFS);  // a directory
    EXPECT_EQ(text, "keep");
}

TEST(Extractors, Table) {
    struct Case {
        std::string_view line, raw, colon, space;
    };
    const Case cases[] = {
        {"GFX: 1200 MHz", "GFX: 1200 MHz", " 1200 MHz", "1200 MHz"},
        {"1200", "1200", "1200", "1200"},
        {"a:b:c", "a:b:c", "b:c", "a:b:c"},
        {":", ":", "", ":"},
        {"", "", "", ""},
        {"key:", "key:", "", "key:"},
        {" lead", " lead", " lead", "lead"},
        {"tab\tsep", "tab\tsep", "tab\tsep", "tab\tsep"},  // only a blank separates
    };
    for (const Case& c : cases) {
        EXPECT_EQ(ExtractRawValueStr(c.line), c.raw) << c.line;
        EXPECT_EQ(ExtractValueStrByColon(c.line), c.colon) << c.line;
        EXPECT_EQ(ExtractValueStrSeparatedBySpace(c.line), c.space) << c.line;
    }
}

// Existence and writability are pinned where the library uses them: layout and
// manager directories on the virtual hosts, the absent file in
// HandlerTest.SetFailures, and the operating-mode tests of the API.
TEST(FileChecks, Readable) {
    TempDir dir;
    EXPECT_TRUE(CheckIfFileReadable(dir.Write("f", "1\n")));
    EXPECT_FALSE(CheckIfFileReadable(dir / "absent"));
}

}  // namespace
}  // namespace dksml
