// Engine usage and the AP usage sampling switch.
#include "features/utilization/dk_utilization.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <limits>
#include <string>

#include "core/idk_device.h"
#include "driver/dk_key_value_scan.h"

namespace dksml {
namespace {

struct DkUsageIpName {
    DkSmlUsageIp ip;
    std::string_view fragment;  // searched in the "showuse" keys
};

// The compute cores are not listed here: their usage is in "showxcuse".
constexpr std::array<DkUsageIpName, 4> c_usageIpName{{
    {DK_SML_USAGE_IP_DLA, "dla"},
    {DK_SML_USAGE_IP_VPUE, "vpue"},
    {DK_SML_USAGE_IP_VPUD, "vpud"},
    {DK_SML_USAGE_IP_G2D, "g2d"},
}};

const DkUsageIpName* FindUsageIp(DkSmlUsageIp ip) {
    for (const DkUsageIpName& entry : c_usageIpName) {
        if (entry.ip == ip) return &entry;
    }
    return nullptr;
}

// A number the driver printed that is not one: 3 for its "not support"
// marker, else 4.
DkSmlReturn UnreadableNumber(std::string_view text) {
    return detail::ContainsNotSupport(text) ? DK_SML_ERROR_NOT_SUPPORTED : DK_SML_ERROR_SYSFS;
}

// Mean of the first "showuse" line whose key names the engine.
DkSmlReturn UsageInText(std::string_view text, const DkUsageIpName& entry, int32_t& usage) {
    bool found = false;
    int32_t average = 0;
    const DkSmlReturn result = ScanKeyValueLines(text, [&](std::string_view key, std::string_view samples) {
        if (found || key.find(entry.fragment) == std::string_view::npos) return;
        average = DkUtilization::GetAverageUsage(samples);
        found = true;
    });
    if (result != DK_SML_SUCCESS) return result;
    if (!found) return DK_SML_ERROR_NOT_SUPPORTED;
    usage = average;
    return DK_SML_SUCCESS;
}

}  // namespace

int32_t DkUtilization::GetAverageUsage(std::string_view samples) {
    std::size_t pos = 0;
    int64_t sample = 0;
    int64_t sum = 0;
    int64_t valid = 0;
    bool any = false;
    bool ended = false;
    while (detail::Scan<int64_t>(samples, pos, sample) == detail::ScanStatus::Ok) {
        any = true;
        if (ended) continue;
        if (sample < 0) {
            ended = true;
            continue;
        }
        // Usage is a percentage; clamping keeps the sum of a hostile line
        // far from overflow.
        sum += std::min<int64_t>(sample, std::numeric_limits<int32_t>::max());
        ++valid;
    }
    if (!any) return -1;
    if (valid == 0) return 0;
    return static_cast<int32_t>(sum / valid);
}

DkSmlReturn DkUtilization::GetXcoreUsage(IDkDevice* device, unsigned int dieId, int32_t* usage) {
    std::string& text = ScratchText();
    const DkSmlReturn result = device->FetchDriverData(dieId, DRAVIK_SMI_SHOWXCUSE, text);
    if (result != DK_SML_SUCCESS) return result;
    const std::size_t colon = text.find(':');
    if (colon == std::string::npos) return UnreadableNumber(text);
    const std::string_view value = std::string_view(text).substr(colon + 1);
    unsigned int number = 0;
    if (!stoui_nt(value, number, 16)) return UnreadableNumber(value);
    *usage = static_cast<int32_t>(number);
    return DK_SML_SUCCESS;
}

DkSmlReturn DkUtilization::GetDieUsage(IDkDevice* device, unsigned int dieId, DkSmlUsageIp ip, int32_t* usage) {
    if (device == nullptr || usage == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (ip == DK_SML_USAGE_IP_XCORE) return GetXcoreUsage(device, dieId, usage);
    const DkUsageIpName* entry = FindUsageIp(ip);
    if (entry == nullptr) return DK_SML_ERROR_INVALID_INPUT;

    std::string& text = ScratchText();
    const DkSmlReturn result = device->FetchDriverData(dieId, DRAVIK_SMI_SHOWUSE, text);
    if (result != DK_SML_SUCCESS) return result;
    return UsageInText(text, *entry, *usage);
}

DkSmlReturn DkUtilization::GetDieUsages(IDkDevice* device, unsigned int dieId, DkDieUsage* usage) {
    if (device == nullptr || usage == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    std::string& text = ScratchText();
    const DkSmlReturn fetched = device->FetchDriverData(dieId, DRAVIK_SMI_SHOWUSE, text);
    for (const DkUsageIpName& entry : c_usageIpName) {
        usage->percent[entry.ip] = 0;
        usage->status[entry.ip] = fetched != DK_SML_SUCCESS ? fetched : UsageInText(text, entry, usage->percent[entry.ip]);
    }
    // Last: it reads into the same scratch text.
    usage->percent[DK_SML_USAGE_IP_XCORE] = 0;
    usage->status[DK_SML_USAGE_IP_XCORE] = GetXcoreUsage(device, dieId, &usage->percent[DK_SML_USAGE_IP_XCORE]);
    return DK_SML_SUCCESS;
}

DkSmlReturn DkUtilization::GetDeviceUsage(IDkDevice* device, DkSmlUsageIp ip, int32_t* usage) {
    if (device == nullptr || usage == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    const uint32_t dieCount = device->GetDieCount();
    if (dieCount == 0) return DK_SML_ERROR_FAILURE;
    int64_t sum = 0;
    for (unsigned int die = 0; die < dieCount; ++die) {
        int32_t dieUsage = 0;
        const DkSmlReturn result = GetDieUsage(device, die, ip, &dieUsage);
        if (result != DK_SML_SUCCESS) return result;
        sum += dieUsage;
    }
    *usage = static_cast<int32_t>(sum / static_cast<int64_t>(dieCount));
    return DK_SML_SUCCESS;
}

// Sampling is a host-side switch: a physical function that hosts virtual
// functions does not offer it.
DkSmlReturn DkUtilization::GetDieApUsageToggle(IDkDevice* device, unsigned int dieId, uint32_t* state) {
    if (device == nullptr || state == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (device->IsPf()) return DK_SML_ERROR_NOT_SUPPORTED;
    std::string& text = ScratchText();
    const DkSmlReturn result = device->FetchDriverData(dieId, DRAVIK_SMI_APUSEAGESWITCH, text);
    if (result != DK_SML_SUCCESS) return result;
    DkTextLines lines(text);
    return ReadStringStream<unsigned int>(lines, &ProcessValueByColon<unsigned int>, state);
}

DkSmlReturn DkUtilization::GetApUsageToggle(IDkDevice* device, uint32_t* state) {
    return GetDieApUsageToggle(device, 0, state);
}

DkSmlReturn DkUtilization::SetDieApUsageToggle(IDkDevice* device, unsigned int dieId, bool on) {
    if (device == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (device->IsPf()) return DK_SML_ERROR_NOT_SUPPORTED;
    char text[24];
    std::snprintf(text, sizeof text, "xcore_ap_use %d", static_cast<int>(static_cast<unsigned char>(on)));
    return device->SetDriverData(dieId, DRAVIK_SMI_APUSEAGESWITCH, text);
}

// Every die is written even after a failure; the last failure is reported.
DkSmlReturn DkUtilization::SetApUsageToggle(IDkDevice* device, bool on) {
    if (device == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    DkSmlReturn last = DK_SML_SUCCESS;
    const uint32_t dieCount = device->GetDieCount();
    for (unsigned int die = 0; die < dieCount; ++die) {
        const DkSmlReturn result = SetDieApUsageToggle(device, die, on);
        if (result != DK_SML_SUCCESS) last = result;
    }
    return last;
}

}  // namespace dksml
