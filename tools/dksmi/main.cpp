// dksmi: the first command an operator runs on a host with the maker's GPUs.
#include <unistd.h>

#include <cstdio>
#include <exception>
#include <string_view>

#include <fmt/format.h>

#include "collect.h"
#include "json_render.h"
#include "options.h"
#include "outcome.h"
#include "processes_render.h"
#include "set_command.h"
#include "text_render.h"
#include "topo_command.h"
#include "watch.h"

namespace dksmi {
namespace {

constexpr const char* kClearScreen = "\x1b[H\x1b[2J";

// One read of the devices and one rendering; returns the exit code.
int DrawOnce(DkSmlReturn initStatus, const Options& options, bool clearFirst) {
    const bool summary = !options.json && !options.processes && !options.index;
    Snapshot snapshot = Collect(initStatus, summary ? CollectScope::SummaryTable : CollectScope::Everything);
    const Outcome outcome = Judge(snapshot, options);
    if (options.index) KeepOnly(snapshot, *options.index);

    std::string text;
    if (options.json)
        text = RenderJson(snapshot, outcome, options.watchSeconds.has_value());
    else
        text = options.processes ? RenderProcesses(snapshot, options.sortByMemory ? ProcessOrder::Memory : ProcessOrder::Pid)
               : options.index   ? RenderDetail(snapshot)
                                 : RenderSummary(snapshot);
    if (clearFirst) text = kClearScreen + text;
    fmt::print("{}", text);
    std::fflush(stdout);
    if (outcome.exitCode != kExitOk) fmt::print(stderr, "dksmi: {}\n", outcome.message);
    return outcome.exitCode;
}

int Run(int argc, char** argv) {
    if (argc > 1 && std::string_view(argv[1]) == "topo") return RunTopo(argc - 1, argv + 1);
    if (argc > 1 && std::string_view(argv[1]) == "set") return RunSet(argc - 1, argv + 1);
    const ParseResult parsed = ParseOptions(argc, argv);
    if (const int* exitNow = std::get_if<int>(&parsed)) return *exitNow;
    const Options& options = std::get<Options>(parsed);

    // A failed discovery still leaves the limited devices to report.
    const DkSmlReturn initStatus = dkSmlInit();
    if (!options.watchSeconds) return DrawOnce(initStatus, options, false);

    const bool clear = !options.json && isatty(STDOUT_FILENO);
    return RunWatch(*options.watchSeconds, options.count,
                    [&] { return DrawOnce(initStatus, options, clear); });
}

}  // namespace
}  // namespace dksmi

int main(int argc, char** argv) {
    try {
        return dksmi::Run(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "dksmi: unexpected failure: %s\n", error.what());
    } catch (...) {
        std::fprintf(stderr, "dksmi: unexpected failure\n");
    }
    return dksmi::kExitFailure;
}
