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
#include <map>
#include <memory>
#include <string>
#include <tuple>

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
        const Key key{owner.get(), die, op};
        auto found = m_records.find(key);
        if (found == m_records.end()) {
            Record record{owner, DK_SML_SUCCESS, 0, 0};
            record.status = read(m_read);
            if (record.status == DK_SML_SUCCESS) {
                record.offset = m_texts.size();  // after the read: it may have kept records of its own
                record.length = m_read.size();
                m_texts += m_read;
            }
            found = m_records.emplace(key, std::move(record)).first;
        }
        const Record& record = found->second;
        if (record.status == DK_SML_SUCCESS) text.assign(m_texts, record.offset, record.length);
        return record.status;
    }

private:
    using Key = std::tuple<const void*, unsigned int, int>;
    // A kept answer; its text is m_texts[offset, offset + length).
    struct Record {
        std::shared_ptr<const void> owner;
        DkSmlReturn status;
        std::size_t offset;
        std::size_t length;
    };

    std::map<Key, Record> m_records;
    // Every kept text one after the other, and the buffer a record is read
    // into: two strings that grow a few times per session instead of one
    // allocation per record.
    std::string m_texts;
    std::string m_read;
    bool m_outermost;
};

}  // namespace dksml
