// "showclocks" access shared by the clock readings.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "driver/dk_text.h"
#include "dksml.h"

namespace dksml {

class IDkDevice;

// Fetches "showclocks" of a die and parses it into its label map. Fetch and
// parse errors are returned unchanged; an empty map is left to the caller.
DkSmlReturn ReadClockLabels(IDkDevice& device, unsigned int dieId, DkKeyValueMap& labels);

// Copies at most `capacity` values into `slots`, each clamped to 32 bits
// unsigned, and returns how many were copied.
uint32_t CopyClockValues(const std::vector<int64_t>& values, uint32_t* slots, std::size_t capacity);

}  // namespace dksml
