// Bit and list helpers: small operations on numbers the features have read.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace dksml {

// The low `count` bits of the number in `text`, least significant first, one
// int (0 or 1) in each of the `count` slots of the caller's `bits`. Throws like stoi (DK_SML_ERROR_NOT_SUPPORTED for
// "not support", else DK_SML_ERROR_SYSFS) when the text is no number.
void GetBitState(std::string_view text, int* bits, std::size_t count);

// "0x" + lower-case hexadecimal of `value` (its two's-complement bits); a new string.
std::string IntToHexString(int value);

// Adds `delta` to each of the `count` values of the caller's array; no status.
template <typename T>
void AddValueForArray(T* values, std::size_t count, T delta);

}  // namespace dksml

#include "driver/dk_text_impl.h"
