// Command-line options of dksmi.
#pragma once

#include <cstdint>
#include <optional>
#include <variant>

namespace dksmi {

struct Options {
    std::optional<uint32_t> index;      // -i: one device only
    bool json = false;
    std::optional<double> watchSeconds; // --watch: redraw period
    std::optional<uint32_t> count;      // --count: redraws before leaving watch mode
    bool processes = false;             // `processes` or -p: the process list
    bool sortByMemory = false;          // --sort memory
};

// Either the options, or the exit code to leave with at once (help, usage error).
using ParseResult = std::variant<Options, int>;

ParseResult ParseOptions(int argc, char** argv);

}  // namespace dksmi
