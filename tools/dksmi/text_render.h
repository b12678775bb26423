// The human-readable views: the summary of every device and the detail of
// one device, die by die. Missing values read "N/A".
#pragma once

#include <string>

#include "snapshot.h"

namespace dksmi {

std::string RenderSummary(const Snapshot& snapshot);
// Every device and limited device of the snapshot in full (dksmi -i).
std::string RenderDetail(const Snapshot& snapshot);

}  // namespace dksmi
