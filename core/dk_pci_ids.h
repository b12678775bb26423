// The maker's PCI identity: vendor ids and the product table (device id of the
// physical function and of its virtual function, and the product name). All
// of these values are the maker's; every other part of the library takes them
// from here.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "dksml.h"

namespace dksml {

// The maker's own PCI vendor id. Devices reporting any other vendor id get the
// vendor offset on their clock readings.
inline constexpr uint32_t c_makerVendorId = 0x1e27;
// The second vendor id the maker's boards ship with (licensed partner boards).
inline constexpr uint32_t c_makerPartnerVendorId = 0x1e28;
// OEM builds accept exactly one alternative vendor/device pair instead.
inline constexpr uint32_t c_oemVendorId = 0x1bd4;
inline constexpr uint32_t c_oemDeviceId = 0x0731;
// The vendor flag: set in OEM builds only (compile with -DDKSML_OEM_BUILD=1).
#if defined(DKSML_OEM_BUILD) && DKSML_OEM_BUILD
inline constexpr bool c_vendorFlag = true;
#else
inline constexpr bool c_vendorFlag = false;
#endif

struct DkProductRow {
    uint32_t pfDeviceId;
    uint32_t vfDeviceId;
    std::string_view name;        // the virtual function's name is name + " VF"
    DkSmlDeviceBrand brand;
};

inline constexpr std::array<DkProductRow, 27> c_productTable{{
    {0x0701, 0x0781, "DKQ7", DK_SML_BRAND_DKQ},
    {0x0702, 0x0782, "DKQ7V", DK_SML_BRAND_DKQ},
    {0x0703, 0x0783, "DKQ7E", DK_SML_BRAND_DKQ},
    {0x0801, 0x0881, "DKQ8", DK_SML_BRAND_DKQ},
    {0x0901, 0x0981, "DKQ9-A", DK_SML_BRAND_DKQ},
    {0x0902, 0x0982, "DKQ9-B", DK_SML_BRAND_DKQ},
    {0x1101, 0x1181, "DKK1", DK_SML_BRAND_DKK},
    {0x1102, 0x1182, "DKK1X", DK_SML_BRAND_DKK},
    {0x1103, 0x1183, "DKK1-P", DK_SML_BRAND_DKK},
    {0x1104, 0x1184, "DKK1-E", DK_SML_BRAND_DKK},
    {0x1201, 0x1281, "DKK2", DK_SML_BRAND_DKK},
    {0x1202, 0x1282, "DKK2-P", DK_SML_BRAND_DKK},
    {0x1203, 0x1283, "DKK2-PL", DK_SML_BRAND_DKK},
    {0x1204, 0x1284, "DKK2-E", DK_SML_BRAND_DKK},
    {0x1301, 0x1381, "DKK3", DK_SML_BRAND_DKK},
    {0x1401, 0x1481, "DKK4", DK_SML_BRAND_DKK},
    {0x1501, 0x1581, "DKK5", DK_SML_BRAND_DKK},
    {0x1601, 0x1681, "DKK6-A", DK_SML_BRAND_DKK_X},
    {0x1602, 0x1682, "DKK6-AL", DK_SML_BRAND_DKK_X},
    {0x1603, 0x1683, "DKK6-PL", DK_SML_BRAND_DKK_X},
    {0x1611, 0x1691, "DKK6U", DK_SML_BRAND_DKK_X},
    {0x2101, 0x2181, "DKZ1V1", DK_SML_BRAND_DKZ},
    {0x2102, 0x2182, "DKZ1V2", DK_SML_BRAND_DKZ},
    {0x2201, 0x2281, "DKZ2V1", DK_SML_BRAND_DKZ},
    {0x2202, 0x2282, "DKZ2V1L", DK_SML_BRAND_DKZ},
    {0x2203, 0x2283, "DKZ2VPL", DK_SML_BRAND_DKZ},
    {0x2301, 0x2381, "DKZ3", DK_SML_BRAND_DKZ},
}};

}  // namespace dksml
