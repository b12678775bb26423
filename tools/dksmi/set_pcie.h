// The PCIe settings of `dksmi set`: --pci-delay and --pci-gen. Root only
// (on a simulated host, DK_SMI_FSROOT, the writes stay inside its directory
// and need no privilege).
#pragma once

#include <cstdint>
#include <optional>

#include <CLI/CLI.hpp>

namespace dksmi {

struct PcieSettings {
    std::optional<uint32_t> delay;       // 1..10000
    std::optional<uint32_t> generation;  // 1..5, not above the link's maximum
};

// Registers the two options on the `set` subcommand.
void AddPcieSetOptions(CLI::App& set, PcieSettings& settings);

// Applies what was given to device `index`; returns the exit code (0, or 1
// with a message on standard error naming the refusal).
int ApplyPcieSettings(uint32_t index, const PcieSettings& settings);

}  // namespace dksmi
