// Display names shared by the text and JSON views.
#pragma once

#include <string>

#include "snapshot.h"

namespace dksmi {

std::string BrandName(DkSmlDeviceBrand brand);
// "physical", "physical_function" or "virtual_function" (JSON role).
std::string RoleKey(DeviceRole role);

// The library's text of a status code ("" if it has none).
std::string StatusText(DkSmlReturn status);

}  // namespace dksmi
