// "showtemp" access shared by the temperature readings.
#pragma once

#include <cstdint>
#include <vector>

#include "driver/dk_text.h"
#include "dksml.h"

namespace dksml {

class IDkDevice;

// Fetches "showtemp" of a die and parses it into its keys in file order.
// Fetch and parse errors are returned unchanged.
DkSmlReturn ReadShowTemp(IDkDevice& device, unsigned int dieId, DkKeyValueList& keys);

// The temperature of a key: its first value, clamped to 32 bits signed.
int32_t TemperatureOf(const std::vector<int64_t>& values);

}  // namespace dksml
