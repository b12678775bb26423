// Fan speed and duty through "fan_ctrl" of die 0 (the board has one fan
// controller, reached through the first die).
#include <array>
#include <charconv>
#include <optional>
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

uint32_t FanValueOf(const int64_t* values, std::size_t count) {
    return count == 0 ? 0u : static_cast<uint32_t>(values[0]);
}

}  // namespace

DkSmlReturn DkFan::GetFanSpeedInfo(IDkDevice* device, uint32_t* rpm, uint32_t* pwm) {
    if (device == nullptr || rpm == nullptr || pwm == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (!PassesTelemetryGate(*device)) return DK_SML_ERROR_NOT_SUPPORTED;

    thread_local std::string text;  // reused: no allocation once grown
    DkSmlReturn result = device->FetchDriverData(c_fanControlDie, DRAVIK_SMI_FAN_CTRL, text);
    if (result != DK_SML_SUCCESS) return result;

    // Collected first: nothing is written when the text does not parse.
    int matched = 0;
    std::optional<uint32_t> found[2];
    result = VisitKeyValue(text, [&](std::string_view key, const int64_t* values, std::size_t count) {
        for (const DkFanKey& entry : c_fanKeyTable) {
            if (key.find(entry.name) == std::string_view::npos) continue;
            found[entry.output == DkFanOutput::Rpm ? 0 : 1] = FanValueOf(values, count);
            ++matched;
            break;
        }
    });
    if (result != DK_SML_SUCCESS) return result;
    if (found[0]) *rpm = *found[0];
    if (found[1]) *pwm = *found[1];
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
