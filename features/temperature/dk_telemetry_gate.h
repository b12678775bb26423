// Which devices expose the board telemetry files (sensor table, fan control):
// the training lines only, and never through a virtual function.
#pragma once

#include "core/idk_device.h"
#include "dksml.h"

namespace dksml {

inline constexpr bool IsTelemetryBrand(DkSmlDeviceBrand brand) {
    return brand == DK_SML_BRAND_DKK || brand == DK_SML_BRAND_DKK_X;
}

inline bool PassesTelemetryGate(const IDkDevice& device) {
    return IsTelemetryBrand(device.GetDeviceBrand()) && !device.IsVf();
}

}  // namespace dksml
