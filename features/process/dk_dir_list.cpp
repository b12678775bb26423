#include "features/process/dk_dir_list.h"

#include <cstdint>

namespace dksml {

bool ParseLeadingDecimal(std::string_view text, uint64_t limit, uint64_t& value) {
    uint64_t result = 0;
    std::size_t digits = 0;
    for (; digits < text.size() && text[digits] >= '0' && text[digits] <= '9'; ++digits) {
        const uint64_t digit = static_cast<uint64_t>(text[digits] - '0');
        if (result > (limit - digit) / 10) return false;
        result = result * 10 + digit;
    }
    if (digits == 0) return false;
    value = result;
    return true;
}

bool ParseDecimalName(std::string_view name, uint32_t& value) {
    uint64_t parsed = 0;
    for (const char c : name)
        if (c < '0' || c > '9') return false;
    if (!ParseLeadingDecimal(name, UINT32_MAX, parsed)) return false;
    value = static_cast<uint32_t>(parsed);
    return true;
}

}  // namespace dksml
