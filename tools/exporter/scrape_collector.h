// The collectable behind /metrics: every scrape reads the library afresh on a
// worker thread and waits for it at most the collect timeout. A collection
// that does not finish in time serves only the health series (never values
// from an earlier scrape); one that finishes serves every series it could
// read, and a family whose reads failed counts the failures.
#pragma once

#include <chrono>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <unordered_set>
#include <vector>

#include <prometheus/collectable.h>

#include "families.h"
#include "library_session.h"

namespace dksml::exporter {

struct ScrapeSettings {
    std::chrono::milliseconds timeout{5000};
    bool perProcess = false;
};

// What one collection produced (also used directly by the benchmark).
struct CollectionResult {
    std::vector<prometheus::MetricFamily> families;
    std::map<std::string, uint32_t> errors;  // family -> errors in this collection
    // "family|bus_id|die|metric" of every series group this collection
    // served, and the bus ids of the GPUs it saw.
    std::unordered_set<std::string> present;
    std::set<std::string> busIds;
};

// Discovers the GPUs of the current device list and runs every family row.
// The caller holds the session lock.
CollectionResult CollectAll(const ScrapeSettings& settings);

class ScrapeCollector : public prometheus::Collectable {
public:
    ScrapeCollector(std::shared_ptr<LibrarySession> session, ScrapeSettings settings);

    std::vector<prometheus::MetricFamily> Collect() const override;

private:
    // Counts the expected series groups that are missing; returns their number.
    uint32_t CountVanished(const CollectionResult& result) const;
    void AddHealth(std::vector<prometheus::MetricFamily>& families, double seconds, bool success) const;

    std::shared_ptr<LibrarySession> m_session;
    ScrapeSettings m_settings;
    mutable std::mutex m_errorsLock;
    mutable std::map<std::string, uint64_t> m_errorsTotal;  // counters live as long as the process
    // The library answers "not supported" for an attribute file that is
    // missing, which is right for a model without it but hides a file that
    // went away. What a GPU once served is expected from it until the next
    // discovery; a scrape that lacks it counts an error for its family.
    mutable std::unordered_set<std::string> m_expected;
    mutable uint64_t m_expectedDiscovery = 0;
};

}  // namespace dksml::exporter
