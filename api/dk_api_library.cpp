// Library lifecycle, operating mode and device counts.
#include "api/dk_api_frame.h"
#include "dksml.h"

using namespace dksml;

namespace {

// Safe from any number of threads at once. The services are created by the
// first call only; the system manager then decides whether discovery runs
// again (flag 1 forces it), and a pass that runs reads the host root afresh
// (so a tool or test may point DK_SMI_FSROOT elsewhere between passes).
DkSmlReturn Initialize(uint32_t flags) noexcept {
    try {
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
