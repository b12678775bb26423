// Where the driver keeps a device's slice-GPU files, relative to the physical
// device's attribute directory, and the slice directory naming rule.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace dksml {

inline constexpr std::string_view c_sgpuModeFile = "/model";
inline constexpr std::string_view c_sgpuModeOn = "sgpu";
inline constexpr std::string_view c_sgpuModeOff = "native";
inline constexpr std::string_view c_sgpuDir = "/sgpu";
inline constexpr std::string_view c_sgpuCreateFile = "/sgpu/create";
inline constexpr std::string_view c_sgpuRemoveFile = "/sgpu/remove";
inline constexpr std::string_view c_sgpuAvailableCountFile = "/sgpu/available_devcnt";
inline constexpr std::string_view c_sgpuAvailableVramFile = "/sgpu/available_vram_quota";
inline constexpr std::string_view c_sgpuAvailableSchedFile = "/sgpu/available_sched_quota";
inline constexpr std::string_view c_sgpuTotalVramFile = "/sgpu/total_vram_quota";
inline constexpr std::string_view c_sgpuTimesliceFile = "/sgpu/sched_timeslice";
inline constexpr std::string_view c_sgpuSchedClassFile = "/sgpu/sched_class";
inline constexpr std::string_view c_sgpuSlicePrefix = "sgpu";

// The driver divides a GPU into at most this many slices.
inline constexpr uint32_t c_sgpuMaxSlices = 16;

// "sgpu" followed by a decimal id (at least one digit): the id of a slice directory.
bool ParseSliceDirName(std::string_view name, uint32_t& id);

}  // namespace dksml
