#include "options.h"

#include <CLI/CLI.hpp>

#include "outcome.h"

namespace dksmi {
namespace {

// CLI11's own positive check prints the whole double range in its message.
const CLI::Validator kPositive(
    [](std::string& text) -> std::string {
        try {
            if (std::stod(text) > 0) return "";
        } catch (const std::exception&) {
        }
        return "must be a number greater than 0, not " + text;
    },
    "> 0");

}  // namespace

ParseResult ParseOptions(int argc, char** argv) {
    CLI::App app{"dksmi - show the GPUs of this host, their clocks, temperatures, fan and\n"
                 "voltage monitor, and the GPUs that cannot be served and why.",
                 "dksmi"};
    app.footer(
        "Exit codes: 0 success, 1 unexpected failure, 2 usage error, 3 kernel driver\n"
        "not loaded, 4 no GPU found, 5 no device with the given index, 6 GPUs found\n"
        "but none can be served.\n"
        "DK_SMI_FSROOT=DIR runs on a simulated host rooted at DIR.");

    Options options;
    uint32_t index = 0;
    double watchSeconds = 0;
    uint32_t count = 0;
    CLI::Option* indexOption =
        app.add_option("-i,--index", index, "Show everything known about one device (device index)");
    app.add_flag("--json", options.json, "Print JSON (schema_version 1) instead of tables");
    CLI::Option* watchOption = app.add_option("--watch", watchSeconds, "Redraw every SECONDS until interrupted")
                                   ->type_name("SECONDS")
                                   ->check(kPositive);
    CLI::Option* countOption = app.add_option("--count", count, "With --watch: stop after N redraws")
                                   ->type_name("N")
                                   ->check(kPositive)
                                   ->needs(watchOption);

    app.add_flag("-p,--processes", options.processes, "List the processes using the GPUs");
    std::string sort = "pid";
    app.add_option("--sort", sort, "Order of the process list: pid or memory (largest first)")
        ->check(CLI::IsMember({"pid", "memory"}));
    CLI::App* processes = app.add_subcommand("processes", "List the processes using the GPUs (as -p)");
    processes->fallthrough();

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        const int code = app.exit(error);
        return code == 0 ? kExitOk : kExitUsage;
    }
    if (indexOption->count() > 0) options.index = index;
    if (watchOption->count() > 0) options.watchSeconds = watchSeconds;
    if (countOption->count() > 0) options.count = count;
    options.processes = options.processes || processes->parsed();
    options.sortByMemory = sort == "memory";
    return options;
}

}  // namespace dksmi
