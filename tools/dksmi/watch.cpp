#include "watch.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <thread>

namespace dksmi {
namespace {

volatile std::sig_atomic_t g_stopRequested = 0;

void RequestStop(int) { g_stopRequested = 1; }

void InstallStopHandlers() {
    struct sigaction action {};
    action.sa_handler = RequestStop;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

// Sleeps in short slices so that an interrupt ends the wait promptly.
void SleepUnlessStopped(double seconds) {
    using namespace std::chrono;
    const auto deadline = steady_clock::now() + duration_cast<steady_clock::duration>(duration<double>(seconds));
    while (!g_stopRequested) {
        const auto now = steady_clock::now();
        if (now >= deadline) return;
        std::this_thread::sleep_for(std::min<steady_clock::duration>(deadline - now, milliseconds(100)));
    }
}

}  // namespace

int RunWatch(double periodSeconds, std::optional<uint32_t> maxDraws, const std::function<int()>& draw) {
    InstallStopHandlers();
    for (uint32_t draws = 0; !g_stopRequested;) {
        if (const int code = draw(); code != 0) return code;
        if (maxDraws && ++draws >= *maxDraws) break;
        SleepUnlessStopped(periodSeconds);
    }
    return 0;
}

}  // namespace dksmi
