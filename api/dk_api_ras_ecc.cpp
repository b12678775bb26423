// RAS and ECC exports.
#include "api/dk_api_service_call.h"
#include "dksml.h"
#include "features/ecc/dk_ecc.h"
#include "features/ras/dk_ras.h"

using namespace dksml;

namespace {

constexpr auto c_ras = &DkServiceManager::GetDkRas;
constexpr auto c_ecc = &DkServiceManager::GetDkEcc;

}  // namespace

extern "C" {

DKSML_API DkSmlReturn dkSmlGetRasErrorData(uint32_t deviceIndex, DkSmlRasErrorData* data) {
    if (AnyNull(data)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_ras, [&](DkRas& s, IDkDevice* d) { return s.GetRasErrorData(d, data); });
}

DKSML_API DkSmlReturn dkSmlGetRasErrorData_v2(uint32_t deviceIndex, uint32_t dieId, DkSmlRasErrorData_v2* data) {
    if (AnyNull(data)) return DK_SML_ERROR_INVALID_INPUT;
    return CallDieService(deviceIndex, dieId, c_ras,
                          [&](DkRas& s, IDkDevice* d) { return s.GetDieRasErrorData(d, dieId, data); });
}

DKSML_API DkSmlReturn dkSmlGetRasStatusData(uint32_t deviceIndex, uint32_t* count, uint32_t* status) {
    if (AnyNull(count, status)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_ras, [&](DkRas& s, IDkDevice* d) { return s.GetRasStatusData(d, count, status); });
}

DKSML_API DkSmlReturn dkSmlGetEccState(uint32_t deviceIndex, uint32_t* state) {
    if (AnyNull(state)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_ecc, [&](DkEcc& s, IDkDevice* d) { return s.GetEccState(d, state); });
}

DKSML_API DkSmlReturn dkSmlSetEccState(uint32_t deviceIndex, uint32_t state) {
    return CallService(deviceIndex, c_ecc, [&](DkEcc& s, IDkDevice* d) { return s.SetEccState(d, state); });
}

DKSML_API DkSmlReturn dkSmlGetTotalEccErrors(uint32_t deviceIndex, DkSmlEccErrorCount* errors) {
    if (AnyNull(errors)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_ecc, [&](DkEcc& s, IDkDevice* d) { return s.GetTotalEccErrors(d, errors); });
}

}  // extern "C"
