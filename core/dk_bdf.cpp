#include "core/dk_bdf.h"

#include <cstdio>

#include "core/dk_system_manager.h"

namespace dksml {
namespace {

bool ParseHexField(std::string_view text, uint32_t& value) {
    if (text.empty() || text.size() > 8) return false;
    uint32_t result = 0;
    for (char c : text) {
        uint32_t digit = 0;
        if (c >= '0' && c <= '9') digit = static_cast<uint32_t>(c - '0');
        else if (c >= 'a' && c <= 'f') digit = static_cast<uint32_t>(c - 'a' + 10);
        else if (c >= 'A' && c <= 'F') digit = static_cast<uint32_t>(c - 'A' + 10);
        else return false;
        result = result << 4 | digit;
    }
    value = result;
    return true;
}

}  // namespace

bool ParseBdf(std::string_view text, DkBdf& bdf) {
    size_t firstColon = text.find(':');
    size_t lastColon = text.rfind(':');
    if (firstColon == std::string_view::npos || firstColon == lastColon) return false;
    size_t dot = text.find('.', lastColon);
    if (dot == std::string_view::npos) return false;
    DkBdf parsed;
    if (!ParseHexField(text.substr(0, firstColon), parsed.domain) ||
        !ParseHexField(text.substr(firstColon + 1, lastColon - firstColon - 1), parsed.bus) ||
        !ParseHexField(text.substr(lastColon + 1, dot - lastColon - 1), parsed.device) ||
        !ParseHexField(text.substr(dot + 1), parsed.function))
        return false;
    bdf = parsed;
    return true;
}

uint32_t BdfToUint(const DkBdf& bdf) {
    return bdf.domain << 16 | bdf.bus << 8 | bdf.device << 3 | bdf.function;
}

std::string GetStandardBdfId(const std::string& text) {
    DkBdf bdf;
    if (!ParseBdf(text, bdf)) return {};
    char buffer[48];
    std::snprintf(buffer, sizeof(buffer), "%04x:%02x:%02x.%x", bdf.domain, bdf.bus, bdf.device,
                  bdf.function);
    return buffer;
}

}  // namespace dksml
