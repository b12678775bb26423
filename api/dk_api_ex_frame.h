// The frame of the compatibility family. A handle is not an address: it
// carries the discovery pass number and the key of one of the system
// manager's die records, so a forged handle or one from a replaced pass
// answers DK_SML_EX_ERROR_INVALID_ARGUMENT without anything being
// dereferenced, and can never name another device. Native failures are not
// passed on: any non-zero native status becomes DK_SML_EX_ERROR_UNKNOWN.
#pragma once

#include <cstdint>
#include <memory>

#include "api/dk_service_manager.h"
#include "core/dk_system_manager.h"
#include "dksml.h"

namespace dksml {

inline DkSmlExDevice ToHandle(const DkDieInfo* die) {
    // The handle is an opaque number the caller only passes back; the pointer
    // type is the C interface's, and nothing ever dereferences it.
    return reinterpret_cast<DkSmlExDevice>(static_cast<uintptr_t>(die->handle));  // NOLINT(performance-no-int-to-ptr)
}

inline DkSmlExReturn ExFromNative(DkSmlReturn code) {
    return code == DK_SML_SUCCESS ? DK_SML_EX_SUCCESS : DK_SML_EX_ERROR_UNKNOWN;
}

// For queries where "not offered by this device" means something to the
// caller, it stays DK_SML_EX_ERROR_NOT_SUPPORTED; every other failure is
// still DK_SML_EX_ERROR_UNKNOWN.
inline DkSmlExReturn ExFromNativeKeepNotSupported(DkSmlReturn code) {
    return code == DK_SML_ERROR_NOT_SUPPORTED ? DK_SML_EX_ERROR_NOT_SUPPORTED : ExFromNative(code);
}

// Runs `body()` and turns any escaping exception into DK_SML_EX_ERROR_UNKNOWN.
template <typename Body>
inline DkSmlExReturn ExGuard(Body&& body) noexcept {
    try {
        return body();
    } catch (...) {
        return DK_SML_EX_ERROR_UNKNOWN;
    }
}

// Runs `body(DkDieInfo&, IDkDevice*)` for a handle of the current discovery
// state, held for the whole call; DK_SML_EX_ERROR_INVALID_ARGUMENT otherwise. The body gets its own copy of
// the record.
template <typename Body>
inline DkSmlExReturn WithHandle(DkSmlExDevice handle, Body&& body) noexcept {
    return ExGuard([&] {
        DkSystemManager::Hold hold;
        const DkDieInfo* record = DkSystemManager::GetInstance().FindDieByHandle(handle);
        if (record == nullptr || !record->device) return DK_SML_EX_ERROR_INVALID_ARGUMENT;
        DkDieInfo die = *record;
        return body(die, die.device.get());
    });
}

// A registry service for a compatibility call; DK_SML_EX_ERROR_UNKNOWN when
// the registry has not been initialised.
template <typename Getter, typename Body>
inline DkSmlExReturn WithExService(Getter getter, Body&& body) {
    auto service = (DkServiceManager::GetInstance().*getter)();
    if (!service) return DK_SML_EX_ERROR_UNKNOWN;
    return body(*service);
}

}  // namespace dksml
