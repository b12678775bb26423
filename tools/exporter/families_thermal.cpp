// Temperatures (every field of each die's record, the hot spot of the GPU, the
// sensor table), the voltage monitor and the fan.
#include <algorithm>
#include <array>
#include <optional>
#include <vector>

#include "../dksmi/internal_reader.h"
#include "die_readers.h"
#include "families.h"

namespace dksml::exporter {
namespace {

constexpr MetricSpec kTemperature{"dksml_temperature_celsius",
                                  "Temperature of one sensor of a die's temperature record, in degrees Celsius."};
constexpr MetricSpec kTemperatureLimit{"dksml_temperature_limit_celsius",
                                       "Hot-spot temperature limit of the die, in degrees Celsius."};
constexpr MetricSpec kHottestSensor{"dksml_temperature_hottest_sensor_index",
                                    "Index of the die's hottest sensor, as the driver reports it."};
constexpr MetricSpec kGpuHotspot{"dksml_gpu_hotspot_temperature_celsius",
                                 "Hot-spot temperature of the GPU (its hottest die), in degrees Celsius."};
constexpr MetricSpec kSensorTable{"dksml_temperature_sensor_celsius",
                                  "One reading of the die's temperature-sensor table, in degrees Celsius."};
constexpr MetricSpec kVoltageMonitor{"dksml_voltage_monitor_raw",
                                     "One reading of the die's voltage monitor, raw as the driver reports it."};
constexpr MetricSpec kFanSpeed{"dksml_fan_speed_rpm", "Fan speed in revolutions per minute."};
constexpr MetricSpec kFanDuty{"dksml_fan_pwm_duty", "Fan duty as the raw PWM value the driver reports."};

struct TemperatureField {
    const char* sensor;
    int32_t DkSmlTemperature::*member;
};

// The record's sensors (hot limit and hottest index have their own names).
constexpr std::array<TemperatureField, 11> kSensors{{
    {"hotspot", &DkSmlTemperature::hotspot},
    {"soc", &DkSmlTemperature::soc},
    {"core", &DkSmlTemperature::core},
    {"emc_remote", &DkSmlTemperature::emcRemote},
    {"mem_ctrl_max", &DkSmlTemperature::memCtrlMax},
    {"mc0", &DkSmlTemperature::mc0},
    {"mc1", &DkSmlTemperature::mc1},
    {"emc_local", &DkSmlTemperature::emcLocal},
    {"sgm", &DkSmlTemperature::sgm},
    {"tmp435_u1_remote", &DkSmlTemperature::tmp435U1Remote},
    {"tmp435_u2_remote", &DkSmlTemperature::tmp435U2Remote},
}};

// 65535 and above is the library's "no reading": no series.
bool IsReading(int32_t value) { return value < DK_SML_TEMPERATURE_INVALID; }

void AddRows(MetricSink& sink, const MetricSpec& spec, const LabelList& dieLabels,
             const std::vector<std::vector<int32_t>>& rows) {
    for (size_t r = 0; r < rows.size(); ++r)
        for (size_t s = 0; s < rows[r].size(); ++s)
            sink.Add(spec, WithLabels(dieLabels, {{"row", std::to_string(r)}, {"slot", std::to_string(s)}}),
                     rows[r][s]);
}

// Returns the die's hot spot when it has one.
std::optional<int32_t> CollectDieTemperatures(const GpuTarget& gpu, uint32_t die, MetricSink& sink,
                                              FamilyErrors& errors) {
    std::optional<int32_t> hotspot;
    const LabelList labels = DieLabels(gpu, die);
    DkSmlTemperature record{};
    if (errors.Ok(dksmi::ReadDieTemperatureRecord(gpu.index, die, record))) {
        for (const TemperatureField& field : kSensors) {
            const int32_t value = record.*field.member;
            if (IsReading(value)) sink.Add(kTemperature, WithLabels(labels, {{"sensor", field.sensor}}), value);
        }
        if (IsReading(record.hotspot)) hotspot = record.hotspot;
        if (IsReading(record.hotLimit)) sink.Add(kTemperatureLimit, labels, record.hotLimit);
        if (IsReading(record.hottestSensorIndex)) sink.Add(kHottestSensor, labels, record.hottestSensorIndex);
    }
    DkSmlTemperatureSensorForAll table{};
    if (errors.Ok(dksmi::ReadDieSensorTable(gpu.index, die, table))) {
        std::vector<std::vector<int32_t>> rows;
        for (uint32_t r = 0; r < std::min<uint32_t>(table.rowCount, DK_SML_TEMPERATURE_SENSOR_ROWS); ++r) {
            const DkSmlTemperatureSensorRow& row = table.rows[r];
            rows.emplace_back(row.readings,
                              row.readings + std::min<uint32_t>(row.count, DK_SML_TEMPERATURE_SENSOR_READINGS));
        }
        AddRows(sink, kSensorTable, labels, rows);
    }
    return hotspot;
}

}  // namespace

void CollectTemperatures(const ScrapeContext& context, MetricSink& sink, FamilyErrors& errors) {
    for (const GpuTarget& gpu : context.gpus) {
        // The GPU's hot spot is its hottest die's, as the library defines it;
        // taken from the records already read instead of reading them twice.
        std::optional<int32_t> hottest;
        bool everyDie = true;
        for (uint32_t die = 0; die < gpu.dieCount; ++die) {
            const std::optional<int32_t> hotspot = CollectDieTemperatures(gpu, die, sink, errors);
            everyDie = everyDie && hotspot.has_value();
            if (hotspot) hottest = std::max(hottest.value_or(*hotspot), *hotspot);
        }
        if (everyDie && hottest) sink.Add(kGpuHotspot, gpu.labels, *hottest);
    }
}

void CollectVoltageMonitor(const ScrapeContext& context, MetricSink& sink, FamilyErrors& errors) {
    for (const GpuTarget& gpu : context.gpus) {
        for (uint32_t die = 0; die < gpu.dieCount; ++die) {
            VoltageMonitorRows monitor;
            if (!errors.Ok(ReadVoltageMonitor(gpu.index, die, monitor))) continue;
            std::vector<std::vector<int32_t>> rows;
            for (uint32_t r = 0; r < monitor.count; ++r) {
                const DkSmlVmInfo& entry = monitor.rows[r];
                rows.emplace_back(entry.readings,
                                  entry.readings + std::clamp<int32_t>(entry.count, 0, DK_SML_VM_READINGS));
            }
            AddRows(sink, kVoltageMonitor, DieLabels(gpu, die), rows);
        }
    }
}

void CollectFan(const ScrapeContext& context, MetricSink& sink, FamilyErrors& errors) {
    for (const GpuTarget& gpu : context.gpus) {
        uint32_t rpm = 0;
        uint32_t duty = 0;
        if (!errors.Ok(dkSmlGetFanSpeedInfo(gpu.index, &rpm, &duty))) continue;
        sink.Add(kFanSpeed, gpu.labels, rpm);
        sink.Add(kFanDuty, gpu.labels, duty);
    }
}

}  // namespace dksml::exporter
