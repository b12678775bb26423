// Names of the driver's numbered directories: pid and slice ids, and the
// numbers inside entry names. (The listing itself is driver/dk_dir_list.h.)
#pragma once

#include <cstdint>
#include <string_view>

#include "driver/dk_dir_list.h"

namespace dksml {

// An entry name made only of decimal digits whose value fits in 32 bits.
bool ParseDecimalName(std::string_view name, uint32_t& value);

// Leading decimal digits of `text` (at least one), rejecting values above `limit`.
bool ParseLeadingDecimal(std::string_view text, uint64_t limit, uint64_t& value);

}  // namespace dksml
