// The slice operations of `dksmi set`: slice mode on/off, create a slice with
// its quotas, remove a slice, set a slice's alias. Root only; every refusal
// says why. Each handler returns the outcome to print and exit with.
#pragma once

#include <cstdint>
#include <string>

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

// Runs one slice operation after dkSmlInit(); `euid` is the caller's
// effective user id (only root may change slices).
Outcome RunSliceSet(const SliceSetRequest& request, unsigned euid);

}  // namespace dksmi
