// The exporter's hold on the library: the one place that (re)discovers the
// devices, and the lock that keeps a discovery from running beside a
// collection (the exporter serialises them itself rather than relying on the
// library to publish a new device list under running queries).
#pragma once

#include <atomic>
#include <chrono>
#include <mutex>

#include "dksml.h"

namespace dksml::exporter {

class LibrarySession {
public:
    // Forces a fresh discovery (waits at most `wait` for a running
    // collection). Returns the library's status, or DK_SML_ERROR_BUSY when the
    // lock could not be had in time (the previous device list stays).
    DkSmlReturn Discover(std::chrono::milliseconds wait);

    // Status of the last discovery that ran.
    DkSmlReturn LastStatus() const { return m_lastStatus.load(); }
    uint64_t DiscoveryCount() const { return m_discoveries.load(); }

    std::timed_mutex& Lock() { return m_lock; }

private:
    std::timed_mutex m_lock;
    std::atomic<DkSmlReturn> m_lastStatus{DK_SML_ERROR_NO_DEVICE};
    std::atomic<uint64_t> m_discoveries{0};
};

}  // namespace dksml::exporter
