// The DPM sampling interval ("dpminterval" in the die's directory): one
// "name: interval" line per domain that has one.
#include <string>

#include "core/idk_device.h"
#include "driver/dk_text.h"
#include "features/dpm/dk_dpm.h"
#include "features/dpm/dk_dpm_layout.h"

namespace dksml {
namespace {

// The one domain whose interval each brand lets the host set.
struct DkIntervalDomain {
    DkSmlDeviceBrand brand;
    DkSmlDpmIp ip;
};

constexpr DkIntervalDomain c_intervalDomains[] = {
    {DK_SML_BRAND_DKQ, DK_SML_DPM_IP_DLA},
    {DK_SML_BRAND_DKK, DK_SML_DPM_IP_XCORE},
    {DK_SML_BRAND_DKK_X, DK_SML_DPM_IP_XCORE},
};

const DkIntervalDomain* IntervalDomainOf(DkSmlDeviceBrand brand) {
    for (const DkIntervalDomain& row : c_intervalDomains)
        if (row.brand == brand) return &row;
    return nullptr;
}

}  // namespace

DkSmlReturn DkDpm::GetDpmInterval(IDkDevice* device, DkSmlDpmInterval* interval) {
    return GetDieDpmInterval(device, 0, interval);
}

DkSmlReturn DkDpm::GetDieDpmInterval(IDkDevice* device, unsigned int dieId, DkSmlDpmInterval* interval) {
    if (device == nullptr || interval == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    thread_local std::string text;
    // Absent or unreadable alike: the interval is not there to be read.
    if (device->FetchDriverData(dieId, DRAVIK_SMI_DPMINTERVAL, text) != DK_SML_SUCCESS) return DK_SML_ERROR_SYSFS;
    DkSmlDpmInterval all{};
    bool any = false;
    for (uint32_t ip = 0; ip < DK_SML_DPM_IP_COUNT; ++ip) {
        std::string_view value;
        if (!FindLabelledRow(text, c_dpmIpNameMap[ip], value)) continue;
        const std::string_view number = TrimView(value, " \t\r");
        unsigned int parsed = 0;
        if (!IsNumber(number) || !ExtractNumber(number, parsed) || parsed > 0xFFFF) {
            return value.find(c_notSupportMarker) != std::string_view::npos ? DK_SML_ERROR_NOT_SUPPORTED
                                                                            : DK_SML_ERROR_SYSFS;
        }
        all.interval[ip] = static_cast<uint16_t>(parsed);
        any = true;
    }
    if (!any) return DK_SML_ERROR_SYSFS;
    *interval = all;
    return DK_SML_SUCCESS;
}

DkSmlReturn DkDpm::SetDpmInterval(IDkDevice* device, DkSmlDpmIp ip, uint16_t interval) {
    return SetDieDpmInterval(device, 0, ip, interval);
}

DkSmlReturn DkDpm::SetDieDpmInterval(IDkDevice* device, unsigned int dieId, DkSmlDpmIp ip, uint16_t interval) {
    if (device == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    const DkIntervalDomain* allowed = IntervalDomainOf(device->GetDeviceBrand());
    if (allowed == nullptr || device->IsVf()) return DK_SML_ERROR_NOT_SUPPORTED;
    if (ip != allowed->ip) return DK_SML_ERROR_INVALID_INPUT;
    std::string line(DpmIpName(ip));
    line += ' ';
    line += std::to_string(interval);
    // The handler answers DK_SML_ERROR_NOT_SUPPORTED when the directory is
    // absent; callers have always seen DK_SML_ERROR_SYSFS for a file that
    // cannot be opened.
    const DkSmlReturn result = device->SetDriverData(dieId, DRAVIK_SMI_DPMINTERVAL, line);
    return result == DK_SML_ERROR_NOT_SUPPORTED ? DK_SML_ERROR_SYSFS : result;
}

}  // namespace dksml
