// Reads shared by the DPM operations: one driver request into a reused
// per-thread buffer, then rows picked out of it by domain.
#pragma once

#include <string>

#include "core/idk_device.h"
#include "features/dpm/dk_dpm_layout.h"

namespace dksml {

// The text of one request of a die; the buffer is reused by the thread.
inline DkSmlReturn FetchDpmText(IDkDevice& device, unsigned int dieId, dravik_smi_opcode op, std::string*& text) {
    thread_local std::string scratch;
    text = &scratch;
    return device.FetchDriverData(dieId, op, scratch);
}

// One domain's level from the text of a die's file, as the per-domain reads
// answer it (dk_dpm.cpp): the level in force ("showperflevel") and the
// highest level allowed ("dpmcount").
DkSmlReturn CurrentLevelInText(std::string_view text, std::string_view name, uint32_t& level);
DkSmlReturn MaxLevelInText(const IDkDevice& device, std::string_view text, std::string_view name, uint32_t& level);

// Every level value of one domain from a "name: v0 v1 ..." row.
// 9 for an unknown domain, 3 when the driver lists no row for it.
inline DkSmlReturn ReadDomainRow(IDkDevice& device, unsigned int dieId, dravik_smi_opcode op, std::string_view label,
                                 DkSmlDpmPerfLevel& levels) {
    levels = DkSmlDpmPerfLevel{};
    if (label.empty()) return DK_SML_ERROR_INVALID_INPUT;
    std::string* text = nullptr;
    const DkSmlReturn result = FetchDpmText(device, dieId, op, text);
    if (result != DK_SML_SUCCESS) return result;
    std::string_view value;
    if (!FindLabelledRow(*text, label, value)) return DK_SML_ERROR_NOT_SUPPORTED;
    return ParseLevelValues(value, levels.values, DK_SML_DPM_MAX_LEVELS, levels.count);
}

// The rows of every domain into `perDomain[ip]`; domains without a row keep
// count 0. A malformed row fails the whole read.
inline DkSmlReturn ReadAllDomainRows(IDkDevice& device, unsigned int dieId, dravik_smi_opcode op,
                                     std::string_view suffix, DkSmlDpmPerfLevel* perDomain) {
    std::string* text = nullptr;
    const DkSmlReturn result = FetchDpmText(device, dieId, op, text);
    if (result != DK_SML_SUCCESS) return result;
    for (uint32_t ip = 0; ip < DK_SML_DPM_IP_COUNT; ++ip) {
        perDomain[ip] = DkSmlDpmPerfLevel{};
        const std::string_view name = c_dpmIpNameMap[ip];
        char label[48];
        if (name.size() + suffix.size() >= sizeof label) return DK_SML_ERROR_FAILURE;
        name.copy(label, name.size());
        suffix.copy(label + name.size(), suffix.size());
        std::string_view value;
        if (!FindLabelledRow(*text, std::string_view(label, name.size() + suffix.size()), value)) continue;
        const DkSmlReturn parsed = ParseLevelValues(value, perDomain[ip].values, DK_SML_DPM_MAX_LEVELS,
                                                    perDomain[ip].count);
        if (parsed != DK_SML_SUCCESS) return parsed;
    }
    return DK_SML_SUCCESS;
}

}  // namespace dksml
