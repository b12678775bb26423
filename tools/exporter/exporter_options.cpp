#include "exporter_options.h"

#include <CLI/CLI.hpp>

namespace dksml::exporter {

std::chrono::milliseconds ToMilliseconds(double seconds) {
    return std::chrono::milliseconds(static_cast<int64_t>(seconds * 1000.0));
}

std::optional<ExporterOptions> ParseOptions(int argc, char** argv, int& exitCode) {
    ExporterOptions options;
    CLI::App app{"dksml-exporter: serves the GPUs' telemetry to Prometheus on /metrics.", "dksml-exporter"};
    app.set_version_flag("--version", "dksml-exporter " DKSML_EXPORTER_VERSION);
    app.add_option("--listen", options.listen, "Address and port to serve on (host:port)")
        ->capture_default_str();
    app.add_option("--collect-timeout", options.collectTimeoutSeconds,
                   "Seconds one collection may take before the scrape is answered without GPU series")
        ->check(CLI::Range(0.01, 600.0))
        ->capture_default_str();
    app.add_option("--rediscover-interval", options.rediscoverIntervalSeconds,
                   "Seconds between device rediscoveries (0: only on SIGHUP)")
        ->check(CLI::Range(0.0, 86400.0))
        ->capture_default_str();
    app.add_flag("--per-process", options.perProcess,
                 "Add one series per process with pid and name labels (more series)");
    app.add_option("--web-root", options.webRoot, "Directory holding the index.html served on /")
        ->check(CLI::ExistingDirectory);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        exitCode = app.exit(error);
        return std::nullopt;
    }
    return options;
}

}  // namespace dksml::exporter
