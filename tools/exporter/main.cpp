// dksml-exporter: a Prometheus exporter for the GPUs of one host. prometheus-cpp's
// pull server answers /metrics (collected afresh per scrape) and serves the
// static "/" page from the web root; the main thread only waits for signals and
// re-discovers the devices on SIGHUP and on the rediscovery interval.
#include <csignal>
#include <cstdio>
#include <ctime>
#include <exception>
#include <memory>
#include <string>
#include <vector>

#include <prometheus/exposer.h>

#include "exporter_options.h"
#include "library_session.h"
#include "scrape_collector.h"

namespace {

using namespace dksml::exporter;

// How long a rediscovery waits for a running collection before it is retried
// at the next signal or interval.
constexpr std::chrono::seconds kDiscoveryWait{10};

sigset_t HandledSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGHUP);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    return signals;
}

void Discover(LibrarySession& session, const char* why) {
    const DkSmlReturn status = session.Discover(kDiscoveryWait);
    std::fprintf(stderr, "dksml-exporter: discovery (%s): %u GPUs, status %d (%s)\n", why, dkSmlGetDeviceCount(),
                 static_cast<int>(status), dkSmlGetErrorString(status));
}

// Waits for the signals (blocked in every thread) and rediscovers; returns on
// SIGINT or SIGTERM.
void ServeUntilStopped(LibrarySession& session, double intervalSeconds) {
    const sigset_t signals = HandledSignals();
    const time_t waitSeconds = intervalSeconds > 0 ? static_cast<time_t>(intervalSeconds) : 3600;
    for (;;) {
        timespec wait{std::max<time_t>(waitSeconds, 1), 0};
        const int signal = sigtimedwait(&signals, nullptr, &wait);
        if (signal == SIGINT || signal == SIGTERM) return;
        if (signal == SIGHUP)
            Discover(session, "SIGHUP");
        else if (signal < 0 && intervalSeconds > 0)
            Discover(session, "interval");
    }
}

}  // namespace

int main(int argc, char** argv) {
    int exitCode = 0;
    const std::optional<ExporterOptions> options = ParseOptions(argc, argv, exitCode);
    if (!options) return exitCode;

    // Block the handled signals before any thread exists so that every thread
    // inherits the mask and only sigtimedwait sees them.
    const sigset_t signals = HandledSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);

    auto session = std::make_shared<LibrarySession>();
    Discover(*session, "start");

    const std::string webRoot = options->webRoot.empty() ? DKSML_EXPORTER_WEB_ROOT : options->webRoot;
    std::unique_ptr<prometheus::Exposer> exposer;
    try {
        exposer = std::make_unique<prometheus::Exposer>(std::vector<std::string>{
            "listening_ports", options->listen, "num_threads", "4", "document_root", webRoot,
            "enable_directory_listing", "no", "request_timeout_ms", "30000"});
    } catch (const std::exception& error) {
        std::fprintf(stderr, "dksml-exporter: cannot listen on %s: %s\n", options->listen.c_str(), error.what());
        return 1;
    }
    auto collector = std::make_shared<ScrapeCollector>(
        session, ScrapeSettings{ToMilliseconds(options->collectTimeoutSeconds), options->perProcess});
    exposer->RegisterCollectable(collector, "/metrics");

    for (int port : exposer->GetListeningPorts()) std::printf("dksml-exporter: listening on port %d\n", port);
    std::fflush(stdout);

    ServeUntilStopped(*session, options->rediscoverIntervalSeconds);
    exposer.reset();
    return 0;
}
