// Both status tables: every code's text (the reserved names out of order and
// the shared texts included) and the fallbacks for unknown codes.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "dksml.h"

namespace {

struct CodeText {
    uint32_t code;
    const char* text;
};

constexpr CodeText c_nativeTexts[] = {
    {0, "Done"},
    {1, "Any unexpected failure"},
    {2, "No available devices were discovered"},
    {3, "Operation not support in target device"},
    {4, "Sysfs error"},
    {5, "Sysfs write error"},
    {6, "Target device is not available"},
    {7, "Invalid die id"},
    {8, "Permission denied"},
    {9, "Invalid input value"},
    {10, "An input argument is not large enough"},
    {11, "Reserved3"},
    {12, "Ioctl failed"},
    {13, "Mmap failure, please get detailed error from errno"},
    {14, "Unmmap failure, please get detailed error from errno"},
    {15, "Invalid input for mmap"},
    {16, "Reserved1"},
    {17, "Reserved2"},
    {18, "Target Vf not found"},
    {19, "Specified frequency is not valid"},
    {20, "FLR is processing"},
    {21, "Open device file failed"},
    {22, "Close device file failed"},
    {23, "Device is busy"},
    {24, "Mmio address space is not enough for vf-vbios"},
    {25, "Get pci bridge failed"},
    {26, "Load dynamic library failed"},
};

constexpr CodeText c_compatTexts[] = {
    {0, "The operation was successful"},
    {1, "dksml was not first initialized with dkSmlExInit()"},
    {2, "A supplied argument is invalid"},
    {3, "The requested operation is not available on target device"},
    {4, "The current user does not have permission for operation"},
    {5, "Deprecated: Multiple initializations are now allowed through ref counting"},
    {6, "A query to find an object was unsuccessful"},
    {7, "An input argument is not large enough"},
    {8, "A device's external power cables are not properly attached"},
    {9, "Driver is not loaded"},
    {10, "User provided timeout passed"},
    {11, "Kernel detected an interrupt issue with a GPU"},
    {12, "dksml Shared Library couldn't be found or loaded"},
    {13, "Local version of dksml doesn't implement this function"},
    {14, "infoROM is corrupted"},
    {15, "The GPU has fallen off the bus or has otherwise become inaccessible"},
    {16, "The GPU requires a reset before it can be used again"},
    {17, "The GPU control device has been blocked by the operating system/cgroups"},
    {18, "RM detects a driver/library version mismatch"},
    {19, "An operation cannot be performed because the GPU is currently in use"},
    {20, "Insufficient memory"},
    {21, "No data"},
    {22, "The requested vgpu operation is not available on target device, becasue ECC is enabled"},
    {23, "Ran out of critical resources, other than memory"},
    {24, "Ran out of critical resources, other than memory"},
    {25, "The provided version is invalid/unsupported"},
    {26, "The requested functionality has been deprecated"},
    {999, "An internal driver error occurred"},
};

std::string NativeText(uint32_t code) { return dkSmlGetErrorString(static_cast<DkSmlReturn>(code)); }

const char* CompatText(uint32_t code) { return dkSmlExErrorString(static_cast<DkSmlExReturn>(code)); }

TEST(StatusTextTest, EveryNativeCodeHasItsText) {
    for (const auto& entry : c_nativeTexts) EXPECT_EQ(NativeText(entry.code), entry.text) << "code " << entry.code;
}

TEST(StatusTextTest, EveryCompatCodeHasItsText) {
    for (const auto& entry : c_compatTexts) {
        ASSERT_NE(CompatText(entry.code), nullptr) << "code " << entry.code;
        EXPECT_STREQ(CompatText(entry.code), entry.text) << "code " << entry.code;
    }
}

TEST(StatusTextTest, UnknownNativeCodesGetTheFallback) {
    for (uint32_t code : {27u, 100u, 998u, 999u, 1000u, 0xFFFFFFFFu})
        EXPECT_EQ(NativeText(code), "Unknown error") << "code " << code;
}

TEST(StatusTextTest, UnknownCompatCodesGetAnEmptyNonNullText) {
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
