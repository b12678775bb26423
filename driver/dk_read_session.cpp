#include "driver/dk_read_session.h"

#include <algorithm>
#include <cstdint>

namespace dksml {
namespace {

thread_local DkReadSession* t_session = nullptr;

// Slots of the first table: room for the records of a few devices.
constexpr std::size_t c_firstSlots = 512;
// Room for the texts of those records (most are under 100 bytes).
constexpr std::size_t c_firstTextBytes = 16384;

// Mixes the key's parts; the low bits pick the slot.
std::size_t Hash(const void* owner, unsigned int die, int op) {
    uint64_t h = reinterpret_cast<std::uintptr_t>(owner) >> 4;
    h ^= (static_cast<uint64_t>(die) << 32) ^ static_cast<uint32_t>(op);
    h *= 0x9E3779B97F4A7C15ull;
    return static_cast<std::size_t>(h ^ (h >> 29));
}

}  // namespace

DkReadSession::DkReadSession() : m_outermost(t_session == nullptr) {
    if (m_outermost) t_session = this;
}

DkReadSession::~DkReadSession() {
    if (m_outermost) t_session = nullptr;
}

DkReadSession* DkReadSession::Current() { return t_session; }

void DkReadSession::ForgetCurrent() {
    if (t_session != nullptr) t_session->Clear();
}

void DkReadSession::Clear() {
    m_records.clear();
    std::fill(m_slots.begin(), m_slots.end(), 0);
    m_owners.clear();
    m_texts.clear();
}

std::size_t DkReadSession::Find(const void* owner, unsigned int die, int op) const {
    if (m_slots.empty()) return c_none;
    const std::size_t mask = m_slots.size() - 1;
    for (std::size_t slot = Hash(owner, die, op) & mask;; slot = (slot + 1) & mask) {
        const uint32_t entry = m_slots[slot];
        if (entry == 0) return c_none;
        const Record& record = m_records[entry - 1];
        if (record.owner == owner && record.die == die && record.op == op) return entry - 1;
    }
}

std::size_t DkReadSession::Insert(const Record& record) {
    // At most half full, so that a probe for an absent key ends soon.
    if ((m_records.size() + 1) * 2 > m_slots.size()) {
        if (m_slots.empty()) {
            m_records.reserve(c_firstSlots / 2);
            m_texts.reserve(c_firstTextBytes);
        }
        m_slots.assign(m_slots.empty() ? c_firstSlots : m_slots.size() * 2, 0);
        for (std::size_t i = 0; i < m_records.size(); ++i) Place(m_records[i], i);
    }
    m_records.push_back(record);
    Place(record, m_records.size() - 1);
    return m_records.size() - 1;
}

void DkReadSession::Place(const Record& record, std::size_t index) {
    const std::size_t mask = m_slots.size() - 1;
    std::size_t slot = Hash(record.owner, record.die, record.op) & mask;
    while (m_slots[slot] != 0) slot = (slot + 1) & mask;
    m_slots[slot] = static_cast<uint32_t>(index + 1);
}

void DkReadSession::Hold(const std::shared_ptr<const void>& owner) {
    if (m_owners.empty() || m_owners.back() != owner) m_owners.push_back(owner);
}

}  // namespace dksml
