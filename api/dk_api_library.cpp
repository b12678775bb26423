// Library lifecycle, operating mode and device counts.
#include "api/dk_api_frame.h"
#include "core/dk_host_root.h"
#include "dksml.h"

using namespace dksml;

namespace {

// Every initialisation re-reads the host root (so a tool or test may point
// DK_SMI_FSROOT elsewhere between calls), recreates every feature service,
// then lets the system manager decide whether discovery runs again.
DkSmlReturn Initialize(uint32_t flags) noexcept {
    try {
        LoadHostRoot();
        DkServiceManager::GetInstance().Initialize();
        return DkSystemManager::GetInstance().Initialize(g_dkDeviceSearchPath, nullptr, flags);
    } catch (DkSmlReturn code) {
        return code;
    } catch (...) {
        return DK_SML_ERROR_FAILURE;
    }
}

}  // namespace

extern "C" {

DKSML_API DkSmlReturn dkSmlInit(void) { return Initialize(0); }

DKSML_API DkSmlReturn dkSmlInitWithFlags(uint32_t flags) { return Initialize(flags); }

// The compatibility family has no "no device" outcome at start-up.
DKSML_API DkSmlExReturn dkSmlExInit(void) {
    (void)dkSmlInit();
    return DK_SML_EX_SUCCESS;
}

DKSML_API DkSmlExReturn dkSmlExShutdown(void) { return DK_SML_EX_SUCCESS; }

DKSML_API DkSmlReturn dkSmlGetOpMode(uint32_t* mode) {
    if (AnyNull(mode)) return DK_SML_ERROR_INVALID_INPUT;
    try {
        return DkSystemManager::GetInstance().GetOpMode(mode);
    } catch (...) {
        return DK_SML_ERROR_FAILURE;
    }
}

DKSML_API DkSmlReturn dkSmlSetOpMode(uint32_t mode) {
    try {
        return DkSystemManager::GetInstance().SetOpMode(mode);
    } catch (...) {
        return DK_SML_ERROR_FAILURE;
    }
}

DKSML_API uint32_t dkSmlGetDeviceCount(void) { return DkSystemManager::GetInstance().GetAvailableDeviceCount(); }

// The device-map size minus the physical count: the virtual functions.
DKSML_API uint32_t dkSmlGetPfDeviceCount(void) { return DkSystemManager::GetInstance().GetPfDeviceCount(); }

}  // extern "C"
