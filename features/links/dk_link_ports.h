// The driver's per-port interconnect texts: one line per port, "portN:"
// followed by the port's value(s), ports counted from 1.
#pragma once

#include <cstdint>
#include <string_view>

#include "dksml.h"

namespace dksml {

// Ports of one die: die 1 carries the PM port as its eighth.
inline constexpr uint32_t c_die0LinkPorts = 7;
inline constexpr uint32_t c_die1LinkPorts = 8;
inline uint32_t LinkPortCount(unsigned int dieId) { return dieId == 0 ? c_die0LinkPorts : c_die1LinkPorts; }

// Reads the first value after each "portN" line's first ':' (a float,
// converted to T; 0 when it does not convert) into values[N - 1]. Lines
// without "port", or whose port character is not a digit 1..9, are skipped.
// DK_SML_ERROR_FAILURE when a port number exceeds `count`, else DK_SML_SUCCESS
// at the end of the text.
template <typename T>
DkSmlReturn GetDklkPortValue(std::string_view text, T* values, uint32_t count);

// The same for lines carrying two integers ("port3: 12 0"); a line whose
// numbers do not both parse answers DK_SML_ERROR_SYSFS.
DkSmlReturn GetDklkPortPairs(std::string_view text, uint64_t (*pairs)[2], uint32_t count, uint32_t& ports);

}  // namespace dksml
