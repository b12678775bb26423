#include "features/temperature/dk_showtemp.h"

#include <algorithm>
#include <limits>
#include <string>

#include "core/idk_device.h"

namespace dksml {

DkSmlReturn FetchShowTemp(IDkDevice& device, unsigned int dieId, std::string_view& text) {
    thread_local std::string scratch;
    DkSmlReturn result = device.FetchDriverData(dieId, DRAVIK_SMI_SHOWTEMP, scratch);
    if (result == DK_SML_SUCCESS) text = scratch;
    return result;
}

int32_t TemperatureOf(const int64_t* values, std::size_t count) {
    // The parser keeps only keys with at least one number; guard anyway.
    if (count == 0) return DK_SML_TEMPERATURE_INVALID;
    return static_cast<int32_t>(std::clamp<int64_t>(values[0], std::numeric_limits<int32_t>::min(),
                                                    std::numeric_limits<int32_t>::max()));
}

}  // namespace dksml
