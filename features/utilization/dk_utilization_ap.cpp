// The compute cores' per-AP usage table ("showxcuse"), sized by "deviceinfo".
#include <string>

#include "core/idk_device.h"
#include "driver/dk_key_value_scan.h"
#include "features/utilization/dk_utilization.h"

namespace dksml {
namespace {

constexpr std::string_view c_dpcCountKey = "dpc_count";
constexpr std::string_view c_apPerDpcKey = "ap_per_dpc";
// The driver's marker for a fused-off AP (and, on every AP, a fused-off DPC).
constexpr std::string_view c_fusedOffToken = "ff";

// Whitespace-separated tokens of a view, one at a time.
bool NextToken(std::string_view& rest, std::string_view& token) {
    const std::size_t begin = rest.find_first_not_of(" \t\r\n\v\f");
    if (begin == std::string_view::npos) return false;
    rest.remove_prefix(begin);
    const std::size_t end = std::min(rest.find_first_of(" \t\r\n\v\f"), rest.size());
    token = rest.substr(0, end);
    rest.remove_prefix(end);
    return true;
}

// The count after the key's own length (the driver prints no colon).
bool ReadCount(std::string_view line, std::size_t keyLength, uint32_t& count, DkSmlReturn& error) {
    int value = 0;
    const std::string_view rest = line.substr(keyLength);
    if (!stoi_nt(rest, value, 10)) {
        error = detail::ContainsNotSupport(rest) ? DK_SML_ERROR_NOT_SUPPORTED : DK_SML_ERROR_SYSFS;
        return false;
    }
    if (value < 0) {
        error = DK_SML_ERROR_SYSFS;
        return false;
    }
    count = static_cast<uint32_t>(value);
    return true;
}

}  // namespace

bool DkUtilization::IsHarvestDpc(std::string_view apTokens) {
    std::string_view token;
    while (NextToken(apTokens, token)) {
        if (token != c_fusedOffToken) return false;
    }
    return true;
}

DkSmlReturn DkUtilization::GetDpcAndApPerDpcNum(IDkDevice* device, unsigned int dieId, uint32_t* dpcCount,
                                                uint32_t* apPerDpc) {
    std::string& text = ScratchText();
    DkSmlReturn result = device->FetchDriverData(dieId, DRAVIK_SMI_DEVICEINFO, text);
    if (result != DK_SML_SUCCESS) return result;
    bool haveDpc = false;
    bool haveAp = false;
    uint32_t dpc = 0;
    uint32_t ap = 0;
    DkTextLines lines(text);
    std::string_view line;
    while (lines.Next(line)) {
        if (line.find(c_dpcCountKey) != std::string_view::npos) {
            if (!ReadCount(line, c_dpcCountKey.size(), dpc, result)) return result;
            haveDpc = true;
        } else if (line.find(c_apPerDpcKey) != std::string_view::npos) {
            if (!ReadCount(line, c_apPerDpcKey.size(), ap, result)) return result;
            haveAp = true;
        }
    }
    // Without both counts the table cannot be sized: nothing is reported.
    if (!haveDpc || !haveAp) return DK_SML_ERROR_SYSFS;
    *dpcCount = dpc;
    *apPerDpc = ap;
    return DK_SML_SUCCESS;
}

DkSmlReturn DkUtilization::GetXcoreApUsageInfo(IDkDevice* device, uint32_t* usage, uint32_t* dpcCount,
                                               uint32_t* apCount) {
    return GetDieXcoreApUsageInfo(device, 0, usage, dpcCount, apCount);
}

// The caller's array holds dpcCount x apCount values (capacities on entry).
// Extra DPC lines past the count in "deviceinfo" are not read, so at most
// that many values are stored.
DkSmlReturn DkUtilization::GetDieXcoreApUsageInfo(IDkDevice* device, unsigned int dieId, uint32_t* usage,
                                                  uint32_t* dpcCount, uint32_t* apCount) {
    if (device == nullptr || usage == nullptr || dpcCount == nullptr || apCount == nullptr) {
        return DK_SML_ERROR_INVALID_INPUT;
    }
    uint32_t dpcs = 0;
    uint32_t apsPerDpc = 0;
    DkSmlReturn result = GetDpcAndApPerDpcNum(device, dieId, &dpcs, &apsPerDpc);
    if (result != DK_SML_SUCCESS) return result;
    if (*dpcCount < dpcs || *apCount < apsPerDpc) {
        *dpcCount = dpcs;
        *apCount = apsPerDpc;
        return DK_SML_ERROR_INSUFFICIENT_SIZE;
    }

    std::string& text = ScratchText();
    result = device->FetchDriverData(dieId, DRAVIK_SMI_SHOWXCUSE, text);
    if (result != DK_SML_SUCCESS) return result;
    DkTextLines lines(text);
    std::string_view line;
    lines.Next(line);  // header: the die's overall usage
    uint32_t dpcLines = 0;
    uint32_t stored = 0;
    while (dpcLines < dpcs && lines.Next(line)) {
        std::string_view aps = ExtractValueStrByColon(line);
        if (IsHarvestDpc(aps)) continue;
        ++dpcLines;
        std::string_view token;
        for (uint32_t ap = 0; ap < apsPerDpc && NextToken(aps, token); ++ap) {
            if (token == c_fusedOffToken) continue;
            unsigned long value = 0;
            if (!stoul_nt(token, value, 16) || value > UINT32_MAX) {
                return detail::ContainsNotSupport(token) ? DK_SML_ERROR_NOT_SUPPORTED : DK_SML_ERROR_SYSFS;
            }
            usage[stored++] = static_cast<uint32_t>(value);
        }
    }
    if (stored == 0) return DK_SML_ERROR_SYSFS;
    *dpcCount = dpcLines;
    *apCount = stored;
    return DK_SML_SUCCESS;
}

}  // namespace dksml
