// PCIe exports: link state and settings, slot, and the driver's PCI events.
#include "api/dk_api_service_call.h"
#include "dksml.h"
#include "features/event/dk_event.h"
#include "features/pcie/dk_pcie.h"

using namespace dksml;

namespace {

constexpr auto c_pcie = &DkServiceManager::GetDkPcie;
constexpr auto c_event = &DkServiceManager::GetDkEvent;

}  // namespace

extern "C" {

DKSML_API DkSmlReturn dkSmlGetPcieInfo(uint32_t deviceIndex, DkSmlPcieInfo* info) {
    if (AnyNull(info)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_pcie, [&](DkPcie& s, IDkDevice* d) { return s.GetPcieInfo(d, info); });
}

DKSML_API DkSmlReturn dkSmlGetPcieMaxLinkInfo(uint32_t deviceIndex, DkSmlPcieInfo* info) {
    if (AnyNull(info)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_pcie, [&](DkPcie& s, IDkDevice* d) { return s.GetPcieMaxLinkInfo(d, info); });
}

DKSML_API DkSmlReturn dkSmlGetPcieThroughput(uint32_t deviceIndex, DkSmlPcieThroughput* throughput) {
    if (AnyNull(throughput)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_pcie,
                       [&](DkPcie& s, IDkDevice* d) { return s.GetPcieThroughput(d, throughput); });
}

DKSML_API DkSmlReturn dkSmlSetPciSpeed(uint32_t deviceIndex, DkSmlPciGen generation) {
    return CallService(deviceIndex, c_pcie, [&](DkPcie& s, IDkDevice* d) { return s.SetPciSpeed(d, generation); });
}

DKSML_API DkSmlReturn dkSmlGetPciDelay(uint32_t deviceIndex, uint32_t* delay) {
    if (AnyNull(delay)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_pcie, [&](DkPcie& s, IDkDevice* d) { return s.GetPciDelay(d, delay); });
}

DKSML_API DkSmlReturn dkSmlSetPciDelay(uint32_t deviceIndex, uint32_t delay) {
    return CallService(deviceIndex, c_pcie, [&](DkPcie& s, IDkDevice* d) { return s.SetPciDelay(d, delay); });
}

DKSML_API DkSmlReturn dkSmlGetDeviceSlot(uint32_t deviceIndex, uint32_t* slot) {
    if (AnyNull(slot)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_pcie, [&](DkPcie& s, IDkDevice* d) { return s.GetDeviceSlot(d, slot); });
}

DKSML_API DkSmlReturn dkSmlGetPciMmioState(uint32_t deviceIndex, uint32_t* state) {
    if (AnyNull(state)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_event, [&](DkEvent& s, IDkDevice* d) { return s.GetPciMmioState(d, state); });
}

DKSML_API DkSmlReturn dkSmlGetPciEventInfo(uint32_t deviceIndex, char* info, uint32_t* size) {
    if (AnyNull(info, size)) return DK_SML_ERROR_INVALID_INPUT;
    return CallService(deviceIndex, c_event,
                       [&](DkEvent& s, IDkDevice* d) { return s.GetPciEventInfo(d, info, size); });
}

}  // extern "C"
