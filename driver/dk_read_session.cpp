#include "driver/dk_read_session.h"

namespace dksml {
namespace {

thread_local DkReadSession* t_session = nullptr;

}  // namespace

DkReadSession::DkReadSession() : m_outermost(t_session == nullptr) {
    if (m_outermost) t_session = this;
}

DkReadSession::~DkReadSession() {
    if (m_outermost) t_session = nullptr;
}

DkReadSession* DkReadSession::Current() { return t_session; }

void DkReadSession::ForgetCurrent() {
    if (t_session == nullptr) return;
    t_session->m_records.clear();
    t_session->m_texts.clear();
}

}  // namespace dksml
