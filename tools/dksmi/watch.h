// --watch: redraw until interrupted (SIGINT/SIGTERM end the loop cleanly).
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

namespace dksmi {

// Calls `draw` every `periodSeconds` until a signal arrives, `maxDraws` draws
// have been made, or `draw` returns non-zero (that code is returned).
int RunWatch(double periodSeconds, std::optional<uint32_t> maxDraws, const std::function<int()>& draw);

}  // namespace dksmi
