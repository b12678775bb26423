#include "metric_sink.h"

#include <utility>

namespace dksml::exporter {

prometheus::MetricFamily& MetricSink::Family(const MetricSpec& definition) {
    if (&definition == m_lastDefinition) return m_families[m_lastFamily];
    const auto [found, inserted] = m_index.try_emplace(definition.name, m_families.size());
    if (inserted) m_families.push_back(prometheus::MetricFamily{definition.name, definition.help, definition.type, {}});
    m_lastDefinition = &definition;
    m_lastFamily = found->second;
    return m_families[found->second];
}

void MetricSink::Add(const MetricSpec& definition, const LabelList& labels, double value) {
    Add(definition, LabelList(labels), value);
}

void MetricSink::Add(const MetricSpec& definition, LabelList&& labels, double value) {
    prometheus::MetricFamily& family = Family(definition);
    prometheus::ClientMetric metric;
    metric.label = std::move(labels);
    if (definition.type == prometheus::MetricType::Counter)
        metric.counter.value = value;
    else
        metric.gauge.value = value;
    family.metric.push_back(std::move(metric));
    ++m_samples;
}

}  // namespace dksml::exporter
