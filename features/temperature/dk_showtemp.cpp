#include "features/temperature/dk_showtemp.h"

#include <algorithm>
#include <limits>
#include <string>

#include "core/idk_device.h"

namespace dksml {

DkSmlReturn ReadShowTemp(IDkDevice& device, unsigned int dieId, DkKeyValueList& keys) {
    std::string text;
    DkSmlReturn result = device.FetchDriverData(dieId, DRAVIK_SMI_SHOWTEMP, text);
    if (result != DK_SML_SUCCESS) return result;
    return ParseKeyValue(text, keys);
}

int32_t TemperatureOf(const std::vector<int64_t>& values) {
    // The parser keeps only keys with at least one number; guard anyway.
    if (values.empty()) return DK_SML_TEMPERATURE_INVALID;
    return static_cast<int32_t>(std::clamp<int64_t>(values.front(), std::numeric_limits<int32_t>::min(),
                                                    std::numeric_limits<int32_t>::max()));
}

}  // namespace dksml
