// The firmware's SMBIOS table: any bytes end in 0, 3 or 4, never a crash,
// a hang or a read past the buffer (the sanitizers watch), and a slot is
// written only on success.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "features/pcie/dk_smbios.h"

using namespace dksml;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    // The first two bytes choose the address looked for.
    const uint32_t address = static_cast<uint32_t>(data[0]) << 8 | (data[1] & 0xF8u);
    const std::string_view table(reinterpret_cast<const char*>(data + 2), size - 2);
    uint32_t slot = 0xDEADBEEF;
    const DkSmlReturn result = FindDmiSlot(table, address, &slot);
    if (result != DK_SML_SUCCESS && result != DK_SML_ERROR_NOT_SUPPORTED && result != DK_SML_ERROR_SYSFS) std::abort();
    if (result != DK_SML_SUCCESS && slot != 0xDEADBEEF) std::abort();
    if (result == DK_SML_SUCCESS && slot > 0xFFFF) std::abort();
    return 0;
}
