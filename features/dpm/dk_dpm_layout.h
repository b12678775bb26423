// The fixed data of dynamic power management: domain names as the driver
// prints them, the per-model tables of domains that may be limited, and the
// parsers of the driver's DPM rows. Every choice lives in one table here and
// is documented in include/dksml.h.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "dksml.h"

namespace dksml {

class IDkDevice;

// Domain value -> name used in the driver's files ("" for no domain).
extern const std::string_view c_dpmIpNameMap[DK_SML_DPM_IP_COUNT];

// One row of a per-model table: a domain that may be set and its level count.
struct DkDpmIpLevels {
    DkSmlDpmIp ip;
    uint32_t levelCount;
};

struct DkDpmIpTable {
    const DkDpmIpLevels* rows;
    std::size_t size;
};

extern const DkDpmIpTable c_setDkk1DpmIpMap;
extern const DkDpmIpTable c_setDkk6DpmIpMap;
extern const DkDpmIpTable c_setDkk6uDpmIpMap;
extern const DkDpmIpTable c_setDkqDpmIpMap;  // DK_SML_BRAND_DKQ, current-level writes

// "" for a value outside the enumeration.
std::string_view DpmIpName(DkSmlDpmIp ip);

// The table of the device's model for maximum-level writes (and for the
// current-level writes of brands 2 and 4).
const DkDpmIpTable& SetDpmTableOf(const IDkDevice& device);

// Level count of `ip` in `table`; 0 when the domain is not in it.
uint32_t LevelCountOf(const DkDpmIpTable& table, DkSmlDpmIp ip);

// First line of `text` that contains `name` anywhere ("dpmcount" rule).
bool FindLineContaining(std::string_view text, std::string_view name, std::string_view& line);

// Value part of the row whose label (text before the first ':', trimmed) is
// exactly `label`. false when no row has it.
bool FindLabelledRow(std::string_view text, std::string_view label, std::string_view& value);

// The decimal number after the first ':' of `line`: DK_SML_ERROR_SYSFS without
// a colon or a number, DK_SML_ERROR_NOT_SUPPORTED when the value says
// "not support".
DkSmlReturn ParseCountAfterColon(std::string_view line, uint32_t& value);

// Blank-separated decimal numbers into `values` (at most `capacity`).
// DK_SML_ERROR_SYSFS for a token that is no number or for more than `capacity`
// values, DK_SML_ERROR_NOT_SUPPORTED when the text says "not support". `count` gets the number of values.
DkSmlReturn ParseLevelValues(std::string_view text, uint32_t* values, std::size_t capacity, uint32_t& count);
DkSmlReturn ParseLevelValues(std::string_view text, uint64_t* values, std::size_t capacity, uint32_t& count);

}  // namespace dksml
