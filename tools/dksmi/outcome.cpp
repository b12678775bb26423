#include "outcome.h"

#include <algorithm>

#include <fmt/format.h>

#include "names.h"

namespace dksmi {
namespace {

bool AnyReason(const Snapshot& snapshot, uint32_t reason) {
    return std::any_of(snapshot.limitedDevices.begin(), snapshot.limitedDevices.end(),
                       [&](const LimitedDeviceReport& d) { return d.reason == reason; });
}

// Nothing to show: say why, from the library's status and the reasons of the
// GPUs that were found but could not be set up.
Outcome NoDeviceVerdict(const Snapshot& snapshot) {
    const size_t found = snapshot.limitedDevices.size();
    if (found > 0 && AnyReason(snapshot, DK_SML_UNAVAILABLE_DRIVER_NOT_FOUND))
        return {kExitDriverNotLoaded,
                fmt::format("The Dravik kernel driver is not loaded: {} GPU(s) found, none can be used.", found)};
    if (found > 0) return {kExitNoUsableGpu, fmt::format("{} GPU(s) found, none can be used.", found)};
    return {kExitNoGpu, fmt::format("No GPU found ({}).", StatusText(snapshot.initStatus))};
}

}  // namespace

Outcome Judge(const Snapshot& snapshot, const Options& options) {
    if (options.index) {
        const uint32_t index = *options.index;
        auto same = [&](const auto& d) { return d.index == index; };
        if (std::any_of(snapshot.devices.begin(), snapshot.devices.end(), same)) return {kExitOk, ""};
        auto limited = std::find_if(snapshot.limitedDevices.begin(), snapshot.limitedDevices.end(), same);
        if (limited != snapshot.limitedDevices.end()) {
            const int code = limited->reason == DK_SML_UNAVAILABLE_DRIVER_NOT_FOUND ? kExitDriverNotLoaded
                                                                                   : kExitNoUsableGpu;
            return {code, fmt::format("Device {} ({}) cannot be used: {}.", index, limited->busId, limited->reasonText)};
        }
        if (snapshot.devices.empty()) return NoDeviceVerdict(snapshot);
        return {kExitNoSuchDevice, fmt::format("No device with index {}.", index)};
    }
    if (snapshot.devices.empty()) return NoDeviceVerdict(snapshot);
    return {kExitOk, ""};
}

}  // namespace dksmi
