// Processes and slices: the process scan of every GPU and the slices of a
// device in slice mode.
#pragma once

#include "snapshot.h"

namespace dksmi {

// Slice mode and, in slice mode, every slice of the device.
void CollectSlices(DeviceReport& device);

// Every process using a GPU, and the number of processes per device;
// `namespacePids`: also each process's pid in its own namespace (one read per
// process, shown by the process list and the JSON document only).
void CollectProcesses(Snapshot& snapshot, bool namespacePids);

}  // namespace dksmi
