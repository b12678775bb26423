// Fan speed and duty through "fan_ctrl" of die 0 (the board has one fan
// controller, reached through the first die).
#include <array>
#include <charconv>
#include <string>
#include <string_view>

#include "core/idk_device.h"
#include "driver/dk_text.h"
#include "features/fan/dk_fan.h"
#include "features/temperature/dk_telemetry_gate.h"

namespace dksml {
namespace {

constexpr unsigned int c_fanControlDie = 0;

enum class DkFanOutput { Rpm, Pwm };

struct DkFanKey {
    std::string_view name;  // matched as a substring of the driver's key
    DkFanOutput output;
};

inline constexpr std::array<DkFanKey, 2> c_fanKeyTable{{
    {"fan_rpm", DkFanOutput::Rpm},
    {"fan_pwm", DkFanOutput::Pwm},
}};

// Only a text with exactly one speed and one duty line is trusted.
constexpr int c_fanExpectedKeyCount = 2;

uint32_t FanValueOf(const std::vector<int64_t>& values) {
    return values.empty() ? 0u : static_cast<uint32_t>(values.front());
}

}  // namespace

DkSmlReturn DkFan::GetFanSpeedInfo(IDkDevice* device, uint32_t* rpm, uint32_t* pwm) {
    if (device == nullptr || rpm == nullptr || pwm == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (!PassesTelemetryGate(*device)) return DK_SML_ERROR_NOT_SUPPORTED;

    std::string text;
    DkSmlReturn result = device->FetchDriverData(c_fanControlDie, DRAVIK_SMI_FAN_CTRL, text);
    if (result != DK_SML_SUCCESS) return result;
    DkKeyValueList keys;
    result = ParseKeyValue(text, keys);
    if (result != DK_SML_SUCCESS) return result;

    int matched = 0;
    for (const auto& [key, values] : keys) {
        for (const DkFanKey& entry : c_fanKeyTable) {
            if (key.find(entry.name) == std::string::npos) continue;
            (entry.output == DkFanOutput::Rpm ? *rpm : *pwm) = FanValueOf(values);
            ++matched;
            break;
        }
    }
    return matched == c_fanExpectedKeyCount ? DK_SML_SUCCESS : DK_SML_ERROR_NOT_SUPPORTED;
}

DkSmlReturn DkFan::SetFanPwm(IDkDevice* device, uint32_t pwm) {
    if (device == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (!PassesTelemetryGate(*device)) return DK_SML_ERROR_NOT_SUPPORTED;

    char digits[16];
    auto [end, error] = std::to_chars(digits, digits + sizeof digits, pwm);
    if (error != std::errc{}) return DK_SML_ERROR_FAILURE;
    return device->SetDriverData(c_fanControlDie, DRAVIK_SMI_FAN_CTRL, std::string(digits, end));
}

}  // namespace dksml
