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

using LabelList = std::vector<std::pair<std::string, std::string>>;

class MetricSink {
public:
    // One sample; `labels` are appended after the sink's base labels.
    void Add(const MetricSpec& definition, const LabelList& labels, double value);
    // The same, taking the label texts over (most series are built for one sample).
    void Add(const MetricSpec& definition, LabelList&& labels, double value);

    // Declares a family without samples (its HELP line appears only once it
    // has a sample: prometheus-cpp drops empty families).
    prometheus::MetricFamily& Family(const MetricSpec& definition);

    const std::vector<prometheus::MetricFamily>& Families() const { return m_families; }
    std::vector<prometheus::MetricFamily> Take() { return std::move(m_families); }
    size_t SampleCount() const { return m_samples; }

private:
    std::vector<prometheus::MetricFamily> m_families;
    std::unordered_map<std::string_view, size_t> m_index;  // name -> position (names are static)
    size_t m_samples = 0;
};

}  // namespace dksml::exporter
