// "showclocks" access shared by the clock readings.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "driver/dk_text.h"
#include "dksml.h"

namespace dksml {

class IDkDevice;

// Fetches "showclocks" of a die and parses it into its label map. Fetch and
// parse errors are returned unchanged; an empty map is left to the caller.
DkSmlReturn ReadClockLabels(IDkDevice& device, unsigned int dieId, DkKeyValueMap& labels);

// Fetches "showclocks" of a die into this thread's scratch text (reused, so
// no allocation once it has grown) and points `text` at it; valid until the
// thread's next fetch.
DkSmlReturn FetchClockText(IDkDevice& device, unsigned int dieId, std::string_view& text);

// Copies at most `capacity` values into `slots`, each clamped to 32 bits
// unsigned, and returns how many were copied.
uint32_t CopyClockValues(const std::vector<int64_t>& values, uint32_t* slots, std::size_t capacity);
uint32_t CopyClockValues(const int64_t* values, std::size_t count, uint32_t* slots, std::size_t capacity);

}  // namespace dksml
