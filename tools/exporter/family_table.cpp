#include <array>

#include "families.h"

namespace dksml::exporter {
namespace {

constexpr std::array c_exporterFamilies{
    FamilyRow{"device", CollectDeviceInfo},
    FamilyRow{"temperature", CollectTemperatures},
    FamilyRow{"voltage", CollectVoltageMonitor},
    FamilyRow{"fan", CollectFan},
    FamilyRow{"clocks", CollectClocks},
    FamilyRow{"throttle", CollectThrottleReasons},
    FamilyRow{"perf_levels", CollectPerfLevels},
    FamilyRow{"power", CollectPower},
    FamilyRow{"usage", CollectUsage},
    FamilyRow{"memory", CollectMemory},
    FamilyRow{"pcie", CollectPcie},
    FamilyRow{"interconnect", CollectInterconnect},
    FamilyRow{"processes", CollectProcesses},
    FamilyRow{"slices", CollectSlices},
    FamilyRow{"versions", CollectVersions},
    FamilyRow{"limited_devices", CollectLimitedDevices},
};

constexpr std::array<std::string_view, 2> c_metricsAbsentByValue{
    "dksml_clock_throttle_reason_active",
    "dksml_process_memory_bytes",
};

}  // namespace

bool AbsenceIsAValue(std::string_view metricName) {
    for (std::string_view name : c_metricsAbsentByValue)
        if (name == metricName) return true;
    return false;
}

std::span<const FamilyRow> ExporterFamilies() { return c_exporterFamilies; }

LabelList DieLabels(const GpuTarget& gpu, uint32_t die) {
    LabelList labels;
    labels.reserve(gpu.labels.size() + 4);  // room for the die and the labels added to it
    labels.insert(labels.end(), gpu.labels.begin(), gpu.labels.end());
    labels.push_back({"die", std::to_string(die)});
    return labels;
}

LabelList WithLabels(const LabelList& base, std::initializer_list<LabelView> extra) {
    LabelList labels;
    labels.reserve(base.size() + extra.size());
    labels.insert(labels.end(), base.begin(), base.end());
    return WithLabels(std::move(labels), extra);
}

LabelList WithLabels(LabelList&& base, std::initializer_list<LabelView> extra) {
    base.reserve(base.size() + extra.size());
    for (const LabelView& label : extra) base.push_back({std::string(label.name), std::string(label.value)});
    return std::move(base);
}

}  // namespace dksml::exporter
