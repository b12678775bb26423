// Gathers one scrape's series into prometheus-cpp's MetricFamily records, one
// record per metric name, in the order the names are first used. The
// library's serializer writes the exposition format; nothing here does.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include <prometheus/metric_family.h>

namespace dksml::exporter {

// A metric name with its HELP text and type: the rows of the family table use
// these constants so that a name is spelled once.
struct MetricSpec {
    const char* name;
    const char* help;
    prometheus::MetricType type = prometheus::MetricType::Gauge;
};

// Labels in the form the serializer takes them, so that a series' labels are
// built once and handed over without another copy.
using LabelList = std::vector<prometheus::ClientMetric::Label>;

// A label added to a base list: the texts are copied into the new list.
struct LabelView {
    std::string_view name;
    std::string_view value;
};

class MetricSink {
public:
    // One sample; `labels` are appended after the sink's base labels.
    void Add(const MetricSpec& definition, const LabelList& labels, double value);
    // The same, taking the labels over (most series are built for one sample).
    void Add(const MetricSpec& definition, LabelList&& labels, double value);

    // Declares a family without samples (its HELP line appears only once it
    // has a sample: prometheus-cpp drops empty families).
    prometheus::MetricFamily& Family(const MetricSpec& definition);

    const std::vector<prometheus::MetricFamily>& Families() const { return m_families; }
    std::vector<prometheus::MetricFamily> Take() {
        m_index.clear();
        m_lastDefinition = nullptr;
        return std::move(m_families);
    }
    size_t SampleCount() const { return m_samples; }

private:
    std::vector<prometheus::MetricFamily> m_families;
    std::unordered_map<std::string_view, size_t> m_index;  // name -> position (names are static)
    // The family of the last sample: series of one metric mostly come in a row.
    const MetricSpec* m_lastDefinition = nullptr;
    size_t m_lastFamily = 0;
    size_t m_samples = 0;
};

}  // namespace dksml::exporter
