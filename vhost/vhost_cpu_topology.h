// CPU and NUMA topology of the simulated machine: /sys/devices/system/cpu and
// /sys/devices/system/node, as topology tools read them, generated from the
// profile's cpu_nodes so that they agree with every function's numa_node and
// local_cpulist.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "vhost/vhost_profile.h"

namespace dksml::vhost {

// "0-31,64-95" to its CPU numbers, ascending and unique; empty when malformed.
std::vector<unsigned> ParseCpuList(std::string_view list);

// The kernel's hexadecimal mask text for `cpus` over `bitCount` bits:
// 32-bit words, most significant first, separated by commas ("ff,ffffffff").
std::string CpuMaskText(const std::vector<unsigned>& cpus, unsigned bitCount);

// The number of CPU ids the machine has (highest CPU number plus one).
unsigned PossibleCpuCount(const HostSpec& host);

void WriteCpuTopology(const std::filesystem::path& root, const HostSpec& host);

}  // namespace dksml::vhost
