// WriteSysfs: one line, values separated by one blank, newline at the end.
#include <gtest/gtest.h>

#include <string>

#include "driver/dk_text.h"
#include "dk_driver_test_util.h"

namespace dksml {
namespace {

using test::ReadWholeFile;
using test::TempDir;

enum DkTestEnum { kZero = 0, kSeven = 7 };
enum class DkTestScoped : uint8_t { kTwo = 2 };

TEST(WriteSysfs, Formats) {
    TempDir dir;
    const std::string p = dir / "attr";
    const char eight[9] = "abcdefgh";
    char text8[8] = {'1', '2', '3', '4', '5', '6', '7', '8'};  // not NUL-terminated
    const char* cstr = "cstr";
    struct Case {
        std::function<DkSmlReturn()> write;
        const char* expected;
    };
    const Case cases[] = {
        {[&] { return WriteSysfs(p, true); }, "1\n"},
        {[&] { return WriteSysfs(p, false); }, "0\n"},
        {[&] { return WriteSysfs(p, 4294967295u); }, "4294967295\n"},
        {[&] { return WriteSysfs(p, kSeven); }, "7\n"},
        {[&] { return WriteSysfs(p, DkTestScoped::kTwo); }, "2\n"},
        {[&] { return WriteSysfs(p, 1.5f, 0.1, 1234567.0, 1e-7); }, "1.5 0.1 1.23457e+06 1e-07\n"},
        {[&] { return WriteSysfs(p, std::string("x"), 1, 2u, 3u, 2.5f, 100.0f); }, "x 1 2 3 2.5 100\n"},
        {[&] { return WriteSysfs(p, eight, eight, 3); }, "abcdefgh abcdefgh 3\n"},
        {[&] { return WriteSysfs(p, text8); }, "12345678\n"},
        {[&] { return WriteSysfs(p, cstr); }, "cstr\n"},
        {[&] { return WriteSysfs(p, std::string("s"), static_cast<unsigned short>(65535)); }, "s 65535\n"},
        {[&] { return WriteSysfs(p, 1u, -2, 3, 4000000000UL); }, "1 -2 3 4000000000\n"},
        {[&] { return WriteSysfs(p, std::string("")); }, "\n"},
        {[&] { return WriteSysfs(p, std::string_view("view")); }, "view\n"},
    };
    for (const Case& c : cases) {
        ASSERT_EQ(c.write(), DK_SML_SUCCESS) << c.expected;
        EXPECT_EQ(ReadWholeFile(p), c.expected);
    }
}

// A missing directory (4) and a refused write (5) are pinned through the
// register-dump tests in dk_handler_test.cpp, which write with WriteSysfs.
TEST(WriteSysfs, TruncatesCreatesAndRefusesADirectory) {
    TempDir dir;
    const std::string p = dir.Write("attr", "a much longer previous content\n");
    ASSERT_EQ(WriteSysfs(p, std::string("3")), DK_SML_SUCCESS);
    EXPECT_EQ(ReadWholeFile(p), "3\n");
    ASSERT_EQ(WriteSysfs(dir / "new", 1), DK_SML_SUCCESS);
    EXPECT_EQ(ReadWholeFile(dir / "new"), "1\n");
    EXPECT_EQ(WriteSysfs(dir.Path().string(), 1), DK_SML_ERROR_SYSFS);
}

}  // namespace
}  // namespace dksml
