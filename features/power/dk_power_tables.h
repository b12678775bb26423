// Fixed data of the power service: PMBus key fragments, PCI power-state
// names, and the per-model number of instances of every DPM IP together with
// where its state mask sits in "ippowerstate".
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "dksml.h"

namespace dksml {

class IDkDevice;

struct DkPmbusFragment {
    std::string_view fragment;  // "hbm " and "pcie " keep their blank: not "hbm1"/"pcie2"
    DkSmlPmbusUnit unit;
};
extern const std::array<DkPmbusFragment, 7> c_pmbusUnitMap;

struct DkPciPowerStateName {
    std::string_view name;
    DkSmlPciPowerState state;
};
extern const std::array<DkPciPowerStateName, 3> c_pciPowerStateMap;

// "ippowerstate" holds one line per DPM IP in DkSmlDpmIp order ("xcore: 4095"):
// the IP's line is line number `ip` (from 0), and its value after the colon is
// a decimal mask whose bit i is the power state of instance i. An IP with no
// instances on a model answers 3.
struct DkIpInstanceRow {
    bool (IDkDevice::*isModel)() const;  // nullptr: every other model
    std::array<uint8_t, DK_SML_DPM_IP_COUNT> instances;
};
extern const std::array<DkIpInstanceRow, 4> c_ipInstanceTable;

// The unit of the first fragment `key` contains, or nullptr.
const DkPmbusFragment* FindPmbusFragment(std::string_view key);
// Instances of `ip` on `device`'s model (0 for an IP it does not have).
uint32_t IpInstanceCount(const IDkDevice& device, DkSmlDpmIp ip);

}  // namespace dksml
