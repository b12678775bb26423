// Voltage-monitor table ("showvmread"): one row of readings per line, into a
// caller-sized array.
#include <string>
#include <string_view>

#include "core/idk_device.h"
#include "driver/dk_text.h"
#include "features/voltage/dk_reading_row.h"
#include "features/voltage/dk_voltage.h"

namespace dksml {
namespace {

uint32_t CountLines(std::string_view text) {
    DkTextLines lines(text);
    std::string_view line;
    uint32_t count = 0;
    while (lines.Next(line)) ++count;
    return count;
}

void FillVmRow(std::string_view line, DkSmlVmInfo& entry) {
    for (int32_t& reading : entry.readings) reading = -1;
    entry.count = static_cast<int32_t>(ReadIntegerRow(ExtractValueStrByColon(line), entry.readings, DK_SML_VM_READINGS));
}

}  // namespace

DkSmlReturn DkVoltageMonitor::GetVmInfo(IDkDevice* device, uint32_t* count, DkSmlVmInfo* entries) {
    return GetDieVmInfo(device, 0, count, entries);
}

DkSmlReturn DkVoltageMonitor::GetDieVmInfo(IDkDevice* device, unsigned int dieId, uint32_t* count,
                                           DkSmlVmInfo* entries) {
    // A null array is fine for a size query (capacity 0).
    if (device == nullptr || count == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (entries == nullptr && *count != 0) return DK_SML_ERROR_INVALID_INPUT;

    std::string text;
    DkSmlReturn result = device->FetchDriverData(dieId, DRAVIK_SMI_SHOWVMREAD, text);
    if (result != DK_SML_SUCCESS) return result;

    // The needed size is reported whether or not the array is large enough.
    const uint32_t capacity = *count;
    const uint32_t lineCount = CountLines(text);
    *count = lineCount;
    if (capacity < lineCount) return DK_SML_ERROR_INSUFFICIENT_SIZE;

    DkTextLines lines(text);
    std::string_view line;
    for (uint32_t row = 0; row < lineCount && lines.Next(line); ++row) FillVmRow(line, entries[row]);
    return DK_SML_SUCCESS;
}

}  // namespace dksml
