// Device, die and firmware-unit versions read from the driver.
#include "features/version/dk_version.h"

#include <memory>
#include <string>
#include <utility>

#include "core/idk_device.h"
#include "driver/dk_driver_data_handler.h"
#include "driver/dk_read_session.h"
#include "driver/dk_text.h"
#include "features/version/dk_version_text.h"

namespace dksml {
namespace {

// The text of a request of a die into the reused per-thread buffer.
DkSmlReturn FetchVersionText(IDkDevice& device, unsigned int dieId, dravik_smi_opcode op, std::string*& text) {
    thread_local std::string scratch;
    text = &scratch;
    return device.FetchDriverData(dieId, op, scratch);
}

// The copy rule on one request.
DkSmlReturn GetVersionInfo(IDkDevice& device, unsigned int dieId, dravik_smi_opcode op, char* buffer,
                           uint32_t* size) {
    PutText(c_unknown, buffer, *size);
    std::string* text = nullptr;
    const DkSmlReturn result = FetchVersionText(device, dieId, op, text);
    if (result != DK_SML_SUCCESS) return result;
    return CopyVersionValue(VersionValue(*text), buffer, size);
}

// The compute stack each brand ships.
enum class DkStack { Dkq, Dkk, None };

DkStack StackOfBrand(DkSmlDeviceBrand brand) {
    switch (brand) {
        case DK_SML_BRAND_DKQ: return DkStack::Dkq;
        case DK_SML_BRAND_DKK:
        case DK_SML_BRAND_DKK_X: return DkStack::Dkk;
        default: return DkStack::None;
    }
}

DkSmlReturn LoadStackVersion(DkVersion& version, DkStack stack, char* buffer, uint32_t size) {
    return stack == DkStack::Dkq ? version.GetDkqVornVersion(buffer, size) : version.GetDkkVornVersion(buffer, size);
}

}  // namespace

DkSmlReturn DkVersion::GetVersion(IDkDevice* device, DkSmlVersion* version) {
    return GetDieVersion(device, 0, version);
}

DkSmlReturn DkVersion::GetDieVersion(IDkDevice* device, unsigned int dieId, DkSmlVersion* version) {
    if (device == nullptr || version == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    PutText(c_unknown, version->vbiosVersion, DK_SML_VERSION_LENGTH);
    PutText(c_unknown, version->driverVersion, DK_SML_VERSION_LENGTH);
    PutText(c_unknown, version->vornVersion, DK_SML_VERSION_LENGTH);
    InitFirmwareRecord(version->fwVersion);

    std::string* text = nullptr;
    DkSmlReturn result = FetchVersionText(*device, dieId, DRAVIK_SMI_SHOWFWINFO, text);
    if (result != DK_SML_SUCCESS) return result;
    result = FillFirmwareRecord(*text, version->fwVersion);
    if (result != DK_SML_SUCCESS) return result;

    uint32_t size = DK_SML_VERSION_LENGTH;
    result = GetVersionInfo(*device, dieId, DRAVIK_SMI_SHOWVBIOS, version->vbiosVersion, &size);
    if (result != DK_SML_SUCCESS) return result;
    size = DK_SML_VERSION_LENGTH;
    result = GetVersionInfo(*device, dieId, DRAVIK_SMI_SHOWDRIVERVERSION, version->driverVersion, &size);
    if (result != DK_SML_SUCCESS) return result;

    return GetStackVersion(device, version->vornVersion, DK_SML_VERSION_LENGTH);
}

DkSmlReturn DkVersion::GetStackVersion(IDkDevice* device, char* buffer, uint32_t size) {
    if (device == nullptr || buffer == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    const DkStack stack = StackOfBrand(device->GetDeviceBrand());
    if (stack == DkStack::None) return DK_SML_ERROR_NOT_SUPPORTED;
    DkReadSession* session = DkReadSession::Current();
    if (session == nullptr) return LoadStackVersion(*this, stack, buffer, size);

    // Every device of a brand asks the same libraries, so within one snapshot
    // they are loaded once per stack: the answer is kept as read into a
    // full-size buffer, and the caller's size applied to it afterwards.
    static const std::shared_ptr<const void> stackRecords = std::make_shared<int>(0);
    std::string text;
    const DkSmlReturn status =
        session->Fetch(stackRecords, 0, static_cast<int>(stack), text, [&](std::string& out) {
            char full[DK_SML_VERSION_LENGTH] = {};
            const DkSmlReturn loaded = LoadStackVersion(*this, stack, full, sizeof full);
            if (loaded == DK_SML_SUCCESS) out = full;
            return loaded;
        });
    if (status != DK_SML_SUCCESS) {
        PutText(c_unknown, buffer, size);
        return status;
    }
    return AnswerWholeText(text, buffer, size);
}

DkSmlReturn DkVersion::GetDieVersionTexts(IDkDevice* device, unsigned int dieId, DkDieVersionTexts* texts) {
    if (device == nullptr || texts == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    DkSmlVersion& record = texts->record;
    PutText(c_unknown, record.vbiosVersion, DK_SML_VERSION_LENGTH);
    PutText(c_unknown, record.driverVersion, DK_SML_VERSION_LENGTH);
    PutText(c_unknown, record.vornVersion, DK_SML_VERSION_LENGTH);
    InitFirmwareRecord(record.fwVersion);

    // "showfwinfo" first and done with before the other reads reuse the text.
    std::string* text = nullptr;
    const DkSmlReturn fetched = FetchVersionText(*device, dieId, DRAVIK_SMI_SHOWFWINFO, text);
    for (uint32_t unit = DK_SML_VERSION_FW_SMP0; unit < c_versionUnitCount; ++unit) {
        char* buffer = texts->unit[unit];
        uint32_t size = DK_SML_VERSION_LENGTH;
        PutText(c_unknown, buffer, size);
        const std::string_view key = FwUnitKey(static_cast<DkSmlVersionUnit>(unit));
        std::string_view value;
        DkSmlReturn& status = texts->unitStatus[unit];
        if (key.empty()) status = DK_SML_ERROR_INVALID_INPUT;
        else if (fetched != DK_SML_SUCCESS) status = fetched;
        else if ((status = FindFirmwareValue(*text, key, value)) == DK_SML_SUCCESS)
            status = CopyVersionValue(value, buffer, &size);
    }
    texts->recordStatus = fetched == DK_SML_SUCCESS ? FillFirmwareRecord(*text, record.fwVersion) : fetched;

    for (const auto& [unit, op] : {std::pair{DK_SML_VERSION_VBIOS, DRAVIK_SMI_SHOWVBIOS},
                                   std::pair{DK_SML_VERSION_DRIVER, DRAVIK_SMI_SHOWDRIVERVERSION}}) {
        uint32_t size = DK_SML_VERSION_LENGTH;
        texts->unitStatus[unit] = GetVersionInfo(*device, dieId, op, texts->unit[unit], &size);
    }
    // The record reads VBIOS, then driver, after the firmware, stopping at the first failure.
    if (texts->recordStatus == DK_SML_SUCCESS) {
        PutText(texts->unit[DK_SML_VERSION_VBIOS], record.vbiosVersion, DK_SML_VERSION_LENGTH);
        texts->recordStatus = texts->unitStatus[DK_SML_VERSION_VBIOS];
    }
    if (texts->recordStatus == DK_SML_SUCCESS) {
        PutText(texts->unit[DK_SML_VERSION_DRIVER], record.driverVersion, DK_SML_VERSION_LENGTH);
        texts->recordStatus = texts->unitStatus[DK_SML_VERSION_DRIVER];
    }
    return DK_SML_SUCCESS;
}

DkSmlReturn DkVersion::GetDieUnitVersion(IDkDevice* device, unsigned int dieId, DkSmlVersionUnit unit, char* buffer,
                                         uint32_t* size) {
    if (device == nullptr || buffer == nullptr || size == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (unit == DK_SML_VERSION_VBIOS) return GetVersionInfo(*device, dieId, DRAVIK_SMI_SHOWVBIOS, buffer, size);
    if (unit == DK_SML_VERSION_DRIVER)
        return GetVersionInfo(*device, dieId, DRAVIK_SMI_SHOWDRIVERVERSION, buffer, size);
    PutText(c_unknown, buffer, *size);
    const std::string_view key = FwUnitKey(unit);
    if (key.empty()) return DK_SML_ERROR_INVALID_INPUT;
    std::string* text = nullptr;
    DkSmlReturn result = FetchVersionText(*device, dieId, DRAVIK_SMI_SHOWFWINFO, text);
    if (result != DK_SML_SUCCESS) return result;
    std::string_view value;
    result = FindFirmwareValue(*text, key, value);
    if (result != DK_SML_SUCCESS) return result;
    return CopyVersionValue(value, buffer, size);
}

DkSmlReturn DkVersion::GetBiosVersion(IDkDriverDataHandler& handler, char* buffer, uint32_t* size) {
    if (buffer == nullptr || size == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    PutText(c_unknown, buffer, *size);
    std::string text;
    // Absent or unreadable alike: the limited device's file could not be read.
    if (handler.FetchData(0, DRAVIK_SMI_SHOWVBIOS, text) != DK_SML_SUCCESS) return DK_SML_ERROR_SYSFS;
    return CopyVersionValue(VersionValue(text), buffer, size);
}

DkSmlReturn DkVersion::GetPptableVersion(IDkDevice* device, char* buffer, uint32_t size) {
    return GetDiePptableVersion(device, 0, buffer, size);
}

DkSmlReturn DkVersion::GetDiePptableVersion(IDkDevice* device, unsigned int dieId, char* buffer, uint32_t size) {
    return GetDiePptableVersionText(device, dieId, buffer, &size);
}

DkSmlReturn DkVersion::GetDiePptableVersionText(IDkDevice* device, unsigned int dieId, char* buffer,
                                                uint32_t* size) {
    if (device == nullptr || buffer == nullptr || size == nullptr) return DK_SML_ERROR_INVALID_INPUT;
    if (device->IsVf()) {
        PutText(c_unknown, buffer, *size);
        return DK_SML_ERROR_NOT_SUPPORTED;
    }
    return GetVersionInfo(*device, dieId, DRAVIK_SMI_SHOWPPTABLEVERSION, buffer, size);
}

}  // namespace dksml
