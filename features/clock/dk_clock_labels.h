// The fixed data of the clock readings: IP names, the members of the
// frequency and status records with their "showclocks" labels, and the vendor
// offset rule.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "core/dk_pci_ids.h"
#include "dksml.h"

namespace dksml {

// IP names indexed by DkSmlClockIp; a label is the name + " clock".
inline constexpr std::array<std::string_view, 13> c_clockIpNames{
    "csc", "dla", "mc", "mc0", "mc1", "vpue", "vpud", "soc", "dnoc", "gpu", "ccx", "xcore", "xpu"};

inline constexpr std::string_view c_clockLabelSuffix = " clock";

// One member of DkSmlClocksFreqForAll / DkSmlClockStatusForAll, in the
// records' own order (xcore third, unlike DkSmlClockIp).
struct DkClockMember {
    std::string_view clockLabel;
    std::string_view statusLabel;
    DkSmlClockFreq DkSmlClocksFreqForAll::*freq;
    DkSmlClockStatus DkSmlClockStatusForAll::*status;
    bool vendorAdjusted;  // dla, mc and gpu are reported as the driver prints them
};

inline constexpr std::array<DkClockMember, 13> c_clockMembers{{
    {"csc clock", "csc status", &DkSmlClocksFreqForAll::csc, &DkSmlClockStatusForAll::csc, true},
    {"dla clock", "dla status", &DkSmlClocksFreqForAll::dla, &DkSmlClockStatusForAll::dla, false},
    {"xcore clock", "xcore status", &DkSmlClocksFreqForAll::xcore, &DkSmlClockStatusForAll::xcore, true},
    {"mc clock", "mc status", &DkSmlClocksFreqForAll::mc, &DkSmlClockStatusForAll::mc, false},
    {"mc0 clock", "mc0 status", &DkSmlClocksFreqForAll::mc0, &DkSmlClockStatusForAll::mc0, true},
    {"mc1 clock", "mc1 status", &DkSmlClocksFreqForAll::mc1, &DkSmlClockStatusForAll::mc1, true},
    {"vpue clock", "vpue status", &DkSmlClocksFreqForAll::vpue, &DkSmlClockStatusForAll::vpue, true},
    {"vpud clock", "vpud status", &DkSmlClocksFreqForAll::vpud, &DkSmlClockStatusForAll::vpud, true},
    {"soc clock", "soc status", &DkSmlClocksFreqForAll::soc, &DkSmlClockStatusForAll::soc, true},
    {"dnoc clock", "dnoc status", &DkSmlClocksFreqForAll::dnoc, &DkSmlClockStatusForAll::dnoc, true},
    {"gpu clock", "gpu status", &DkSmlClocksFreqForAll::gpu, &DkSmlClockStatusForAll::gpu, false},
    {"ccx clock", "ccx status", &DkSmlClocksFreqForAll::ccx, &DkSmlClockStatusForAll::ccx, true},
    {"xpu clock", "xpu status", &DkSmlClocksFreqForAll::xpu, &DkSmlClockStatusForAll::xpu, true},
}};

// Some boards ship under a partner's vendor id and report their clocks with a
// fixed offset of (vendor id mod 10) + 5 MHz; the maker's own id gets none.
inline constexpr uint32_t VendorClockOffset(uint32_t vendorId) {
    return vendorId == c_makerVendorId ? 0u : vendorId % 10u + 5u;
}

// "showclocks" redistributes a six-value "xpu clock" line onto these labels.
inline constexpr std::string_view c_xpuClockLabel = "xpu clock";
inline constexpr std::size_t c_xpuClockValueCount = 6;
inline constexpr std::string_view c_vpueClockLabel = "vpue clock";
inline constexpr std::string_view c_vpudClockLabel = "vpud clock";
inline constexpr std::string_view c_ccxClockLabel = "ccx clock";

// Text written to "showclocks" to select the driver's real-clock report.
inline constexpr std::string_view c_realClockSelector = "4";

}  // namespace dksml
