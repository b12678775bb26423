// Version texts: firmware and board versions of a device, the version of
// each firmware unit on a die, and the version of the installed compute stack.
#pragma once

#include <cstdint>
#include <string>

#include "dksml.h"

namespace dksml {

class IDkDevice;

class DkVersion {
public:
    virtual ~DkVersion() = default;

    virtual DkSmlReturn GetVersion(IDkDevice* device, DkSmlVersion* version);
    virtual DkSmlReturn GetDieVersion(IDkDevice* device, unsigned int dieId, DkSmlVersion* version);
    virtual DkSmlReturn GetDieUnitVersion(IDkDevice* device, unsigned int dieId, DkSmlVersionUnit unit, char* buffer, uint32_t* size);
    // Reads "showvbios" in the given attribute directory (limited devices).
    virtual DkSmlReturn GetBiosVersion(const std::string& smiPath, char* buffer, uint32_t* size);
    virtual DkSmlReturn GetPptableVersion(IDkDevice* device, char* buffer, uint32_t size);
    virtual DkSmlReturn GetDiePptableVersion(IDkDevice* device, unsigned int dieId, char* buffer, uint32_t size);
    virtual DkSmlReturn GetVornVersion(char* buffer, uint32_t size);
    virtual DkSmlReturn GetDkqVornVersion(char* buffer, uint32_t size);
    virtual DkSmlReturn GetDkkVornVersion(char* buffer, uint32_t size);

    // The power-play table version by the copy rule, the size in and out.
    DkSmlReturn GetDiePptableVersionText(IDkDevice* device, unsigned int dieId, char* buffer, uint32_t* size);
};

}  // namespace dksml
