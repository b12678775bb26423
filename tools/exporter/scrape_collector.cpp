#include "scrape_collector.h"

#include <condition_variable>
#include <cstring>
#include <thread>

#include "metric_sink.h"

namespace dksml::exporter {
namespace {

constexpr MetricSpec kDuration{"dksml_exporter_collect_duration_seconds",
                               "Time the last collection took, in seconds (the timeout when it did not finish)."};
constexpr MetricSpec kLastSuccess{"dksml_exporter_last_collect_success",
                                  "1 when the last collection finished in time and every read succeeded, else 0."};
constexpr MetricSpec kErrors{"dksml_exporter_collect_errors_total",
                             "Reads that failed, per family; collections that timed out count under \"timeout\".",
                             prometheus::MetricType::Counter};
constexpr MetricSpec kUp{"dksml_up",
                         "1 when the library has discovered GPUs and the collection finished in time, else 0."};

// Families of the error counter that are not rows of the family table.
constexpr const char* kDiscoveryFamily = "discovery";
constexpr const char* kTimeoutFamily = "timeout";

std::vector<uint32_t> DeviceIndices() {
    std::vector<uint32_t> indices;
    const uint32_t physical = dkSmlGetDeviceCount();
    const uint32_t virtualFunctions = dkSmlGetPfDeviceCount();
    for (uint32_t i = 0; i < physical; ++i) indices.push_back(i);
    for (uint32_t i = 0; i < virtualFunctions; ++i) indices.push_back(DK_SML_FIRST_VF_INDEX + i);
    return indices;
}

std::vector<GpuTarget> DiscoverTargets(FamilyErrors& errors) {
    std::vector<GpuTarget> gpus;
    for (uint32_t index : DeviceIndices()) {
        GpuTarget gpu;
        gpu.index = index;
        if (!errors.Ok(dkSmlGetDeviceInfo(index, &gpu.info))) continue;
        gpu.info.bdfId[sizeof gpu.info.bdfId - 1] = '\0';
        gpu.info.uuid[sizeof gpu.info.uuid - 1] = '\0';
        gpu.info.deviceName[sizeof gpu.info.deviceName - 1] = '\0';
        gpu.isVirtualFunction = gpu.info.virtualizationMode == DK_SML_VIRTUALIZATION_MODE_VF;
        if (!errors.Ok(dkSmlGetDeviceDieCount(index, &gpu.dieCount))) gpu.dieCount = 1;
        gpu.labels = {{"gpu", std::to_string(index)},
                      {"uuid", gpu.info.uuid},
                      {"bus_id", gpu.info.bdfId},
                      {"model", gpu.info.deviceName}};
        gpus.push_back(std::move(gpu));
    }
    return gpus;
}

const std::string& LabelValue(const prometheus::ClientMetric& metric, std::string_view name) {
    static const std::string c_none;
    for (const prometheus::ClientMetric::Label& label : metric.label)
        if (label.name == name) return label.value;
    return c_none;
}

// Notes the series groups ("family|bus_id|die|metric") of the sink's metric
// families from `first` on. A family's series come GPU by GPU and die by die,
// so a key is made only where bus id or die change.
void NotePresent(const char* family, const std::vector<prometheus::MetricFamily>& families, size_t first,
                 std::unordered_set<std::string>& present) {
    for (size_t f = first; f < families.size(); ++f) {
        if (AbsenceIsAValue(families[f].name)) continue;
        const std::string* lastBusId = nullptr;
        const std::string* lastDie = nullptr;
        for (const prometheus::ClientMetric& metric : families[f].metric) {
            const std::string& busId = LabelValue(metric, "bus_id");
            const std::string& die = LabelValue(metric, "die");
            if (lastBusId != nullptr && *lastBusId == busId && *lastDie == die) continue;
            const std::string& name = families[f].name;
            std::string key;
            key.reserve(std::strlen(family) + busId.size() + die.size() + name.size() + 3);
            key.append(family).append(1, '|').append(busId).append(1, '|').append(die).append(1, '|').append(name);
            present.insert(std::move(key));
            lastBusId = &busId;
            lastDie = &die;
        }
    }
}

// Parts of a presence key: family and bus id.
std::pair<std::string, std::string> FamilyAndBusId(const std::string& key) {
    const size_t first = key.find('|');
    const size_t second = key.find('|', first + 1);
    return {key.substr(0, first), key.substr(first + 1, second - first - 1)};
}

// One scrape's hand-off between the scrape thread and its worker.
struct CollectionJob {
    std::mutex lock;
    std::condition_variable finished;
    bool done = false;
    CollectionResult result;
};

// The worker owns what it touches (job and session by shared pointer): a
// collection stuck in a read outlives its scrape harmlessly, and later scrapes
// time out on the session lock instead of piling up behind it.
void StartWorker(std::shared_ptr<CollectionJob> job, std::shared_ptr<LibrarySession> session,
                 ScrapeSettings settings, std::chrono::steady_clock::time_point deadline) {
    std::thread([job = std::move(job), session = std::move(session), settings, deadline] {
        CollectionResult result;
        {
            std::unique_lock<std::timed_mutex> hold(session->Lock(), deadline);
            if (!hold.owns_lock()) return;  // the scrape has given up by now
            try {
                result = CollectAll(settings);
            } catch (...) {
                return;  // out of memory: the scrape reports a failed collection
            }
        }
        std::lock_guard<std::mutex> guard(job->lock);
        job->result = std::move(result);
        job->done = true;
        job->finished.notify_all();
    }).detach();
}

}  // namespace

CollectionResult CollectAll(const ScrapeSettings& settings) {
    CollectionResult result;
    MetricSink sink;
    FamilyErrors discoveryErrors;
    const std::vector<GpuTarget> gpus = DiscoverTargets(discoveryErrors);
    result.errors[kDiscoveryFamily] = discoveryErrors.Total();
    const ScrapeContext context{gpus, settings.perProcess};
    for (const FamilyRow& row : ExporterFamilies()) {
        FamilyErrors errors;
        const size_t firstFamily = sink.Families().size();
        try {
            row.collect(context, sink, errors);
        } catch (...) {
            // A collector that ran out of memory loses its family, not the scrape.
            errors.Count();
        }
        result.errors[row.family] = errors.Total();
        NotePresent(row.family, sink.Families(), firstFamily, result.present);
    }
    for (const GpuTarget& gpu : gpus) result.busIds.insert(gpu.info.bdfId);
    result.families = sink.Take();
    return result;
}

ScrapeCollector::ScrapeCollector(std::shared_ptr<LibrarySession> session, ScrapeSettings settings)
    : m_session(std::move(session)), m_settings(settings) {
    // Every family's counter exists from the first scrape on, at 0.
    m_errorsTotal[kDiscoveryFamily] = 0;
    m_errorsTotal[kTimeoutFamily] = 0;
    for (const FamilyRow& row : ExporterFamilies()) m_errorsTotal[row.family] = 0;
}

std::vector<prometheus::MetricFamily> ScrapeCollector::Collect() const {
    const auto start = std::chrono::steady_clock::now();
    const auto deadline = start + m_settings.timeout;
    auto job = std::make_shared<CollectionJob>();
    try {
        StartWorker(job, m_session, m_settings, deadline);
    } catch (...) {
        // No thread to be had: this scrape fails like one that timed out.
    }

    std::unique_lock<std::mutex> wait(job->lock);
    const bool done = job->finished.wait_until(wait, deadline, [&] { return job->done; });
    std::vector<prometheus::MetricFamily> families;
    bool success = false;
    {
        std::lock_guard<std::mutex> guard(m_errorsLock);
        if (done) {
            families = std::move(job->result.families);
            success = true;
            for (const auto& [family, count] : job->result.errors) {
                m_errorsTotal[family] += count;
                success = success && count == 0;
            }
            success = CountVanished(job->result) == 0 && success;
        } else {
            ++m_errorsTotal[kTimeoutFamily];
        }
    }
    wait.unlock();
    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    AddHealth(families, seconds, success);
    const bool up = done && m_session->LastStatus() == DK_SML_SUCCESS;
    families.push_back(prometheus::MetricFamily{kUp.name, kUp.help, kUp.type, {}});
    families.back().metric.emplace_back().gauge.value = up ? 1 : 0;
    return families;
}

uint32_t ScrapeCollector::CountVanished(const CollectionResult& result) const {
    if (m_expectedDiscovery != m_session->DiscoveryCount()) {
        m_expected.clear();
        m_expectedDiscovery = m_session->DiscoveryCount();
    }
    uint32_t vanished = 0;
    for (auto it = m_expected.begin(); it != m_expected.end();) {
        const auto [family, busId] = FamilyAndBusId(*it);
        if (!result.busIds.contains(busId) && family != "limited_devices") {
            it = m_expected.erase(it);  // the GPU itself is gone: nothing to expect
            continue;
        }
        if (!result.present.contains(*it)) {
            ++m_errorsTotal[family];
            ++vanished;
        }
        ++it;
    }
    m_expected.insert(result.present.begin(), result.present.end());
    return vanished;
}

void ScrapeCollector::AddHealth(std::vector<prometheus::MetricFamily>& families, double seconds,
                                bool success) const {
    MetricSink sink;
    sink.Add(kDuration, {}, seconds);
    sink.Add(kLastSuccess, {}, success ? 1 : 0);
    {
        std::lock_guard<std::mutex> guard(m_errorsLock);
        for (const auto& [family, count] : m_errorsTotal)
            sink.Add(kErrors, {{"family", family}}, static_cast<double>(count));
    }
    for (prometheus::MetricFamily& family : sink.Take()) families.push_back(std::move(family));
}

}  // namespace dksml::exporter
