// The slice operations of `dksmi set`: slice mode on/off, create a slice with
// its quotas, remove a slice, set a slice's alias. Root only; every refusal
// says why. Each handler returns the outcome to print and exit with.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "outcome.h"

namespace dksmi {

enum class SliceAction { Toggle, Create, Remove, Alias };

struct SliceSetRequest {
    SliceAction action = SliceAction::Toggle;
    uint32_t device = 0;
    bool on = false;              // Toggle
    uint32_t vramQuota = 0;       // Create
    uint32_t computeQuota = 0;    // Create
    uint32_t slice = 0;           // Remove, Alias
    std::string alias;            // Alias
};

// The slice options as given on the command line, before they become requests.
struct SliceSettings {
    std::string mode;                  // "on" or "off"
    bool create = false;
    uint32_t vramQuota = 0;
    uint32_t computeQuota = 0;
    std::vector<uint32_t> remove;
    std::vector<std::string> alias;    // "ID=TEXT"
};

// Registers the slice options on the `set` subcommand.
void AddSliceSetOptions(CLI::App& set, SliceSettings& settings);

// The requests for device `index`, in the order they are applied: mode,
// create, aliases, removals. A malformed alias gives the usage message instead.
struct SliceRequests {
    std::vector<SliceSetRequest> requests;
    std::string usageError;   // non-empty: print it and exit with kExitUsage
};
SliceRequests ToSliceRequests(const SliceSettings& settings, uint32_t index);

// Runs one slice operation after dkSmlInit(); `euid` is the caller's
// effective user id (only root may change slices). The message says what
// changed on success, why not otherwise.
Outcome RunSliceSet(const SliceSetRequest& request, unsigned euid);

}  // namespace dksmi
