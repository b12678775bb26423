// Compatibility identity queries: name, UUID, PCI identity, render minor,
// compute capability.
#include <cstdio>
#include <string>

#include "api/dk_api_ex_frame.h"
#include "dksml.h"

using namespace dksml;

extern "C" {

// A length equal to the name's length is accepted: the copy then loses its
// last character to the terminator. Callers rely on this exact test.
DKSML_API DkSmlExReturn dkSmlExDeviceGetName(DkSmlExDevice device, char* name, uint32_t length) {
    if (name == nullptr) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
    return WithHandle(device, [&](DkDieInfo&, IDkDevice* d) {
        const std::string text = d->GetDeviceName();
        if (length < text.size()) return DK_SML_EX_ERROR_INSUFFICIENT_SIZE;
        std::snprintf(name, length, "%s", text.c_str());
        return DK_SML_EX_SUCCESS;
    });
}

DKSML_API DkSmlExReturn dkSmlExDeviceGetUUID(DkSmlExDevice device, char* uuid, uint32_t length) {
    if (uuid == nullptr) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
    return WithHandle(device, [&](DkDieInfo&, IDkDevice* d) {
        if (length == 0) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
        const std::string text = d->GetDeviceUuid();
        if (text.empty()) return DK_SML_EX_ERROR_NOT_SUPPORTED;
        if (length < text.size() + 1) return DK_SML_EX_ERROR_INSUFFICIENT_SIZE;
        std::snprintf(uuid, length, "%s", text.c_str());
        return DK_SML_EX_SUCCESS;
    });
}

// The device object's status is passed on as it stands (0 in practice).
DKSML_API DkSmlExReturn dkSmlExDeviceGetPciInfo(DkSmlExDevice device, DkSmlExPciInfo* pci) {
    if (pci == nullptr) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
    return WithHandle(device, [&](DkDieInfo&, IDkDevice* d) {
        DkPciInfoRecord record;
        const DkSmlReturn result = d->GetPciInfo(&record);
        *pci = DkSmlExPciInfo{};
        std::snprintf(pci->busId, sizeof(pci->busId), "%s", record.bdfId.c_str());
        pci->domain = record.domain;
        pci->bus = record.bus;
        pci->device = record.device;
        pci->function = record.function;
        pci->pciDeviceId = (record.deviceId << 16) | (record.vendorId & 0xFFFFu);
        pci->pciSubSystemId = (record.subsystemDeviceId << 16) | (record.subsystemVendorId & 0xFFFFu);
        return static_cast<DkSmlExReturn>(result);
    });
}

DKSML_API DkSmlExReturn dkSmlExDeviceGetMinorNumber(DkSmlExDevice device, uint32_t* minorNumber) {
    if (minorNumber == nullptr) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
    return WithHandle(device, [&](DkDieInfo&, IDkDevice* d) {
        uint32_t minor = 0;
        if (!DkSystemManager::GetInstance().GetRenderMinorByBdfId(d->GetBdfId(), minor))
            return DK_SML_EX_ERROR_NOT_FOUND;
        *minorNumber = minor;
        return DK_SML_EX_SUCCESS;
    });
}

// Tools written for the compatibility interface gate features on this; every
// die reports the same fixed capability.
DKSML_API DkSmlExReturn dkSmlExDeviceGetComputeCapability(DkSmlExDevice device, int32_t* major, int32_t* minor) {
    if (major == nullptr || minor == nullptr) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
    return WithHandle(device, [&](DkDieInfo&, IDkDevice*) {
        *major = 9;
        *minor = 0;
        return DK_SML_EX_SUCCESS;
    });
}

}  // extern "C"
