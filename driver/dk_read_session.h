// A read session: while one is open on a thread, every driver record that
// thread asks of a device's handler is read from the driver once; later asks
// for the same record of the same die (answered or refused) get the first
// answer. For a caller that takes one snapshot through many queries, several
// of which parse the same record (dksmi reads the performance-level record
// once per domain, the PMBus records once per rail). A write through any
// handler on the thread drops what was kept: the driver may answer
// differently after it.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <cstdint>
#include <vector>

#include "dksml.h"

namespace dksml {

class DkReadSession {
public:
    // A session opened inside another one on the same thread shares the outer
    // session's records.
    DkReadSession();
    ~DkReadSession();
    DkReadSession(const DkReadSession&) = delete;
    DkReadSession& operator=(const DkReadSession&) = delete;

    // The session open on this thread, or nullptr.
    static DkReadSession* Current();
    // Drops the records of the session open on this thread, if any.
    static void ForgetCurrent();

    // The record `op` of die `die` of the directories `owner`: the kept
    // answer, else `read(text)`'s, which is then kept. `owner` is held while
    // the session lives, so its address names one device's directories
    // throughout. As `read`, `text` changes only on success.
    template <typename Read>
    DkSmlReturn Fetch(const std::shared_ptr<const void>& owner, unsigned int die, int op, std::string& text,
                      Read&& read) {
        std::size_t index = Find(owner.get(), die, op);
        if (index == c_none) {
            Record record{owner.get(), die, op, DK_SML_SUCCESS, 0, 0};
            record.status = read(m_read);
            if (record.status == DK_SML_SUCCESS) {
                record.offset = m_texts.size();  // after the read: it may have kept records of its own
                record.length = m_read.size();
                m_texts += m_read;
            }
            Hold(owner);
            index = Insert(record);
        }
        const Record& record = m_records[index];
        if (record.status == DK_SML_SUCCESS) text.assign(m_texts, record.offset, record.length);
        return record.status;
    }

private:
    static constexpr std::size_t c_none = static_cast<std::size_t>(-1);

    // A kept answer; its text is m_texts[offset, offset + length).
    struct Record {
        const void* owner;
        unsigned int die;
        int op;
        DkSmlReturn status;
        std::size_t offset;
        std::size_t length;
    };

    // The index of the record of (owner, die, op) in m_records, or c_none.
    std::size_t Find(const void* owner, unsigned int die, int op) const;
    // Adds `record` (not yet kept) and returns its index.
    std::size_t Insert(const Record& record);
    // Keeps `owner` alive while the session lives.
    void Hold(const std::shared_ptr<const void>& owner);
    void Clear();
    // Writes `index` into the first free slot of `record`'s probe sequence.
    void Place(const Record& record, std::size_t index);

    // One snapshot asks a few hundred records: an open-addressing table of
    // indices into one vector costs no allocation per record, where a tree
    // map costs a node and a shared_ptr copy each.
    std::vector<Record> m_records;
    std::vector<uint32_t> m_slots;  // index + 1 into m_records; 0 is a free slot
    // Each device's directories once per run of its records (a snapshot asks
    // one device after the other).
    std::vector<std::shared_ptr<const void>> m_owners;
    // Every kept text one after the other, and the buffer a record is read
    // into: two strings that grow a few times per session instead of one
    // allocation per record.
    std::string m_texts;
    std::string m_read;
    bool m_outermost;
};

}  // namespace dksml
