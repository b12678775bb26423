#include "features/version/dk_version_text.h"

#include <cstring>

#include "driver/dk_text.h"

namespace dksml {

const DkFwUnitRow c_fwUnitName[9] = {
    {DK_SML_VERSION_FW_SMP0, "SMP0"}, {DK_SML_VERSION_FW_SMP1, "SMP1"}, {DK_SML_VERSION_FW_CCX0, "CCX0"},
    {DK_SML_VERSION_FW_CCX1, "CCX1"}, {DK_SML_VERSION_FW_CCX2, "CCX2"}, {DK_SML_VERSION_FW_CCX3, "CCX3"},
    {DK_SML_VERSION_FW_MCU, "MCU"},   {DK_SML_VERSION_FW_VR0, "VR0"},   {DK_SML_VERSION_FW_VR1, "VR1"},
};

namespace {

// Field of each firmware key, in the record's order.
struct DkFwField {
    std::string_view key;
    char (DkSmlFwVersion::*field)[DK_SML_VERSION_LENGTH];
};

constexpr DkFwField c_fwFields[] = {
    {"SMP0", &DkSmlFwVersion::smp0}, {"SMP1", &DkSmlFwVersion::smp1}, {"CCX0", &DkSmlFwVersion::ccx0},
    {"CCX1", &DkSmlFwVersion::ccx1}, {"CCX2", &DkSmlFwVersion::ccx2}, {"CCX3", &DkSmlFwVersion::ccx3},
    {"MCU", &DkSmlFwVersion::mcu},   {"VR0", &DkSmlFwVersion::vr0},   {"VR1", &DkSmlFwVersion::vr1},
};

// Walks "KEY: value" lines; `visit(key, value)` returns true to stop.
template <typename Visit>
DkSmlReturn ForEachFirmwareLine(std::string_view text, Visit&& visit) {
    return VisitColonLines(text, [&](std::string_view key, std::string_view rest) {
        return visit(key, VersionValue(rest));
    });
}

}  // namespace

std::string_view FwUnitKey(DkSmlVersionUnit unit) {
    for (const DkFwUnitRow& row : c_fwUnitName)
        if (row.unit == unit) return row.key;
    return {};
}

void PutText(std::string_view text, char* buffer, uint32_t capacity) {
    if (buffer == nullptr || capacity == 0) return;
    const std::size_t length = text.size() < capacity ? text.size() : capacity - 1;
    if (length > 0) std::memcpy(buffer, text.data(), length);  // an empty view may hold no pointer
    buffer[length] = '\0';
}

std::string_view VersionValue(std::string_view text) {
    const std::size_t colon = text.find(':');
    if (colon != std::string_view::npos) text.remove_prefix(colon + 1);
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) return {};
    text.remove_prefix(first);
    const std::size_t last = text.find_last_not_of(" \t\r\n");
    return last == std::string_view::npos ? std::string_view{} : text.substr(0, last + 1);
}

DkSmlReturn CopyVersionValue(std::string_view value, char* buffer, uint32_t* size) {
    if (buffer == nullptr || size == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    PutText(c_unknown, buffer, *size);
    if (value.empty()) return DK_SML_ERROR_SYSFS;
    const uint32_t capacity = *size;
    const uint64_t needed = static_cast<uint64_t>(value.size()) + 1;
    *size = needed > UINT32_MAX ? UINT32_MAX : static_cast<uint32_t>(needed);
    if (capacity <= value.size()) return DK_SML_ERROR_INSUFFICIENT_SIZE;
    PutText(value, buffer, capacity);
    return DK_SML_SUCCESS;
}

DkSmlReturn FindFirmwareValue(std::string_view text, std::string_view name, std::string_view& value) {
    bool found = false;
    const DkSmlReturn result = ForEachFirmwareLine(text, [&](std::string_view key, std::string_view v) {
        if (key.find(name) == std::string_view::npos) return false;
        value = v;
        found = true;
        return true;
    });
    if (result != DK_SML_SUCCESS) return result;
    return found ? DK_SML_SUCCESS : DK_SML_ERROR_NOT_SUPPORTED;
}

DkSmlReturn FillFirmwareRecord(std::string_view text, DkSmlFwVersion& record) {
    return ForEachFirmwareLine(text, [&](std::string_view key, std::string_view value) {
        for (const DkFwField& field : c_fwFields)
            if (key == field.key) PutText(value, record.*field.field, DK_SML_VERSION_LENGTH);
        return false;
    });
}

void InitFirmwareRecord(DkSmlFwVersion& record) {
    for (std::size_t i = 0; i < std::size(c_fwFields); ++i)
        PutText(i < 2 ? c_unknown : c_fwNotSupport, record.*c_fwFields[i].field, DK_SML_VERSION_LENGTH);
}

DkSmlReturn AnswerWholeText(std::string_view text, char* buffer, uint32_t size) {
    if (size == 0) return DK_SML_ERROR_INSUFFICIENT_SIZE;
    if (text.size() >= size) {
        PutText(c_unknown, buffer, size);
        return DK_SML_ERROR_INSUFFICIENT_SIZE;
    }
    PutText(text, buffer, size);
    return DK_SML_SUCCESS;
}

}  // namespace dksml
