// Fixed English texts of both status families. The maps are built once at
// load time and only read afterwards, so lookups need no lock and may run
// before any initialisation.
#include <cstddef>
#include <cstdint>
#include <unordered_map>

#include "dksml.h"

namespace {

struct DkReturnText {
    DkSmlReturn code;
    const char* text;
};

struct DkExReturnText {
    DkSmlExReturn code;
    const char* text;
};

// The reserved codes keep their historical places: 11 is "Reserved3" while 16
// and 17 are "Reserved1" and "Reserved2".
constexpr DkReturnText c_returnTexts[] = {
    {DK_SML_SUCCESS, "Done"},
    {DK_SML_ERROR_FAILURE, "Any unexpected failure"},
    {DK_SML_ERROR_NO_DEVICE, "No available devices were discovered"},
    {DK_SML_ERROR_NOT_SUPPORTED, "Operation not support in target device"},
    {DK_SML_ERROR_SYSFS, "Sysfs error"},
    {DK_SML_ERROR_SYSFS_WRITE, "Sysfs write error"},
    {DK_SML_ERROR_DEVICE_NOT_AVAILABLE, "Target device is not available"},
    {DK_SML_ERROR_INVALID_DIE_ID, "Invalid die id"},
    {DK_SML_ERROR_PERMISSION, "Permission denied"},
    {DK_SML_ERROR_INVALID_INPUT, "Invalid input value"},
    {DK_SML_ERROR_INSUFFICIENT_SIZE, "An input argument is not large enough"},
    {DK_SML_RESERVED3, "Reserved3"},
    {DK_SML_ERROR_IOCTL, "Ioctl failed"},
    {DK_SML_ERROR_MMAP, "Mmap failure, please get detailed error from errno"},
    {DK_SML_ERROR_MUNMAP, "Unmmap failure, please get detailed error from errno"},
    {DK_SML_ERROR_MMAP_INPUT, "Invalid input for mmap"},
    {DK_SML_RESERVED1, "Reserved1"},
    {DK_SML_RESERVED2, "Reserved2"},
    {DK_SML_ERROR_VF_NOT_FOUND, "Target Vf not found"},
    {DK_SML_ERROR_INVALID_FREQUENCY, "Specified frequency is not valid"},
    {DK_SML_ERROR_FLR_IN_PROGRESS, "FLR is processing"},
    {DK_SML_ERROR_OPEN_DEVICE_FILE, "Open device file failed"},
    {DK_SML_ERROR_CLOSE_DEVICE_FILE, "Close device file failed"},
    {DK_SML_ERROR_BUSY, "Device is busy"},
    {DK_SML_ERROR_VF_VBIOS_MMIO, "Mmio address space is not enough for vf-vbios"},
    {DK_SML_ERROR_PCI_BRIDGE, "Get pci bridge failed"},
    {DK_SML_ERROR_LOAD_LIBRARY, "Load dynamic library failed"},
};

// Codes 23 and 24 share one text on purpose: callers match on it.
constexpr DkExReturnText c_exReturnTexts[] = {
    {DK_SML_EX_SUCCESS, "The operation was successful"},
    {DK_SML_EX_ERROR_UNINITIALIZED, "dksml was not first initialized with dkSmlExInit()"},
    {DK_SML_EX_ERROR_INVALID_ARGUMENT, "A supplied argument is invalid"},
    {DK_SML_EX_ERROR_NOT_SUPPORTED, "The requested operation is not available on target device"},
    {DK_SML_EX_ERROR_NO_PERMISSION, "The current user does not have permission for operation"},
    {DK_SML_EX_ERROR_ALREADY_INITIALIZED, "Deprecated: Multiple initializations are now allowed through ref counting"},
    {DK_SML_EX_ERROR_NOT_FOUND, "A query to find an object was unsuccessful"},
    {DK_SML_EX_ERROR_INSUFFICIENT_SIZE, "An input argument is not large enough"},
    {DK_SML_EX_ERROR_INSUFFICIENT_POWER, "A device's external power cables are not properly attached"},
    {DK_SML_EX_ERROR_DRIVER_NOT_LOADED, "Driver is not loaded"},
    {DK_SML_EX_ERROR_TIMEOUT, "User provided timeout passed"},
    {DK_SML_EX_ERROR_IRQ_ISSUE, "Kernel detected an interrupt issue with a GPU"},
    {DK_SML_EX_ERROR_LIBRARY_NOT_FOUND, "dksml Shared Library couldn't be found or loaded"},
    {DK_SML_EX_ERROR_FUNCTION_NOT_FOUND, "Local version of dksml doesn't implement this function"},
    {DK_SML_EX_ERROR_CORRUPTED_INFOROM, "infoROM is corrupted"},
    {DK_SML_EX_ERROR_GPU_IS_LOST, "The GPU has fallen off the bus or has otherwise become inaccessible"},
    {DK_SML_EX_ERROR_RESET_REQUIRED, "The GPU requires a reset before it can be used again"},
    {DK_SML_EX_ERROR_OPERATING_SYSTEM, "The GPU control device has been blocked by the operating system/cgroups"},
    {DK_SML_EX_ERROR_LIB_RM_VERSION_MISMATCH, "RM detects a driver/library version mismatch"},
    {DK_SML_EX_ERROR_IN_USE, "An operation cannot be performed because the GPU is currently in use"},
    {DK_SML_EX_ERROR_MEMORY, "Insufficient memory"},
    {DK_SML_EX_ERROR_NO_DATA, "No data"},
    {DK_SML_EX_ERROR_VGPU_ECC_NOT_SUPPORTED,
     "The requested vgpu operation is not available on target device, becasue ECC is enabled"},
    {DK_SML_EX_ERROR_INSUFFICIENT_RESOURCES, "Ran out of critical resources, other than memory"},
    {DK_SML_EX_ERROR_FREQ_NOT_SUPPORTED, "Ran out of critical resources, other than memory"},
    {DK_SML_EX_ERROR_ARGUMENT_VERSION_MISMATCH, "The provided version is invalid/unsupported"},
    {DK_SML_EX_ERROR_DEPRECATED, "The requested functionality has been deprecated"},
    {DK_SML_EX_ERROR_UNKNOWN, "An internal driver error occurred"},
};

template <typename Entry, std::size_t N>
std::unordered_map<uint32_t, const char*> BuildTextMap(const Entry (&entries)[N]) {
    std::unordered_map<uint32_t, const char*> map;
    map.reserve(N);
    for (const Entry& entry : entries) map.emplace(static_cast<uint32_t>(entry.code), entry.text);
    return map;
}

const std::unordered_map<uint32_t, const char*> c_returnTextMap = BuildTextMap(c_returnTexts);
const std::unordered_map<uint32_t, const char*> c_exReturnTextMap = BuildTextMap(c_exReturnTexts);

const char* FindText(const std::unordered_map<uint32_t, const char*>& map, uint32_t code, const char* fallback) {
    auto it = map.find(code);
    return it == map.end() ? fallback : it->second;
}

}  // namespace

extern "C" {

DKSML_API const char* dkSmlGetErrorString(DkSmlReturn result) {
    return FindText(c_returnTextMap, static_cast<uint32_t>(result), "Unknown error");
}

DKSML_API const char* dkSmlExErrorString(DkSmlExReturn result) {
    return FindText(c_exReturnTextMap, static_cast<uint32_t>(result), "");
}

}  // extern "C"
