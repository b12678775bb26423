// Maintenance exports: EEPROM and fuses, firmware log levels, resets and the
// firmware image. Resets and upgrades also serve limited devices.
#include "api/dk_api_limited.h"
#include "dksml.h"
#include "features/device_reset/dk_device_reset.h"
#include "features/device_update/dk_device_update.h"
#include "features/eeprom/dk_eeprom.h"
#include "features/fuse/dk_fuse.h"
#include "features/log/dk_log.h"

using namespace dksml;

namespace {

constexpr auto c_eeprom = &DkServiceManager::GetDkEeprom;
constexpr auto c_log = &DkServiceManager::GetDkLog;
constexpr auto c_reset = &DkServiceManager::GetDkDeviceReset;
constexpr auto c_update = &DkServiceManager::GetDkDeviceUpdate;

// Warm and forced resets: the device-information record of a device or a
// limited device, and the driver's layout directory.
template <typename Call>
DkSmlReturn ResetByInfo(uint32_t deviceIndex, Call&& call) noexcept {
    return WithManager([&](DkSystemManager& manager) {
        DkSmlDeviceInfo info{};
        DkSmlReturn result = GetDeviceOrLimitedInfo(manager, deviceIndex, info);
        if (result != DK_SML_SUCCESS) return result;
        std::shared_ptr<DkDeviceReset> reset = DkServiceManager::GetInstance().GetDkDeviceReset();
        if (!reset) return DK_SML_ERROR_FAILURE;
        return call(*reset, info, manager.GetLayoutPath());
    });
}

}  // namespace

extern "C" {

DKSML_API DkSmlReturn dkSmlGetEepromInfo(uint32_t deviceIndex, char* info, uint32_t* size) {
    if (AnyNull(info, size)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_eeprom, [&](DkEeprom& s, IDkDevice* d) { return s.GetEepromInfo(d, info, size); });
}

DKSML_API DkSmlReturn dkSmlGetBoardSerial(uint32_t deviceIndex, char* serial, uint32_t* size) {
    if (AnyNull(serial, size)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_eeprom,
                       [&](DkEeprom& s, IDkDevice* d) { return s.GetBoardSerial(d, serial, size); });
}

DKSML_API DkSmlReturn dkSmlGetChipSerial(uint32_t deviceIndex, char* serial, uint32_t* size) {
    if (AnyNull(serial, size)) return DK_SML_ERROR_INVALID_INPUT;
    return WithDeviceOrLimitedMock(deviceIndex, [&](IDkDevice* device) {
        return WithService(DkServiceManager::GetInstance().GetDkFuse(), device,
                           [&](DkFuse& s, IDkDevice* d) { return s.GetChipSerial(d, serial, size); });
    });
}

DKSML_API DkSmlReturn dkSmlSetFwLoglevel(uint32_t deviceIndex, uint32_t level) {
    return CallService(deviceIndex, c_log, [&](DkLog& s, IDkDevice* d) { return s.SetFwLoglevel(d, level); });
}

DKSML_API DkSmlReturn dkSmlGetFwIpLoglevel(uint32_t deviceIndex, uint32_t ip, uint32_t* level) {
    if (AnyNull(level)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_log, [&](DkLog& s, IDkDevice* d) { return s.GetFwIpLoglevel(d, ip, level); });
}

DKSML_API DkSmlReturn dkSmlGetFwLoglevel(uint32_t deviceIndex, uint32_t* level) {
    if (AnyNull(level)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_log, [&](DkLog& s, IDkDevice* d) { return s.GetFwLoglevel(d, level); });
}

DKSML_API DkSmlReturn dkSmlFunctionLevelReset(uint32_t deviceIndex) {
    return CallService(deviceIndex, c_reset, [&](DkDeviceReset& s, IDkDevice* d) { return s.FunctionLevelReset(d); });
}

DKSML_API DkSmlReturn dkSmlFunctionLevelResetVfFromPf(uint32_t deviceIndex, uint32_t vfIndex) {
    return CallService(deviceIndex, c_reset,
                       [&](DkDeviceReset& s, IDkDevice* d) { return s.FunctionLevelResetVfFromPf(d, vfIndex); });
}

DKSML_API DkSmlReturn dkSmlReset(uint32_t deviceIndex) {
    return ResetByInfo(deviceIndex, [](DkDeviceReset& s, const DkSmlDeviceInfo& info, const std::string& layout) {
        return s.Reset(info, layout);
    });
}

DKSML_API DkSmlReturn dkSmlForceReset(uint32_t deviceIndex) {
    return ResetByInfo(deviceIndex, [](DkDeviceReset& s, const DkSmlDeviceInfo& info, const std::string& layout) {
        return s.ForceReset(info, layout);
    });
}

DKSML_API DkSmlReturn dkSmlVbiosUpgrade(uint32_t deviceIndex, const char* imagePath) {
    if (AnyNull(imagePath)) return DK_SML_ERROR_INVALID_INPUT;
    return WithManager([&](DkSystemManager& manager) {
        DkSmlDeviceInfo info{};
        DkSmlReturn result = GetDeviceOrLimitedInfo(manager, deviceIndex, info);
        if (result != DK_SML_SUCCESS) return result;
        uint32_t dieCount = 0;
        std::shared_ptr<IDkDevice> device = manager.GetDeviceById(deviceIndex);
        if (device) {
            dieCount = device->GetDieCount();
        } else {
            result = manager.GetLimitedDeviceDieCount(deviceIndex, &dieCount);
            if (result != DK_SML_SUCCESS) return result;
        }
        std::shared_ptr<DkDeviceUpdate> update = DkServiceManager::GetInstance().GetDkDeviceUpdate();
        if (!update) return DK_SML_ERROR_FAILURE;
        return update->VbiosUpgrade(info, dieCount, imagePath);
    });
}

DKSML_API DkSmlReturn dkSmlDumpVbios(uint32_t deviceIndex, const char* outputPath) {
    if (AnyNull(outputPath)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_update,
                       [&](DkDeviceUpdate& s, IDkDevice* d) { return s.DumpVbios(d, outputPath); });
}

DKSML_API DkSmlReturn dkSmlGetSriovState(uint32_t deviceIndex, uint32_t* state) {
    if (AnyNull(state)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_update, [&](DkDeviceUpdate& s, IDkDevice* d) { return s.GetSriovState(d, state); });
}

}  // extern "C"
