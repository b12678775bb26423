#include "features/pcie/dk_smbios.h"

namespace dksml {
namespace {

constexpr uint8_t c_systemSlotType = 9;
constexpr uint8_t c_endOfTableType = 127;
constexpr size_t c_headerLength = 4;     // type, length, handle
constexpr size_t c_slotIdOffset = 9;
constexpr size_t c_busOffset = 15;
constexpr size_t c_devfnOffset = 16;
constexpr uint8_t c_functionBits = 0x07;

uint8_t Byte(std::string_view table, size_t at) { return static_cast<uint8_t>(table[at]); }

// Past the string set that starts at `at`: up to and including the first
// two consecutive zero bytes. False when the table ends first.
bool SkipDmiStrings(std::string_view table, size_t& at) {
    for (size_t i = at; i + 1 < table.size(); ++i) {
        if (table[i] == '\0' && table[i + 1] == '\0') {
            at = i + 2;
            return true;
        }
    }
    return false;
}

}  // namespace

DkSmlReturn FindDmiSlot(std::string_view table, uint32_t address, uint32_t* slot) {
    size_t at = 0;
    while (at + 2 <= table.size()) {
        const uint8_t type = Byte(table, at);
        const size_t length = Byte(table, at + 1);
        if (length < c_headerLength || at + length > table.size()) return DK_SML_ERROR_SYSFS;
        if (type == c_systemSlotType && length > c_devfnOffset) {
            const uint32_t bus = Byte(table, at + c_busOffset);
            const uint32_t devfn = Byte(table, at + c_devfnOffset) & ~c_functionBits;
            if ((bus << 8 | devfn) == address) {
                *slot = Byte(table, at + c_slotIdOffset) | static_cast<uint32_t>(Byte(table, at + c_slotIdOffset + 1)) << 8;
                return DK_SML_SUCCESS;
            }
        }
        size_t next = at + length;
        if (!SkipDmiStrings(table, next)) return DK_SML_ERROR_SYSFS;
        if (type == c_endOfTableType) break;
        at = next;
    }
    return DK_SML_ERROR_NOT_SUPPORTED;
}

}  // namespace dksml
