#include "features/topology/dk_cpu_list.h"

#include <algorithm>

#include "driver/dk_text.h"

namespace dksml {
namespace {

bool ParseCpuNumber(std::string_view text, uint32_t& cpu) {
    text = TrimView(text, " \t\r\n");
    if (!IsNumber(text)) return false;
    unsigned long value = 0;
    if (!stoul_nt(text, value)) return false;
    cpu = static_cast<uint32_t>(std::min<unsigned long>(value, c_maxCpuNumber + 1ul));
    return true;
}

void AddToken(std::string_view token, std::set<uint32_t>& cpus) {
    const size_t dash = token.find('-');
    uint32_t first = 0;
    if (dash == std::string_view::npos) {
        if (ParseCpuNumber(token, first) && first <= c_maxCpuNumber) cpus.insert(first);
        return;
    }
    uint32_t last = 0;
    if (!ParseCpuNumber(token.substr(0, dash), first) || !ParseCpuNumber(token.substr(dash + 1), last)) return;
    last = std::min(last, c_maxCpuNumber);
    for (uint32_t cpu = first; cpu <= last; ++cpu) cpus.insert(cpu);
}

}  // namespace

bool ParseCpuList(std::string_view line, std::set<uint32_t>& cpus) {
    if (line.empty()) return false;
    size_t start = 0;
    while (start <= line.size()) {
        size_t comma = line.find(',', start);
        if (comma == std::string_view::npos) comma = line.size();
        AddToken(line.substr(start, comma - start), cpus);
        start = comma + 1;
    }
    return true;
}

std::string FormatCpuList(const std::set<uint32_t>& cpus) {
    std::string text;
    for (auto it = cpus.begin(); it != cpus.end();) {
        const uint32_t first = *it;
        uint32_t last = first;
        while (++it != cpus.end() && *it == last + 1) ++last;
        if (!text.empty()) text += ',';
        text += std::to_string(first);
        if (last != first) text += '-' + std::to_string(last);
    }
    return text;
}

}  // namespace dksml
