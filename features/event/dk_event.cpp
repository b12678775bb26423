#include "features/event/dk_event.h"

namespace dksml {

// The driver side of these operations is not wired up in this version: each
// answers DK_SML_ERROR_NOT_SUPPORTED so callers see a clear status.

DkSmlReturn DkEvent::GetPciMmioState(IDkDevice*, uint32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }
DkSmlReturn DkEvent::GetPciEventInfo(IDkDevice*, char*, uint32_t*) { return DK_SML_ERROR_NOT_SUPPORTED; }

}  // namespace dksml
