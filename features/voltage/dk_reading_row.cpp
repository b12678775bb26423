#include "features/voltage/dk_reading_row.h"

#include <charconv>

namespace dksml {
namespace {

constexpr bool IsSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r'; }

}  // namespace

std::size_t ReadIntegerRow(std::string_view text, int32_t* out, std::size_t capacity) {
    const char* cursor = text.data();
    const char* const end = cursor + text.size();
    std::size_t count = 0;
    while (count < capacity) {
        while (cursor != end && IsSpace(*cursor)) ++cursor;
        // from_chars takes '-' but not '+'; a stream takes either, once.
        const char* digits = cursor;
        if (digits != end && *digits == '+') {
            ++digits;
            if (digits != end && *digits == '-') break;
        }
        int32_t value = 0;
        auto [next, error] = std::from_chars(digits, end, value);
        if (error != std::errc{}) break;
        out[count++] = value;
        cursor = next;
    }
    return count;
}

}  // namespace dksml
