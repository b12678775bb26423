// "showtemp" access shared by the temperature readings.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "driver/dk_text.h"
#include "dksml.h"

namespace dksml {

class IDkDevice;

// Fetches "showtemp" of a die into this thread's scratch text (reused, so no
// allocation once it has grown) and points `text` at it; valid until the
// thread's next fetch. Parse it with VisitKeyValue.
DkSmlReturn FetchShowTemp(IDkDevice& device, unsigned int dieId, std::string_view& text);

// The temperature of a key: its first value, clamped to 32 bits signed.
int32_t TemperatureOf(const int64_t* values, std::size_t count);

}  // namespace dksml
