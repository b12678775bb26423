// Memory threshold of the process scan, per board family.
//
// Every client of the driver holds a little video memory for its contexts and
// page tables as soon as it opens the device. A process at or below the
// threshold on a GPU is reported for that GPU only when it also has a ring
// buffer there (it submits work); otherwise it is a client that merely opened
// the device (a monitoring tool, a library probing the GPUs). The values are
// in the unit of the driver's "vram_" files (bytes) and are the largest
// per-client footprint the driver allocates before the first user allocation
// on each family, rounded up.
#pragma once

#include <cstdint>

#include "dksml.h"

namespace dksml {

struct DkProcessThreshold {
    DkSmlDeviceBrand brand;
    uint64_t bytes;
};

inline constexpr uint64_t c_mebibyte = 1024ull * 1024ull;

// The one table of thresholds; a brand that is not listed uses the last row.
inline constexpr DkProcessThreshold c_processMemoryThresholds[] = {
    {DK_SML_BRAND_DKQ, 8 * c_mebibyte},     // inference boards: one small context per client
    {DK_SML_BRAND_DKK, 16 * c_mebibyte},    // training boards: larger page tables per client
    {DK_SML_BRAND_DKK_X, 16 * c_mebibyte},
    {DK_SML_BRAND_DKZ, 4 * c_mebibyte},     // edge boards: small video memory, small contexts
    {DK_SML_BRAND_UNKNOWN, 8 * c_mebibyte},
};

constexpr uint64_t GetProcessMemoryThreshold(DkSmlDeviceBrand brand) {
    for (const DkProcessThreshold& row : c_processMemoryThresholds)
        if (row.brand == brand) return row.bytes;
    return c_processMemoryThresholds[sizeof(c_processMemoryThresholds) / sizeof(c_processMemoryThresholds[0]) - 1]
        .bytes;
}

}  // namespace dksml
