// Version exports: device, die and compute-stack versions.
#include "api/dk_api_service_call.h"
#include "core/dk_host_root.h"
#include "dksml.h"
#include "driver/dk_driver_data_handler.h"
#include "features/version/dk_version.h"
#include "features/version/dk_version_text.h"

using namespace dksml;

namespace {

constexpr auto c_version = &DkServiceManager::GetDkVersion;

template <typename Body>
DkSmlReturn WithVersionService(Body&& body) noexcept {
    return WithManager([&](DkSystemManager&) {
        std::shared_ptr<DkVersion> version = DkServiceManager::GetInstance().GetDkVersion();
        if (!version) return DK_SML_ERROR_FAILURE;
        return body(*version);
    });
}

}  // namespace

extern "C" {

// A limited device has no device object; only its VBIOS version (kind 0) can
// be read, straight from its attribute directory.
DKSML_API DkSmlReturn dkSmlGetDeviceVersion(uint32_t deviceIndex, DkSmlVersionUnit unit, char* version,
                                            uint32_t* size) {
    if (AnyNull(version, size)) return DK_SML_ERROR_INVALID_INPUT;
    return WithManager([&](DkSystemManager& manager) {
        std::shared_ptr<IDkDevice> device = manager.GetDeviceById(deviceIndex);
        if (device) {
            return WithService(DkServiceManager::GetInstance().GetDkVersion(), device.get(),
                               [&](DkVersion& s, IDkDevice* d) { return s.GetDieUnitVersion(d, 0, unit, version, size); });
        }
        if (!manager.IsLimitedDevice(deviceIndex)) return DK_SML_ERROR_DEVICE_NOT_AVAILABLE;
        if (unit != DK_SML_VERSION_VBIOS) return DK_SML_ERROR_INVALID_INPUT;
        DkSmlLimitedDeviceInfo limited{};
        DkSmlReturn result = manager.GetLimitedDeviceInfo(deviceIndex, &limited);
        if (result != DK_SML_SUCCESS) return result;
        // A handler of its own over the limited device's attribute directory.
        DkDriverDataSource source;
        source.smiPath0 = HostPath(g_dkDeviceSearchPath + "/" + limited.bdfId + "/smi/");
        DkLinuxDriverDataHandler handler;
        handler.Attach(std::move(source));
        return WithVersionService([&](DkVersion& s) { return s.GetBiosVersion(handler, version, size); });
    });
}

DKSML_API DkSmlReturn dkSmlGetDeviceDieVersion(uint32_t deviceIndex, uint32_t dieId, DkSmlVersion* version) {
    if (AnyNull(version)) return DK_SML_ERROR_INVALID_INPUT;
    return CallDieService(deviceIndex, dieId, c_version,
                          [&](DkVersion& s, IDkDevice* d) { return s.GetDieVersion(d, dieId, version); });
}

DKSML_API DkSmlReturn dkSmlGetVornVersion(char* version, uint32_t* size) {
    if (AnyNull(version, size)) return DK_SML_ERROR_INVALID_INPUT;
    // Asked into a full-size text first so that a short buffer learns the
    // size it needs.
    return WithVersionService([&](DkVersion& s) {
        char text[DK_SML_VERSION_LENGTH];
        const DkSmlReturn result = s.GetVornVersion(text, sizeof text);
        if (result != DK_SML_SUCCESS) {
            PutText(c_unknown, version, *size);
            return result;
        }
        return CopyVersionValue(text, version, size);
    });
}

DKSML_API DkSmlReturn dkSmlGetPptableVersion(uint32_t deviceIndex, char* version, uint32_t* size) {
    if (AnyNull(version, size)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_version,
                       [&](DkVersion& s, IDkDevice* d) { return s.GetDiePptableVersionText(d, 0, version, size); });
}

}  // extern "C"
