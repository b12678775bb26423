// Whole-structure temperature reads: one die, and the merge over all dies.
#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>

#include "core/idk_device.h"
#include "features/temperature/dk_showtemp.h"
#include "features/temperature/dk_temperature.h"
#include "features/temperature/dk_temperature_keys.h"

namespace dksml {
namespace {

// The N of "...sensor[N]...", or nothing when no digits follow the bracket.
std::optional<int32_t> NumberedSensorIndex(std::string_view key, std::size_t markerPos) {
    std::string_view digits = key.substr(markerPos + c_numberedSensorMarker.size());
    int32_t index = 0;
    auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), index);
    if (error != std::errc{} || digits.empty() || digits.front() == '-') return std::nullopt;
    return index;
}

const DkTemperatureKey* FindKeyEntry(std::string_view key) {
    auto entry = std::find_if(c_temperatureKeyTable.begin(), c_temperatureKeyTable.end(),
                              [key](const DkTemperatureKey& e) { return key.find(e.name) != std::string_view::npos; });
    return entry == c_temperatureKeyTable.end() ? nullptr : &*entry;
}

}  // namespace

void DkTemperature::InitTemperature(DkSmlTemperature* temperature) const {
    if (temperature == nullptr) return;
    for (auto field : c_temperatureFields) temperature->*field = m_invalidTemperature;
    temperature->hottestSensorIndex = 0;
}

void DkTemperature::ExtractSingleHighestTemp(int32_t& kept, int32_t candidate) const {
    if (candidate >= m_invalidTemperature) return;
    if (kept >= m_invalidTemperature || kept < candidate) kept = candidate;
}

void DkTemperature::ExtractHighestTemperature(DkSmlTemperature* kept, const DkSmlTemperature* candidate) const {
    if (kept == nullptr || candidate == nullptr) return;
    for (auto field : c_temperatureFields) ExtractSingleHighestTemp(kept->*field, candidate->*field);
}

DkSmlReturn DkTemperature::GetDieTemperature(IDkDevice* device, unsigned int dieId,
                                             DkSmlTemperature* temperature) const {
    if (device == nullptr || temperature == nullptr) return DK_SML_ERROR_INVALID_INPUT;

    std::string_view text;
    DkSmlReturn result = FetchShowTemp(*device, dieId, text);
    if (result != DK_SML_SUCCESS) return result;

    // Only the index of the hottest numbered sensor is reported; a tie keeps
    // the sensor printed first. Filled on a copy: a text that does not parse
    // leaves the caller's record as it was.
    DkSmlTemperature parsed = *temperature;
    std::optional<int32_t> hottest;
    result = VisitKeyValue(text, [&](std::string_view key, const int64_t* values, std::size_t count) {
        const int32_t value = TemperatureOf(values, count);
        if (std::size_t marker = key.find(c_numberedSensorMarker); marker != std::string_view::npos) {
            if (hottest && value <= *hottest) return;
            std::optional<int32_t> index = NumberedSensorIndex(key, marker);
            if (!index) return;
            parsed.hottestSensorIndex = *index;
            hottest = value;
            return;
        }
        if (const DkTemperatureKey* entry = FindKeyEntry(key)) parsed.*entry->field = value;
    });
    if (result != DK_SML_SUCCESS) return result;
    *temperature = parsed;

    if (temperature->mc0 != m_invalidTemperature && temperature->mc1 != m_invalidTemperature) {
        temperature->memCtrlMax = std::max(temperature->mc0, temperature->mc1);
    }
    return DK_SML_SUCCESS;
}

DkSmlReturn DkTemperature::GetTemperature(IDkDevice* device, DkSmlTemperature* temperature) const {
    if (device == nullptr || temperature == nullptr) return DK_SML_ERROR_INVALID_INPUT;

    InitTemperature(temperature);
    const uint32_t dieCount = device->GetDieCount();
    for (unsigned int die = 0; die < dieCount; ++die) {
        DkSmlTemperature dieTemperature;
        InitTemperature(&dieTemperature);
        DkSmlReturn result = GetDieTemperature(device, die, &dieTemperature);
        if (result != DK_SML_SUCCESS) return result;
        ExtractHighestTemperature(temperature, &dieTemperature);
    }
    return DK_SML_SUCCESS;
}

}  // namespace dksml
