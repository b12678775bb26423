#include "features/dpm/dk_dpm_layout.h"

#include "core/idk_device.h"
#include "driver/dk_text.h"

namespace dksml {

const std::string_view c_dpmIpNameMap[DK_SML_DPM_IP_COUNT] = {
    "dla", "xcore", "mc", "soc", "dnoc", "vpue", "vpud", "hbm", "g2d", "hbmpower", "ccx", "npu", "dma", "csc", "eth",
};

namespace {

// Level counts as the boards' power-play tables define them.
constexpr DkDpmIpLevels c_dkk1Rows[] = {
    {DK_SML_DPM_IP_DLA, 8}, {DK_SML_DPM_IP_XCORE, 8}, {DK_SML_DPM_IP_MC, 4},   {DK_SML_DPM_IP_SOC, 6},
    {DK_SML_DPM_IP_DNOC, 4}, {DK_SML_DPM_IP_VPUE, 5}, {DK_SML_DPM_IP_VPUD, 5},
};
constexpr DkDpmIpLevels c_dkk6Rows[] = {
    {DK_SML_DPM_IP_DLA, 8},  {DK_SML_DPM_IP_XCORE, 10}, {DK_SML_DPM_IP_MC, 4},  {DK_SML_DPM_IP_SOC, 6},
    {DK_SML_DPM_IP_DNOC, 4}, {DK_SML_DPM_IP_VPUE, 5},   {DK_SML_DPM_IP_VPUD, 5}, {DK_SML_DPM_IP_HBM, 3},
    {DK_SML_DPM_IP_CCX, 4},
};
constexpr DkDpmIpLevels c_dkk6uRows[] = {
    {DK_SML_DPM_IP_XCORE, 10}, {DK_SML_DPM_IP_MC, 4},  {DK_SML_DPM_IP_VPUE, 5},
    {DK_SML_DPM_IP_VPUD, 5},   {DK_SML_DPM_IP_HBM, 3}, {DK_SML_DPM_IP_CCX, 4},
};
// The inference line limits only its inference, memory and SoC clocks.
constexpr DkDpmIpLevels c_dkqRows[] = {
    {DK_SML_DPM_IP_DLA, 8}, {DK_SML_DPM_IP_XCORE, 8}, {DK_SML_DPM_IP_MC, 4}, {DK_SML_DPM_IP_SOC, 6},
};

template <std::size_t N>
constexpr DkDpmIpTable TableOf(const DkDpmIpLevels (&rows)[N]) {
    return DkDpmIpTable{rows, N};
}

DkSmlReturn ValueFailure(std::string_view text) {
    return text.find(c_notSupportMarker) != std::string_view::npos ? DK_SML_ERROR_NOT_SUPPORTED
                                                                   : DK_SML_ERROR_SYSFS;
}

template <typename T>
DkSmlReturn ParseValues(std::string_view text, T* values, std::size_t capacity, uint32_t& count) {
    count = 0;
    std::size_t pos = 0;
    while (true) {
        while (pos < text.size() && (text[pos] == ' ' || text[pos] == '\t' || text[pos] == '\r')) ++pos;
        if (pos >= text.size()) return DK_SML_SUCCESS;
        std::size_t end = pos;
        while (end < text.size() && text[end] != ' ' && text[end] != '\t' && text[end] != '\r') ++end;
        const std::string_view token = text.substr(pos, end - pos);
        T value{};
        if (!IsNumber(token) || !ExtractNumber(token, value)) return ValueFailure(text);
        if (count >= capacity) return DK_SML_ERROR_SYSFS;
        values[count++] = value;
        pos = end;
    }
}

}  // namespace

const DkDpmIpTable c_setDkk1DpmIpMap = TableOf(c_dkk1Rows);
const DkDpmIpTable c_setDkk6DpmIpMap = TableOf(c_dkk6Rows);
const DkDpmIpTable c_setDkk6uDpmIpMap = TableOf(c_dkk6uRows);
const DkDpmIpTable c_setDkqDpmIpMap = TableOf(c_dkqRows);

std::string_view DpmIpName(DkSmlDpmIp ip) {
    const auto index = static_cast<uint32_t>(ip);
    return index < DK_SML_DPM_IP_COUNT ? c_dpmIpNameMap[index] : std::string_view{};
}

const DkDpmIpTable& SetDpmTableOf(const IDkDevice& device) {
    if (device.IsDkq9() || device.IsDkk6()) return c_setDkk6DpmIpMap;
    if (device.IsDkk6u()) return c_setDkk6uDpmIpMap;
    return c_setDkk1DpmIpMap;
}

uint32_t LevelCountOf(const DkDpmIpTable& table, DkSmlDpmIp ip) {
    for (std::size_t i = 0; i < table.size; ++i)
        if (table.rows[i].ip == ip) return table.rows[i].levelCount;
    return 0;
}

bool FindLineContaining(std::string_view text, std::string_view name, std::string_view& line) {
    if (name.empty()) return false;
    DkTextLines lines(text);
    std::string_view candidate;
    while (lines.Next(candidate)) {
        if (candidate.find(name) != std::string_view::npos) {
            line = candidate;
            return true;
        }
    }
    return false;
}

bool FindLabelledRow(std::string_view text, std::string_view label, std::string_view& value) {
    if (label.empty()) return false;
    DkTextLines lines(text);
    std::string_view line;
    while (lines.Next(line)) {
        const std::size_t colon = line.find(':');
        if (colon == std::string_view::npos) continue;
        if (TrimView(line.substr(0, colon)) != label) continue;
        value = line.substr(colon + 1);
        return true;
    }
    return false;
}

DkSmlReturn ParseCountAfterColon(std::string_view line, uint32_t& value) {
    std::string_view tag;
    std::string_view text;
    if (!ExtractTagValue(line, tag, text)) return DK_SML_ERROR_SYSFS;
    const std::string_view number = TrimView(text, " \t\r");
    unsigned int parsed = 0;
    if (!IsNumber(number) || !ExtractNumber(number, parsed)) return ValueFailure(text);
    value = parsed;
    return DK_SML_SUCCESS;
}

DkSmlReturn ParseLevelValues(std::string_view text, uint32_t* values, std::size_t capacity, uint32_t& count) {
    return ParseValues(text, values, capacity, count);
}

DkSmlReturn ParseLevelValues(std::string_view text, uint64_t* values, std::size_t capacity, uint32_t& count) {
    return ParseValues(text, values, capacity, count);
}

}  // namespace dksml
