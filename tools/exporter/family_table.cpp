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
    FamilyRow{"limited_devices", CollectLimitedDevices},
};

}  // namespace

std::span<const FamilyRow> ExporterFamilies() { return c_exporterFamilies; }

LabelList DieLabels(const GpuTarget& gpu, uint32_t die) {
    LabelList labels = gpu.labels;
    labels.emplace_back("die", std::to_string(die));
    return labels;
}

LabelList WithLabels(const LabelList& base, const LabelList& extra) {
    LabelList labels = base;
    labels.insert(labels.end(), extra.begin(), extra.end());
    return labels;
}

}  // namespace dksml::exporter
