// The metric families of the exporter: one row per family, each a collector
// function that reads one kind of value for every GPU through the library and
// adds its series to the sink. A family added later is one more row in
// family_table.cpp.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "dksml.h"
#include "metric_sink.h"

namespace dksml::exporter {

// One GPU function as discovered for this scrape, with its identity labels
// (gpu, uuid, bus_id, model) in that order.
struct GpuTarget {
    uint32_t index = 0;
    uint32_t dieCount = 1;
    bool isVirtualFunction = false;
    DkSmlDeviceInfo info{};
    LabelList labels;
};

struct ScrapeContext {
    const std::vector<GpuTarget>& gpus;
    bool perProcess = false;
};

// Counts the errors of one family: a value the device does not have
// (DK_SML_ERROR_NOT_SUPPORTED) is no error, it simply has no series.
class FamilyErrors {
public:
    // True when the call succeeded; any other status but "not supported" is an error.
    bool Ok(DkSmlReturn status) {
        if (status == DK_SML_SUCCESS) return true;
        if (status != DK_SML_ERROR_NOT_SUPPORTED) ++m_count;
        return false;
    }
    void Count() { ++m_count; }
    uint32_t Total() const { return m_count; }

private:
    uint32_t m_count = 0;
};

// Status of one value of a record: the record's own when reading it failed.
inline DkSmlReturn Either(DkSmlReturn record, DkSmlReturn value) {
    return record != DK_SML_SUCCESS ? record : value;
}

using FamilyCollector = void (*)(const ScrapeContext& context, MetricSink& sink, FamilyErrors& errors);

struct FamilyRow {
    const char* family;  // value of the `family` label of dksml_exporter_collect_errors_total
    FamilyCollector collect;
};

// Every family, in the order the page shows them.
std::span<const FamilyRow> ExporterFamilies();

// Metrics whose series come and go with the value itself (a throttle reason
// in force, a running process); their absence is no failed read.
bool AbsenceIsAValue(std::string_view metricName);

// The GPU's labels plus `die`.
LabelList DieLabels(const GpuTarget& gpu, uint32_t die);
// The GPU's labels plus extra pairs (the second form appends to a list made
// for it, such as DieLabels's, which has room for a few more).
LabelList WithLabels(const LabelList& base, std::initializer_list<LabelView> extra);
LabelList WithLabels(LabelList&& base, std::initializer_list<LabelView> extra);

// Collectors (one file per kind of value).
void CollectDeviceInfo(const ScrapeContext& context, MetricSink& sink, FamilyErrors& errors);
void CollectLimitedDevices(const ScrapeContext& context, MetricSink& sink, FamilyErrors& errors);
void CollectTemperatures(const ScrapeContext& context, MetricSink& sink, FamilyErrors& errors);
void CollectFan(const ScrapeContext& context, MetricSink& sink, FamilyErrors& errors);
void CollectVoltageMonitor(const ScrapeContext& context, MetricSink& sink, FamilyErrors& errors);
void CollectClocks(const ScrapeContext& context, MetricSink& sink, FamilyErrors& errors);
void CollectThrottleReasons(const ScrapeContext& context, MetricSink& sink, FamilyErrors& errors);
void CollectPower(const ScrapeContext& context, MetricSink& sink, FamilyErrors& errors);
void CollectUsage(const ScrapeContext& context, MetricSink& sink, FamilyErrors& errors);
void CollectMemory(const ScrapeContext& context, MetricSink& sink, FamilyErrors& errors);
void CollectPcie(const ScrapeContext& context, MetricSink& sink, FamilyErrors& errors);
void CollectInterconnect(const ScrapeContext& context, MetricSink& sink, FamilyErrors& errors);
void CollectProcesses(const ScrapeContext& context, MetricSink& sink, FamilyErrors& errors);
void CollectSlices(const ScrapeContext& context, MetricSink& sink, FamilyErrors& errors);
void CollectPerfLevels(const ScrapeContext& context, MetricSink& sink, FamilyErrors& errors);
void CollectVersions(const ScrapeContext& context, MetricSink& sink, FamilyErrors& errors);

}  // namespace dksml::exporter
