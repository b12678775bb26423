// The scrape engine in-process: a collection that cannot run in time (the
// library held by a stuck collection) is answered with the health series
// only, within the timeout, and never with earlier values.
#include <gtest/gtest.h>

#if __has_include("scrape_collector.h")
#include <prometheus/text_serializer.h>

#include "exporter/exporter_process.h"
#include "scrape_collector.h"
#include "vhost/dk_virtual_host.h"

namespace dksml::exporter::test {
namespace {

using namespace std::chrono_literals;

std::vector<Sample> Scrape(const ScrapeCollector& collector) {
    return ParseExposition(prometheus::TextSerializer().Serialize(collector.Collect()));
}

TEST(ExporterTimeout, AStuckCollectionServesOnlyHealthSeries) {
    dksml::vhost::ScopedHost host("server");
    auto session = std::make_shared<LibrarySession>();
    ASSERT_EQ(session->Discover(1s), DK_SML_SUCCESS);
    const ScrapeCollector collector(session, ScrapeSettings{200ms, false});
    EXPECT_FALSE(Select(Scrape(collector), "dksml_gpu_info").empty());

    {
        std::lock_guard<std::timed_mutex> stuck(session->Lock());
        for (int scrape = 1; scrape <= 2; ++scrape) {
            const auto start = std::chrono::steady_clock::now();
            const std::vector<Sample> samples = Scrape(collector);
            EXPECT_LT(std::chrono::steady_clock::now() - start, 2s);
            EXPECT_TRUE(Select(samples, "dksml_gpu_info").empty()) << "values served after a timeout";
            EXPECT_EQ(ValueOf(samples, "dksml_up"), 0);
            EXPECT_EQ(ValueOf(samples, "dksml_exporter_last_collect_success"), 0);
            EXPECT_EQ(ValueOf(samples, "dksml_exporter_collect_errors_total", {{"family", "timeout"}}), scrape);
        }
        // A rediscovery waits for the lock, too, and gives up in time.
        EXPECT_EQ(session->Discover(50ms), DK_SML_ERROR_BUSY);
    }
    const std::vector<Sample> samples = Scrape(collector);
    EXPECT_FALSE(Select(samples, "dksml_gpu_info").empty());
    EXPECT_EQ(ValueOf(samples, "dksml_exporter_last_collect_success"), 1);
}

}  // namespace
}  // namespace dksml::exporter::test
#endif
