// The board serial from the driver's EEPROM summary ("showe2prominfo"):
// "key: value" lines, one of them "board serial: <text>". Every device of a
// multi-device board reads the same EEPROM, so equal serials mean one board.
#include "features/eeprom/dk_eeprom.h"

#include <cstring>
#include <string>
#include <string_view>

#include "core/idk_device.h"
#include "driver/dk_opcode.h"
#include "driver/dk_text.h"

namespace dksml {
namespace {

constexpr std::string_view c_boardSerialKey = "board serial";
constexpr std::string_view c_notSupported = "not support";

// Value of the line whose key is `key`: DK_SML_ERROR_NOT_SUPPORTED when no
// line has it, DK_SML_ERROR_SYSFS when a non-empty line has no colon or the
// value is empty.
DkSmlReturn FindEepromValue(std::string_view text, std::string_view key, std::string_view& value) {
    bool found = false;
    const DkSmlReturn walked = VisitColonLines(text, [&](std::string_view lineKey, std::string_view rest) {
        if (lineKey != key) return false;
        value = TrimView(rest, " \t\r");
        found = true;
        return true;
    });
    if (walked != DK_SML_SUCCESS) return walked;
    if (!found) return DK_SML_ERROR_NOT_SUPPORTED;
    return value.empty() ? DK_SML_ERROR_SYSFS : DK_SML_SUCCESS;
}

// The text-result rule: *size becomes the length + 1; the text is copied only
// when the caller's size was larger than its length.
DkSmlReturn CopyText(std::string_view value, char* buffer, uint32_t* size) {
    const uint32_t capacity = *size;
    *size = static_cast<uint32_t>(value.size() + 1);
    if (capacity <= value.size()) return DK_SML_ERROR_INSUFFICIENT_SIZE;
    std::memcpy(buffer, value.data(), value.size());
    buffer[value.size()] = '\0';
    return DK_SML_SUCCESS;
}

}  // namespace

// Only the serial is read from the summary; the summary as a whole is not
// offered yet and answers DK_SML_ERROR_NOT_SUPPORTED.
DkSmlReturn DkEeprom::GetEepromInfo(IDkDevice*, char*, uint32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }

DkSmlReturn DkEeprom::GetBoardSerial(IDkDevice* device, char* serial, uint32_t* size) {
    if (device == nullptr || serial == nullptr || size == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    // A virtual function has no EEPROM of its own.
    if (device->IsVf()) return DK_SML_ERROR_NOT_SUPPORTED;
    thread_local std::string text;
    const DkSmlReturn result = device->FetchDriverData(0, DRAVIK_SMI_SHOWE2PROMINFO, text);
    if (result != DK_SML_SUCCESS) return result;
    if (text.find(c_notSupported) != std::string::npos) return DK_SML_ERROR_NOT_SUPPORTED;
    std::string_view value;
    const DkSmlReturn found = FindEepromValue(text, c_boardSerialKey, value);
    if (found != DK_SML_SUCCESS) return found;
    return CopyText(value, serial, size);
}

}  // namespace dksml
