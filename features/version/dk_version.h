// Version texts: firmware and board versions of a device, the version of
// each firmware unit on a die, and the version of the installed compute stack.
#pragma once

#include <cstdint>
#include <string>

#include "dksml.h"

namespace dksml {

class IDkDevice;
class IDkDriverDataHandler;

// Units DK_SML_VERSION_VBIOS ... DK_SML_VERSION_FW_VR1.
inline constexpr uint32_t c_versionUnitCount = DK_SML_VERSION_FW_VR1 + 1;

// A die's versions: unit[u] and unitStatus[u] are what GetDieUnitVersion
// answers for unit u into DK_SML_VERSION_LENGTH characters; record and
// recordStatus what GetDieVersion answers short of its last step, the
// compute-stack version (GetStackVersion), which stays "unknown".
struct DkDieVersionTexts {
    DkSmlReturn unitStatus[c_versionUnitCount];
    char unit[c_versionUnitCount][DK_SML_VERSION_LENGTH];
    DkSmlReturn recordStatus;
    DkSmlVersion record;
};

class DkVersion {
public:
    virtual ~DkVersion() = default;

    // Every version of the die from one read of each attribute, for callers
    // that want them all (a monitoring scrape).
    DkSmlReturn GetDieVersionTexts(IDkDevice* device, unsigned int dieId, DkDieVersionTexts* texts);
    // Version of the compute stack the device's brand ships (a host-wide
    // answer: the same for every device of a brand).
    DkSmlReturn GetStackVersion(IDkDevice* device, char* buffer, uint32_t size);

    virtual DkSmlReturn GetVersion(IDkDevice* device, DkSmlVersion* version);
    virtual DkSmlReturn GetDieVersion(IDkDevice* device, unsigned int dieId, DkSmlVersion* version);
    virtual DkSmlReturn GetDieUnitVersion(IDkDevice* device, unsigned int dieId, DkSmlVersionUnit unit, char* buffer, uint32_t* size);
    // Reads "showvbios" through a handler of its own (limited devices, which
    // have no device object); DK_SML_ERROR_SYSFS when it cannot be read.
    virtual DkSmlReturn GetBiosVersion(IDkDriverDataHandler& handler, char* buffer, uint32_t* size);
    virtual DkSmlReturn GetPptableVersion(IDkDevice* device, char* buffer, uint32_t size);
    virtual DkSmlReturn GetDiePptableVersion(IDkDevice* device, unsigned int dieId, char* buffer, uint32_t size);
    virtual DkSmlReturn GetVornVersion(char* buffer, uint32_t size);
    virtual DkSmlReturn GetDkqVornVersion(char* buffer, uint32_t size);
    virtual DkSmlReturn GetDkkVornVersion(char* buffer, uint32_t size);

    // The power-play table version by the copy rule, the size in and out.
    DkSmlReturn GetDiePptableVersionText(IDkDevice* device, unsigned int dieId, char* buffer, uint32_t* size);
};

}  // namespace dksml
