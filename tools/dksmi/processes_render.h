// Text and JSON of processes and slices.
#pragma once

#include <string>

#include <nlohmann/json.hpp>

#include "snapshot.h"

namespace dksmi {

enum class ProcessOrder { Pid, Memory };

// `dksmi processes`: one row per (process, GPU, memory domain).
std::string RenderProcesses(const Snapshot& snapshot, ProcessOrder order);

// One line of the -i view for a slice.
std::string SliceLine(const SliceReport& slice);

nlohmann::ordered_json SlicesJson(const DeviceReport& device);
nlohmann::ordered_json ProcessesJson(const Snapshot& snapshot);

}  // namespace dksmi
