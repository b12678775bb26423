#include "library_session.h"

namespace dksml::exporter {

DkSmlReturn LibrarySession::Discover(std::chrono::milliseconds wait) {
    std::unique_lock<std::timed_mutex> hold(m_lock, wait);
    if (!hold.owns_lock()) return DK_SML_ERROR_BUSY;
    // Any non-zero flag word makes the library walk the bus again.
    const DkSmlReturn status = dkSmlInitWithFlags(1);
    m_lastStatus.store(status);
    m_discoveries.fetch_add(1);
    return status;
}

}  // namespace dksml::exporter
