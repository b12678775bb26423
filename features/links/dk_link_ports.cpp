#include "features/links/dk_link_ports.h"

#include "driver/dk_text.h"

namespace dksml {
namespace {

constexpr std::string_view c_portTag = "port";

// The port number of a "portN" line, 0 when the line names none.
uint32_t PortOfLine(std::string_view line) {
    const size_t at = line.find(c_portTag);
    if (at == std::string_view::npos || at + c_portTag.size() >= line.size()) return 0;
    const char digit = line[at + c_portTag.size()];
    return digit >= '1' && digit <= '9' ? static_cast<uint32_t>(digit - '0') : 0;
}

std::string_view AfterColon(std::string_view line) {
    const size_t colon = line.find(':');
    return colon == std::string_view::npos ? std::string_view{} : line.substr(colon + 1);
}

}  // namespace

template <typename T>
DkSmlReturn GetDklkPortValue(std::string_view text, T* values, uint32_t count) {
    DkTextLines lines(text);
    std::string_view line;
    while (lines.Next(line)) {
        const uint32_t port = PortOfLine(line);
        if (port == 0) continue;
        if (port > count) return DK_SML_ERROR_FAILURE;
        float value = 0.0f;
        values[port - 1] = stof_nt(AfterColon(line), value) ? static_cast<T>(value) : T{};
    }
    return DK_SML_SUCCESS;
}

template DkSmlReturn GetDklkPortValue<int>(std::string_view, int*, uint32_t);
template DkSmlReturn GetDklkPortValue<unsigned int>(std::string_view, unsigned int*, uint32_t);
template DkSmlReturn GetDklkPortValue<float>(std::string_view, float*, uint32_t);

DkSmlReturn GetDklkPortPairs(std::string_view text, uint64_t (*pairs)[2], uint32_t count, uint32_t& ports) {
    DkTextLines lines(text);
    std::string_view line;
    ports = 0;
    while (lines.Next(line)) {
        const uint32_t port = PortOfLine(line);
        if (port == 0) continue;
        if (port > count) return DK_SML_ERROR_FAILURE;
        std::string_view rest = TrimView(AfterColon(line), " \t\r");
        const size_t blank = rest.find_first_of(" \t");
        unsigned long long first = 0, second = 0;
        if (blank == std::string_view::npos || !ExtractNumber(rest.substr(0, blank), first) ||
            !ExtractNumber(rest.substr(blank), second)) {
            return DK_SML_ERROR_SYSFS;
        }
        pairs[port - 1][0] = first;
        pairs[port - 1][1] = second;
        if (port > ports) ports = port;
    }
    return DK_SML_SUCCESS;
}

}  // namespace dksml
