// The driver's slice-GPU words and naming rule. The files themselves are
// requests of the driver data handler, in the PCI function's directory.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace dksml {

inline constexpr std::string_view c_sgpuModeOn = "sgpu";
inline constexpr std::string_view c_sgpuModeOff = "native";
inline constexpr std::string_view c_sgpuSlicePrefix = "sgpu";

// The driver divides a GPU into at most this many slices.
inline constexpr uint32_t c_sgpuMaxSlices = 16;

// "sgpu" followed by a decimal id (at least one digit): the id of a slice directory.
bool ParseSliceDirName(std::string_view name, uint32_t& id);

}  // namespace dksml
