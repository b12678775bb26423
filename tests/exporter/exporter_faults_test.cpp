// Faults between scrapes: a bad attribute file removes only its series and
// counts an error; concurrent scrapes all succeed; SIGHUP brings in a GPU
// that appeared after the start.
#include <gtest/gtest.h>

#include <signal.h>

#include <atomic>
#include <thread>

#include "exporter/exporter_process.h"
#include "vhost/dk_virtual_host.h"

namespace dksml::exporter::test {
namespace {

using dksml::vhost::ScopedHost;
using namespace std::chrono_literals;

class ExporterFaults : public ::testing::Test {
protected:
    void SetUp() override {
        if (!std::filesystem::exists(ExporterBinary())) GTEST_SKIP() << "dksml-exporter is not built (tools disabled)";
    }
    static std::vector<Sample> ScrapeOk(const ExporterProcess& exporter) {
        const HttpReply reply = exporter.Scrape();
        EXPECT_EQ(reply.status, 200);
        return ParseExposition(reply.body);
    }
    static double Errors(const std::vector<Sample>& samples, const std::string& family) {
        return ValueOf(samples, "dksml_exporter_collect_errors_total", {{"family", family}}).value_or(-1);
    }
};

struct BadFile {
    const char* file;
    const char* content;  // nullptr: the file is removed
    const char* metric;
    const char* family;
};

TEST_F(ExporterFaults, ABadAttributeFileRemovesOnlyItsSeriesAndCountsAnError) {
    const BadFile cases[] = {
        {"showclocks", nullptr, "dksml_clock_megahertz", "clocks"},
        {"showclocks", "xcore clock: fast\n", "dksml_clock_megahertz", "clocks"},
        {"pmdecsrc", "pmdecsrc: \x01\x02zz\n", "dksml_clock_throttle_reasons_mask", "throttle"},
        {"showtemp", nullptr, "dksml_temperature_celsius", "temperature"},
        {"showperflevel", "xcore: fast\n", "dksml_perf_level", "perf_levels"},
        {"showpmbuscur", nullptr, "dksml_pmbus_amperes", "power"},
    };
    for (const BadFile& bad : cases) {
        SCOPED_TRACE(std::string(bad.file) + (bad.content ? " garbled" : " removed"));
        ScopedHost host("server");
        ExporterProcess exporter;
        ASSERT_GT(exporter.Port(), 0);
        const std::vector<Sample> before = ScrapeOk(exporter);
        const std::vector<Sample> info = Select(before, "dksml_gpu_info", {{"gpu", "0"}});
        ASSERT_EQ(info.size(), 1u);
        const std::string path = "/sys/bus/pci/devices/" + info[0].labels.at("bus_id") + "/smi1/" + bad.file;
        ASSERT_FALSE(host.ReadFile(path).empty());
        if (bad.content)
            host.WriteFile(path, bad.content);
        else
            host.Remove(path);

        const std::vector<Sample> after = ScrapeOk(exporter);
        EXPECT_TRUE(Select(after, bad.metric, {{"gpu", "0"}, {"die", "1"}}).empty()) << "stale series served";
        EXPECT_EQ(Select(after, bad.metric, {{"gpu", "0"}, {"die", "0"}}).size(),
                  Select(before, bad.metric, {{"gpu", "0"}, {"die", "0"}}).size());
        EXPECT_EQ(Select(after, bad.metric, {{"gpu", "1"}}).size(), Select(before, bad.metric, {{"gpu", "1"}}).size());
        EXPECT_GT(Errors(after, bad.family), Errors(before, bad.family));
        EXPECT_EQ(ValueOf(after, "dksml_exporter_last_collect_success"), 0);
        EXPECT_EQ(ValueOf(after, "dksml_up"), 1);
    }
}

TEST_F(ExporterFaults, ConcurrentScrapesAllSucceed) {
    ScopedHost host("server");
    ExporterProcess exporter;
    ASSERT_GT(exporter.Port(), 0);
    const size_t expected = Select(ScrapeOk(exporter), "dksml_clock_megahertz").size();
    ASSERT_GT(expected, 0u);
    std::atomic<int> good{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < 5; ++i) {
                const std::vector<Sample> samples = ParseExposition(exporter.Scrape().body);
                if (Select(samples, "dksml_clock_megahertz").size() == expected &&
                    ValueOf(samples, "dksml_exporter_last_collect_success") == 1)
                    ++good;
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(good.load(), 20);
}

TEST_F(ExporterFaults, SighupFindsAGpuThatAppearedAfterTheStart) {
    nlohmann::json profile = dksml::vhost::LoadProfile("server");
    nlohmann::json& devices = profile["devices"];
    nlohmann::json removed;
    for (auto it = devices.begin(); it != devices.end(); ++it)
        if (it->value("model", "") == "DKK6U") {
            removed = *it;
            devices.erase(it);
            break;
        }
    ASSERT_FALSE(removed.is_null());
    const nlohmann::json links = profile["links"];
    nlohmann::json& kept = profile["links"] = nlohmann::json::array();
    for (const nlohmann::json& link : links)
        if (link["from"] != removed["bus_id"] && link["to"] != removed["bus_id"]) kept.push_back(link);
    ScopedHost host(profile);
    ExporterProcess exporter({"--rediscover-interval", "0"});
    ASSERT_GT(exporter.Port(), 0);
    const size_t before = Select(ScrapeOk(exporter), "dksml_gpu_info").size();

    devices.push_back(removed);
    profile["links"] = links;
    dksml::vhost::WriteHost(profile, host.Root());
    exporter.Process().Signal(SIGHUP);
    size_t after = before;
    for (int attempt = 0; attempt < 50 && after == before; ++attempt) {
        std::this_thread::sleep_for(100ms);
        after = Select(ScrapeOk(exporter), "dksml_gpu_info").size();
    }
    EXPECT_EQ(after, before + 1);
    EXPECT_EQ(Select(ScrapeOk(exporter), "dksml_gpu_info", {{"model", "DKK6U"}}).size(), 1u);
    EXPECT_EQ(exporter.Process().Stop(), 0) << "SIGTERM must end the exporter cleanly";
}

}  // namespace
}  // namespace dksml::exporter::test
