// A real Prometheus server scrapes the exporter on 127.0.0.1 and answers a
// query for one series with the value the exporter served.
#include <gtest/gtest.h>

#include <fstream>
#include <thread>
#include <unistd.h>

#include <nlohmann/json.hpp>

#include "exporter/exporter_process.h"
#include "vhost/dk_virtual_host.h"

namespace dksml::exporter::test {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

TEST(ExporterPrometheus, APrometheusServerScrapesTheExporter) {
    if (!fs::exists(ExporterBinary())) GTEST_SKIP() << "dksml-exporter is not built (tools disabled)";
    const std::string prometheus = FindOnPath("prometheus");
    if (prometheus.empty())
        GTEST_SKIP() << "the prometheus server is not installed; scripts/install-deps.sh installs the Debian "
                        "package 'prometheus' (skipped only where that package cannot be had)";

    dksml::vhost::ScopedHost host("server");
    ExporterProcess exporter;
    ASSERT_GT(exporter.Port(), 0);
    // The value test checks the page itself against dksmi.
    const std::optional<double> rpm =
        ValueOf(ParseExposition(exporter.Scrape().body), "dksml_fan_speed_rpm", {{"gpu", "0"}});
    ASSERT_TRUE(rpm.has_value());

    const fs::path work = host.Root().parent_path() / ("prometheus-" + std::to_string(::getpid()));
    fs::create_directories(work);
    {
        std::ofstream config(work / "prometheus.yml");
        config << "global:\n  scrape_interval: 1s\n  evaluation_interval: 1s\n"
               << "scrape_configs:\n  - job_name: dksml\n    static_configs:\n"
               << "      - targets: ['127.0.0.1:" << exporter.Port() << "']\n";
    }
    const int webPort = FreeLoopbackPort();
    ASSERT_GT(webPort, 0);
    std::optional<double> value;
    {
        ChildProcess server({prometheus, "--config.file=" + (work / "prometheus.yml").string(),
                             "--storage.tsdb.path=" + (work / "data").string(),
                             "--web.listen-address=127.0.0.1:" + std::to_string(webPort)});
        // %7B%7D: {gpu="0"}
        const std::string query = "/api/v1/query?query=dksml_fan_speed_rpm%7Bgpu%3D%220%22%7D";
        for (int attempt = 0; attempt < 120 && !value; ++attempt) {
            std::this_thread::sleep_for(250ms);
            const HttpReply reply = HttpGet(webPort, query, 2s);
            if (reply.status != 200) continue;
            const nlohmann::json answer = nlohmann::json::parse(reply.body, nullptr, false);
            if (answer.is_discarded() || answer["data"]["result"].empty()) continue;
            value = std::stod(answer["data"]["result"][0]["value"][1].get<std::string>());
        }
        server.Stop();
    }
    fs::remove_all(work);
    ASSERT_TRUE(value.has_value()) << "Prometheus did not report the series within 30 s";
    EXPECT_EQ(*value, *rpm);
}

}  // namespace
}  // namespace dksml::exporter::test
