// The kernel's CPU list text ("0-3,8,10-11"), as in a PCI function's
// "local_cpulist".
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <string_view>

namespace dksml {

// CPU numbers beyond this are not real CPUs of any machine the library runs
// on; a range reaching past it is cut here so that junk such as
// "0-99999999" cannot make the set huge.
inline constexpr uint32_t c_maxCpuNumber = 65535;

// Comma-separated tokens, each one CPU or an inclusive range a-b. A token
// whose number (or either bound) does not parse, or whose range runs
// backwards, is skipped. False only for an empty line.
bool ParseCpuList(std::string_view line, std::set<uint32_t>& cpus);

// The inverse: ascending CPUs as ranges ("0-3,8,10-11").
std::string FormatCpuList(const std::set<uint32_t>& cpus);

}  // namespace dksml
