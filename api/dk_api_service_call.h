// One-line form of the native frame for the common case: device lookup
// (DK_SML_ERROR_DEVICE_NOT_AVAILABLE), optional die check
// (DK_SML_ERROR_INVALID_DIE_ID), then one operation of one registry service
// whose status is returned unchanged. Pointer checks (DK_SML_ERROR_INVALID_INPUT)
// stay with the caller
// because only the export knows which of its pointers are outputs.
#pragma once

#include "api/dk_api_frame.h"
#include "features/topology/dk_topology.h"

namespace dksml {

// `getter` is a DkServiceManager getter, `call(Service&, IDkDevice*)`.
template <typename Getter, typename Call>
inline DkSmlReturn CallService(uint32_t deviceIndex, Getter getter, Call&& call) noexcept {
    return WithDevice(deviceIndex, [&](IDkDevice* device) {
        return WithService((DkServiceManager::GetInstance().*getter)(), device, call);
    });
}

template <typename Getter, typename Call>
inline DkSmlReturn CallDieService(uint32_t deviceIndex, uint32_t dieId, Getter getter, Call&& call) noexcept {
    return WithDeviceDie(deviceIndex, dieId, [&](IDkDevice* device) {
        return WithService((DkServiceManager::GetInstance().*getter)(), device, call);
    });
}

// Runs `body(DkSystemManager&)` for exports that answer from the manager's
// own tables, with one discovery state held for the whole call; any escaping
// exception becomes 1.
template <typename Body>
inline DkSmlReturn WithManager(Body&& body) noexcept {
    try {
        DkSystemManager::Hold hold;
        return body(DkSystemManager::GetInstance());
    } catch (DkSmlReturn code) {
        return code;
    } catch (...) {
        return DK_SML_ERROR_FAILURE;
    }
}

// Topology answers exist only after a successful discovery built the
// topology object; before that every index is unknown
// (DK_SML_ERROR_DEVICE_NOT_AVAILABLE).
template <typename Body>
inline DkSmlReturn WithTopology(Body&& body) noexcept {
    return WithManager([&](DkSystemManager& manager) {
        std::shared_ptr<DkTopology> topology = manager.GetTopology();
        if (!topology) return DK_SML_ERROR_DEVICE_NOT_AVAILABLE;
        return body(*topology);
    });
}

}  // namespace dksml
