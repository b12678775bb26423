#include "features/power/dk_power_tables.h"

#include "core/idk_device.h"

namespace dksml {

const std::array<DkPmbusFragment, 7> c_pmbusUnitMap{{
    {"soc", DK_SML_PMBUS_UNIT_SOC},
    {"core", DK_SML_PMBUS_UNIT_CORE},
    {"hbm ", DK_SML_PMBUS_UNIT_HBM},  // one board generation numbers its first HBM rail, the other does not
    {"hbm1", DK_SML_PMBUS_UNIT_HBM},
    {"pcie ", DK_SML_PMBUS_UNIT_PCIE},
    {"hbm2", DK_SML_PMBUS_UNIT_HBM2},
    {"pcie2", DK_SML_PMBUS_UNIT_PCIE2},
}};

const std::array<DkPciPowerStateName, 3> c_pciPowerStateMap{{
    {"D0", DK_SML_PCI_POWER_STATE_D0},
    {"D3hot", DK_SML_PCI_POWER_STATE_D3HOT},
    {"D3cold", DK_SML_PCI_POWER_STATE_D3COLD},
}};

// Columns in DkSmlDpmIp order:
//  dla xcore mc soc dnoc vpue vpud hbm g2d hbmpower ccx npu dma csc eth
// First matching row wins; the last row serves every other model.
const std::array<DkIpInstanceRow, 4> c_ipInstanceTable{{
    {&IDkDevice::IsDkk6Series, {2, 12, 4, 1, 1, 2, 4, 4, 1, 1, 4, 0, 2, 1, 1}},
    {&IDkDevice::IsDkq9, {2, 4, 2, 1, 1, 2, 4, 2, 1, 1, 0, 1, 2, 1, 0}},
    {&IDkDevice::IsDkk2, {2, 8, 4, 1, 1, 2, 4, 4, 1, 1, 4, 0, 2, 1, 0}},
    {nullptr, {1, 8, 2, 1, 1, 1, 2, 2, 1, 1, 0, 0, 1, 1, 0}},
}};

const DkPmbusFragment* FindPmbusFragment(std::string_view key) {
    for (const DkPmbusFragment& entry : c_pmbusUnitMap) {
        if (key.find(entry.fragment) != std::string_view::npos) return &entry;
    }
    return nullptr;
}

uint32_t IpInstanceCount(const IDkDevice& device, DkSmlDpmIp ip) {
    const auto column = static_cast<uint32_t>(ip);
    if (column >= DK_SML_DPM_IP_COUNT) return 0;
    for (const DkIpInstanceRow& row : c_ipInstanceTable) {
        if (row.isModel == nullptr || (device.*row.isModel)()) return row.instances[column];
    }
    return 0;
}

}  // namespace dksml
