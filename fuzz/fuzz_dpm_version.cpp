// DPM rows and version texts: FindLabelledRow, FindLineContaining,
// ParseCountAfterColon, ParseLevelValues (32- and 64-bit), VersionValue,
// CopyVersionValue with a buffer of fuzzed size, and the firmware parsers.
#include <memory>
#include <string>

#include "features/dpm/dk_dpm_layout.h"
#include "features/version/dk_version_text.h"
#include "fuzz_common.h"

using namespace dksml;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    const fuzz::Input in = fuzz::Split(data, size);
    const std::string_view name = c_dpmIpNameMap[in.control % DK_SML_DPM_IP_COUNT];

    std::string_view row;
    if (FindLabelledRow(in.text, name, row)) {
        uint32_t values[DK_SML_DPM_MAX_LEVELS];
        uint32_t count = 99;
        const DkSmlReturn r = ParseLevelValues(row, values, DK_SML_DPM_MAX_LEVELS, count);
        fuzz::Check(r == DK_SML_SUCCESS || r == DK_SML_ERROR_SYSFS || r == DK_SML_ERROR_NOT_SUPPORTED, "row code");
        fuzz::Check(count <= DK_SML_DPM_MAX_LEVELS, "row count within the record");
        uint64_t wide[4];
        (void)ParseLevelValues(row, wide, 4, count);
        fuzz::Check(count <= 4, "capacity respected");
    }
    std::string_view line;
    if (FindLineContaining(in.text, name, line)) {
        fuzz::Check(line.find(name) != std::string_view::npos, "line holds the name");
        uint32_t level = 0;
        const DkSmlReturn r = ParseCountAfterColon(line, level);
        fuzz::Check(r == DK_SML_SUCCESS || r == DK_SML_ERROR_SYSFS || r == DK_SML_ERROR_NOT_SUPPORTED, "count code");
    }

    const std::string_view value = VersionValue(in.text);
    fuzz::Check(value.size() <= in.text.size(), "value inside the text");
    const uint32_t capacity = in.control % 80;
    std::unique_ptr<char[]> buffer(new char[capacity == 0 ? 1 : capacity]);
    uint32_t sizeInOut = capacity;
    const DkSmlReturn copied = CopyVersionValue(value, buffer.get(), &sizeInOut);
    if (capacity > 0) fuzz::Check(std::string_view(buffer.get()).size() < capacity, "terminated inside the buffer");
    if (!value.empty()) fuzz::Check(sizeInOut == value.size() + 1, "size reports the need");
    fuzz::Check(copied == DK_SML_SUCCESS || copied == DK_SML_ERROR_SYSFS || copied == DK_SML_ERROR_INSUFFICIENT_SIZE,
                "copy code");

    DkSmlFwVersion record;
    InitFirmwareRecord(record);
    (void)FillFirmwareRecord(in.text, record);
    fuzz::Check(std::string_view(record.mcu).size() < DK_SML_VERSION_LENGTH, "firmware field terminated");
    std::string_view unit;
    (void)FindFirmwareValue(in.text, c_fwUnitName[in.control % 9].key, unit);
    return 0;
}
