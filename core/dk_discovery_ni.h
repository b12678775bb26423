// Network interfaces that sit next to the GPUs and can move GPU memory
// directly (RoCE or InfiniBand). Topology reports them with the GPUs.
//
// Matching rules:
//   - the vendor to look for comes from "DK_SMI_NIC_VENDOR" (base 0, so
//     "0x15b3" and "5555" both work); unset, empty or 0 targets no interface;
//   - a PCI function is a target interface when its "vendor" equals that id
//     exactly and RoCE or InfiniBand is enabled on it;
//   - RoCE is enabled when the function's "roce_enable" file reads the
//     number 1;
//   - InfiniBand is enabled when the function's "infiniband" directory holds
//     at least one registered port device (any entry besides "." and "..").
#pragma once

#include <cstdint>

#include "core/dk_pci_entry.h"

namespace dksml {

uint32_t GetNicEnvVendorId();
// `vendorId` is the function's "vendor" as the scan read it (0 when unreadable).
bool CheckIsTargetNi(const DkPciEntry& entry, uint32_t vendorId, uint32_t nicVendorId);
bool CheckIsRoceEnabled(const DkPciEntry& entry);
bool CheckIsInfinibandEnabled(const DkPciEntry& entry);

}  // namespace dksml
