// The temperature-sensor table ("showtstemp"): one row of readings per line.
#include <algorithm>
#include <string>
#include <string_view>

#include "core/idk_device.h"
#include "driver/dk_text.h"
#include "features/temperature/dk_telemetry_gate.h"
#include "features/temperature/dk_temperature.h"
#include "features/temperature/dk_temperature_keys.h"
#include "features/voltage/dk_reading_row.h"

namespace dksml {
namespace {

// A row holds a label and sixteen readings; anything past this length on one
// line is not a row the driver writes and is dropped unread.
constexpr std::size_t c_maxSensorLineLength = 4096;

// Next line of `rest` without its newline, cut to c_maxSensorLineLength - 1
// characters and at a NUL (a line-buffered C reader sees no further); the cut
// part is skipped. False when `rest` is used up.
bool NextBoundedLine(std::string_view& rest, std::string_view& line) {
    if (rest.empty()) return false;
    const std::size_t newline = rest.find('\n');
    line = rest.substr(0, newline);
    rest = newline == std::string_view::npos ? std::string_view() : rest.substr(newline + 1);
    line = line.substr(0, std::min(line.find('\0'), c_maxSensorLineLength - 1));
    return true;
}

void FillSensorRow(std::string_view line, DkSmlTemperatureSensorRow& row) {
    constexpr int32_t unread = DK_SML_TEMPERATURE_INVALID;
    for (int32_t& reading : row.readings) reading = unread;
    ReadIntegerRow(ExtractValueStrByColon(line), row.readings, DK_SML_TEMPERATURE_SENSOR_READINGS);
    // The driver pads a row with the invalid value, so the first one ends it.
    row.count = DK_SML_TEMPERATURE_SENSOR_READINGS;
    for (uint32_t i = 0; i < DK_SML_TEMPERATURE_SENSOR_READINGS; ++i) {
        if (row.readings[i] == unread) {
            row.count = i;
            break;
        }
    }
}

}  // namespace

DkSmlReturn DkTemperature::GetTemperatureSensor(IDkDevice* device, DkSmlTemperatureSensorForAll* sensors) const {
    return GetDieTemperatureSensor(device, 0, sensors);
}

DkSmlReturn DkTemperature::GetDieTemperatureSensor(IDkDevice* device, unsigned int dieId,
                                                   DkSmlTemperatureSensorForAll* sensors) const {
    if (device == nullptr || sensors == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (!PassesTelemetryGate(*device)) return DK_SML_ERROR_NOT_SUPPORTED;

    // Absent or unreadable alike: the table is not there to be read.
    thread_local std::string text;
    if (device->FetchDriverData(dieId, DRAVIK_SMI_SHOWTSTEMP, text) != DK_SML_SUCCESS) return DK_SML_ERROR_SYSFS;

    *sensors = DkSmlTemperatureSensorForAll{};
    std::string_view rest(text);
    std::string_view line;
    uint32_t rows = 0;
    // The table has room for a fixed number of rows; later lines are not read.
    while (rows < c_sensorTableMaxRows && NextBoundedLine(rest, line)) {
        FillSensorRow(line, sensors->rows[rows]);
        ++rows;
    }
    sensors->rowCount = rows;
    return DK_SML_SUCCESS;
}

}  // namespace dksml
