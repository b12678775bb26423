// The machine-readable view (schema_version 1, documented in README.md).
#pragma once

#include <string>

#include "outcome.h"
#include "snapshot.h"

namespace dksmi {

// `compact`: one line per document (used by --watch, one document per redraw).
std::string RenderJson(const Snapshot& snapshot, const Outcome& outcome, bool compact);

}  // namespace dksmi
