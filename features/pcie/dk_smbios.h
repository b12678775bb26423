// The firmware's SMBIOS structure table ("/sys/firmware/dmi/tables/DMI") as
// raw bytes: a run of structures, each a formatted area (type, length,
// handle, fields) followed by a string set that ends in two zero bytes.
#pragma once

#include <cstdint>
#include <string_view>

#include "dksml.h"

namespace dksml {

// Walks the table for a system-slot structure (type 9) whose bus and
// device/function bytes (offsets 15 and 16, function bits cleared) name
// `address` = bus << 8 | device << 3. DK_SML_SUCCESS and the slot ID (offset 9,
// 16 bits, little-endian) on a match; DK_SML_ERROR_NOT_SUPPORTED at the end of
// the table without one; DK_SML_ERROR_SYSFS when a
// structure cannot be skipped (length below 4, a string set or a formatted
// area running past the end).
DkSmlReturn FindDmiSlot(std::string_view table, uint32_t address, uint32_t* slot);

}  // namespace dksml
