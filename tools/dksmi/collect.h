// Reads every device, its dies and the limited devices into a Snapshot.
#pragma once

#include <optional>

#include "snapshot.h"

namespace dksmi {

// Reads everything the library knows after initialisation; `initStatus` is
// recorded for the verdict.
Snapshot Collect(DkSmlReturn initStatus);

// Keeps only the device (or limited device) with this index.
void KeepOnly(Snapshot& snapshot, uint32_t index);

}  // namespace dksmi
