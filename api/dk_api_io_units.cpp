// Exports of the device's I/O units: video units, memory and DMA bandwidth,
// Ethernet ports and their optical modules.
#include "api/dk_api_service_call.h"
#include "dksml.h"
#include "features/eth/dk_eth.h"
#include "features/hbm/dk_hbm.h"
#include "features/optical_module/dk_optical_module.h"
#include "features/sdma/dk_sdma.h"
#include "features/vpu/dk_vpu.h"

using namespace dksml;

namespace {

constexpr auto c_vpu = &DkServiceManager::GetDkVpu;
constexpr auto c_optical = &DkServiceManager::GetDkOpticalModule;

}  // namespace

extern "C" {

DKSML_API DkSmlReturn dkSmlGetVpuStatus(uint32_t deviceIndex, uint32_t* count, uint32_t* states) {
    if (AnyNull(count, states)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_vpu, [&](DkVpu& s, IDkDevice* d) { return s.GetVpuStatus(d, count, states); });
}

DKSML_API DkSmlReturn dkSmlGetCodecStatus(uint32_t deviceIndex, uint32_t* count, uint32_t* states) {
    if (AnyNull(count, states)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_vpu, [&](DkVpu& s, IDkDevice* d) { return s.GetCodecStatus(d, count, states); });
}

DKSML_API DkSmlReturn dkSmlGetHbmBandWidth(uint32_t deviceIndex, uint32_t* count, DkSmlBandwidthInfo* channels) {
    if (AnyNull(count, channels)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, &DkServiceManager::GetDkHbm,
                       [&](DkHbm& s, IDkDevice* d) { return s.GetHbmBandWidth(d, count, channels); });
}

DKSML_API DkSmlReturn dkSmlGetDmaBandwidth(uint32_t deviceIndex, uint32_t* count, DkSmlBandwidthInfo* engines) {
    if (AnyNull(count, engines)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, &DkServiceManager::GetDkSdma,
                       [&](DkSdma& s, IDkDevice* d) { return s.GetDmaBandwidth(d, count, engines); });
}

DKSML_API DkSmlReturn dkSmlGetEthThroughput(uint32_t deviceIndex, uint32_t* count, DkSmlEthThroughput* ports) {
    if (AnyNull(count, ports)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, &DkServiceManager::GetDkEth,
                       [&](DkEth& s, IDkDevice* d) { return s.GetEthThroughput(d, count, ports); });
}

DKSML_API DkSmlReturn dkSmlGetOpticalModuleStatus(uint32_t deviceIndex, uint32_t* count, uint32_t* states) {
    if (AnyNull(count, states)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_optical,
                       [&](DkOpticalModule& s, IDkDevice* d) { return s.GetOpticalModuleStatus(d, count, states); });
}

DKSML_API DkSmlReturn dkSmlGetOpticalModuleInfo(uint32_t deviceIndex, uint32_t module, char* info, uint32_t* size) {
    if (AnyNull(info, size)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_optical, [&](DkOpticalModule& s, IDkDevice* d) {
        return s.GetOpticalModuleInfo(d, module, info, size);
    });
}

DKSML_API DkSmlReturn dkSmlGetOpticalModulePower(uint32_t deviceIndex, uint32_t module, uint32_t* count,
                                                 int32_t* powers) {
    if (AnyNull(count, powers)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_optical, [&](DkOpticalModule& s, IDkDevice* d) {
        return s.GetOpticalModulePower(d, module, count, powers);
    });
}

}  // extern "C"
