// The temperature-sensor table ("showtstemp"): one row of readings per line.
#include <cstdio>
#include <cstring>
#include <memory>
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

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using DkFile = std::unique_ptr<std::FILE, FileCloser>;

// Next line without its newline, at most c_maxSensorLineLength - 1 characters
// of it; false at end of file.
bool NextBoundedLine(std::FILE* file, char (&buffer)[c_maxSensorLineLength], std::string_view& line) {
    if (std::fgets(buffer, sizeof buffer, file) == nullptr) return false;
    std::size_t length = std::strlen(buffer);
    if (length > 0 && buffer[length - 1] == '\n') {
        --length;
    } else {
        for (int c = std::getc(file); c != EOF && c != '\n'; c = std::getc(file)) {
        }
    }
    line = std::string_view(buffer, length);
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

    const std::string path = device->GetSmiPath(dieId) + std::string(c_sensorTableFileName);
    DkFile file(std::fopen(path.c_str(), "r"));
    if (!file) return DK_SML_ERROR_SYSFS;

    *sensors = DkSmlTemperatureSensorForAll{};
    char buffer[c_maxSensorLineLength];
    std::string_view line;
    uint32_t rows = 0;
    // The table has room for a fixed number of rows; later lines are not read.
    while (rows < c_sensorTableMaxRows && NextBoundedLine(file.get(), buffer, line)) {
        FillSensorRow(line, sensors->rows[rows]);
        ++rows;
    }
    sensors->rowCount = rows;
    return DK_SML_SUCCESS;
}

}  // namespace dksml
