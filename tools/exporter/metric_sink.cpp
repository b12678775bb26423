#include "metric_sink.h"

#include <utility>

namespace dksml::exporter {

prometheus::MetricFamily& MetricSink::Family(const MetricSpec& spec) {
    const auto [found, inserted] = m_index.try_emplace(spec.name, m_families.size());
    if (inserted) m_families.push_back(prometheus::MetricFamily{spec.name, spec.help, spec.type, {}});
    return m_families[found->second];
}

void MetricSink::Add(const MetricSpec& spec, const LabelList& labels, double value) {
    Add(spec, LabelList(labels), value);
}

void MetricSink::Add(const MetricSpec& spec, LabelList&& labels, double value) {
    prometheus::MetricFamily& family = Family(spec);
    prometheus::ClientMetric metric;
    metric.label.reserve(labels.size());
    for (auto& [name, text] : labels)
        metric.label.push_back(prometheus::ClientMetric::Label{std::move(name), std::move(text)});
    if (spec.type == prometheus::MetricType::Counter)
        metric.counter.value = value;
    else
        metric.gauge.value = value;
    family.metric.push_back(std::move(metric));
    ++m_samples;
}

}  // namespace dksml::exporter
