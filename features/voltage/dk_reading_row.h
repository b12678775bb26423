// A row of readings: blank-separated decimal integers after a label.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace dksml {

// Reads integers from `text` into `out` until `capacity` are read or the next
// one cannot be read (not a number, or out of range); returns how many were
// read. Accepts what stream extraction of an int accepts: leading white
// space, an optional sign, decimal digits, the number ending at the first
// other character.
std::size_t ReadIntegerRow(std::string_view text, int32_t* out, std::size_t capacity);

}  // namespace dksml
