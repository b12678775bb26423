// Reads every device, its dies and the limited devices into a Snapshot.
#pragma once

#include <optional>

#include "snapshot.h"

namespace dksmi {

// What the rendering shows, and so what the collection asks the library.
enum class CollectScope {
    Everything,    // the detail view, the JSON document, the process list
    SummaryTable,  // only the fields RenderSummary prints; the rest stays empty
};

// Reads what the library knows after initialisation; `initStatus` is recorded
// for the verdict. The summary table prints a few fields of each device:
// collecting the rest would cost the plain run reads and parsing it never
// shows (the per-die records, versions, PCIe and links, slices).
Snapshot Collect(DkSmlReturn initStatus, CollectScope scope = CollectScope::Everything);

// Keeps only the device (or limited device) with this index.
void KeepOnly(Snapshot& snapshot, uint32_t index);

}  // namespace dksmi
