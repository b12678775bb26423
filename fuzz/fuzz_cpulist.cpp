// The kernel's CPU list text: any bytes parse without a crash, every CPU
// found is within the cap, and formatting the set and parsing it again gives
// the same set.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <set>
#include <string_view>

#include "features/topology/dk_cpu_list.h"

using namespace dksml;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    std::set<uint32_t> cpus;
    const bool parsed = ParseCpuList(text, cpus);
    if (parsed != !text.empty()) std::abort();
    if (!cpus.empty() && *cpus.rbegin() > c_maxCpuNumber) std::abort();
    std::set<uint32_t> again;
    const std::string formatted = FormatCpuList(cpus);
    if (!formatted.empty() && (!ParseCpuList(formatted, again) || again != cpus)) std::abort();
    return 0;
}
