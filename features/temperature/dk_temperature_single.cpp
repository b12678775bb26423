// Single-value temperature reads, by sensor selector.
#include <algorithm>
#include <string_view>

#include "core/idk_device.h"
#include "features/temperature/dk_showtemp.h"
#include "features/temperature/dk_temperature.h"
#include "features/temperature/dk_temperature_keys.h"

namespace dksml {
namespace {

const DkTemperatureTypeEntry* FindSensorType(DkSmlTemperatureSensors sensor) {
    auto entry = std::find_if(c_temperatureTypeMap.begin(), c_temperatureTypeMap.end(),
                              [sensor](const DkTemperatureTypeEntry& e) { return e.sensor == sensor; });
    return entry == c_temperatureTypeMap.end() ? nullptr : &*entry;
}

}  // namespace

DkSmlReturn DkTemperature::GetDieTemperature(IDkDevice* device, unsigned int dieId, DkSmlTemperatureSensors sensor,
                                             int32_t* value) const {
    if (device == nullptr || value == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    const DkTemperatureTypeEntry* type = FindSensorType(sensor);
    if (type == nullptr) return DK_SML_ERROR_INVALID_INPUT;

    std::string_view text;
    DkSmlReturn result = FetchShowTemp(*device, dieId, text);
    if (result != DK_SML_SUCCESS) return result;

    // Names are tried in the selector's order; within a name, the first key
    // printed wins. One pass: a key counts when it matches an earlier name
    // than the best key so far.
    std::size_t bestRank = type->names.size();
    int32_t best = 0;
    result = VisitKeyValue(text, [&](std::string_view key, const int64_t* values, std::size_t count) {
        for (std::size_t rank = 0; rank < bestRank; ++rank) {
            const std::string_view name = type->names[rank];
            if (name.empty()) break;
            if (key.find(name) == std::string_view::npos) continue;
            bestRank = rank;
            best = TemperatureOf(values, count);
            break;
        }
    });
    if (result != DK_SML_SUCCESS) return result;
    if (bestRank == type->names.size()) return DK_SML_ERROR_NOT_SUPPORTED;
    *value = best;
    return DK_SML_SUCCESS;
}

DkSmlReturn DkTemperature::GetTemperature(IDkDevice* device, DkSmlTemperatureSensors sensor, int32_t* value) const {
    DkSmlReturn result = GetDieTemperature(device, 0, sensor, value);
    if (result != DK_SML_SUCCESS || sensor != DK_SML_TEMPERATURE_HOTSPOT) return result;

    // The device's hot spot is the hottest die's. Unlike the structure merge,
    // this compares plain values.
    const uint32_t dieCount = device->GetDieCount();
    for (unsigned int die = 1; die < dieCount; ++die) {
        int32_t dieValue = 0;
        result = GetDieTemperature(device, die, sensor, &dieValue);
        if (result != DK_SML_SUCCESS) return result;
        *value = std::max(*value, dieValue);
    }
    return DK_SML_SUCCESS;
}

}  // namespace dksml
