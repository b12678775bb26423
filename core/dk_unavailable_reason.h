// Text of each reason a device cannot be served.
#pragma once

#include <cstdint>

namespace dksml {

// The fixed text of a DkSmlUnavailableReason value; "" for any other value.
const char* DkUnavailableReasonText(uint32_t reason);

}  // namespace dksml
