// Both status tables: the texts of the codes a tidy-up would break and the
// fallbacks for unknown codes.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "dksml.h"

namespace {

struct CodeText {
    uint32_t code;
    const char* text;
};

// The full tables are a copy of the library's own; these rows are the ones a
// tidy-up would break: both ends of each table, the reserved names out of
// order, and the shared and misspelt texts callers match on as published.
constexpr CodeText c_nativeTexts[] = {
    {0, "Done"},
    {10, "An input argument is not large enough"},
    {11, "Reserved3"},
    {16, "Reserved1"},
    {17, "Reserved2"},
    {26, "Load dynamic library failed"},
};

constexpr CodeText c_compatTexts[] = {
    {0, "The operation was successful"},
    {22, "The requested vgpu operation is not available on target device, becasue ECC is enabled"},
    {23, "Ran out of critical resources, other than memory"},
    {24, "Ran out of critical resources, other than memory"},
    {26, "The requested functionality has been deprecated"},
    {999, "An internal driver error occurred"},
};

std::string NativeText(uint32_t code) { return dkSmlGetErrorString(static_cast<DkSmlReturn>(code)); }

const char* CompatText(uint32_t code) { return dkSmlExErrorString(static_cast<DkSmlExReturn>(code)); }

TEST(StatusTextTest, NativeCodesHaveTheirTextOrTheFallback) {
    for (const auto& entry : c_nativeTexts) EXPECT_EQ(NativeText(entry.code), entry.text) << "code " << entry.code;
    for (uint32_t code : {27u, 100u, 998u, 999u, 1000u, 0xFFFFFFFFu})
        EXPECT_EQ(NativeText(code), "Unknown error") << "code " << code;
}

TEST(StatusTextTest, CompatCodesHaveTheirTextOrAnEmptyOne) {
    for (const auto& entry : c_compatTexts) {
        ASSERT_NE(CompatText(entry.code), nullptr) << "code " << entry.code;
        EXPECT_STREQ(CompatText(entry.code), entry.text) << "code " << entry.code;
    }
    for (uint32_t code : {27u, 28u, 500u, 998u, 1000u, 0xFFFFFFFFu}) {
        const char* text = CompatText(code);
        ASSERT_NE(text, nullptr) << "code " << code;
        EXPECT_STREQ(text, "") << "code " << code;
    }
}

// Callers keep the pointers: they must not move between calls.
TEST(StatusTextTest, TextsAreStableForTheLibraryLifetime) {
    EXPECT_EQ(dkSmlGetErrorString(DK_SML_ERROR_SYSFS), dkSmlGetErrorString(DK_SML_ERROR_SYSFS));
    EXPECT_EQ(dkSmlExErrorString(DK_SML_EX_ERROR_UNKNOWN), dkSmlExErrorString(DK_SML_EX_ERROR_UNKNOWN));
}

}  // namespace
