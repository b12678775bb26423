// Every domain's current and maximum level of one die, each file read once:
// the per-domain reads' rules applied to one text.
#include <string>

#include "core/idk_device.h"
#include "features/dpm/dk_dpm.h"
#include "features/dpm/dk_dpm_read.h"

namespace dksml {
namespace {

// A domain without a name is refused before any read, as the per-domain reads do.
template <typename FromText>
void FillEveryDomain(IDkDevice& device, unsigned int dieId, dravik_smi_opcode op, DkSmlReturn* status,
                     uint32_t* level, FromText&& fromText) {
    std::string* text = nullptr;
    const DkSmlReturn fetched = FetchDpmText(device, dieId, op, text);
    for (uint32_t ip = 0; ip < DK_SML_DPM_IP_COUNT; ++ip) {
        level[ip] = 0;
        const std::string_view name = DpmIpName(static_cast<DkSmlDpmIp>(ip));
        if (name.empty()) status[ip] = DK_SML_ERROR_INVALID_INPUT;
        else if (fetched != DK_SML_SUCCESS) status[ip] = fetched;
        else status[ip] = fromText(*text, name, level[ip]);
    }
}

}  // namespace

DkSmlReturn DkDpm::GetDieDpmLevels(IDkDevice* device, unsigned int dieId, DkDpmDieLevels* levels) {
    if (device == nullptr || levels == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (device->IsVf()) return DK_SML_ERROR_NOT_SUPPORTED;
    FillEveryDomain(*device, dieId, DRAVIK_SMI_SHOWPERFLEVEL, levels->currentStatus, levels->current,
                    [](std::string_view text, std::string_view name, uint32_t& level) {
                        return CurrentLevelInText(text, name, level);
                    });
    FillEveryDomain(*device, dieId, DRAVIK_SMI_DPMCOUNT, levels->maxStatus, levels->max,
                    [&](std::string_view text, std::string_view name, uint32_t& level) {
                        return MaxLevelInText(*device, text, name, level);
                    });
    return DK_SML_SUCCESS;
}

}  // namespace dksml
