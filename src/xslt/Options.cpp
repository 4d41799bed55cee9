#include <vexa/xslt/Options.h>

#include <atomic>

namespace vexa {

struct CancelToken::State {
    std::atomic<bool> isCancelled{false};
};

CancelToken::CancelToken() noexcept = default;

bool CancelToken::cancelled() const noexcept {
    return m_state && m_state->isCancelled.load(std::memory_order_relaxed);
}

CancelSource::CancelSource() : m_state(std::make_shared<CancelToken::State>()) {}

void CancelSource::cancel() noexcept {
    if (m_state) { // not moved from
        m_state->isCancelled.store(true, std::memory_order_relaxed);
    }
}

CancelToken CancelSource::token() const {
    CancelToken token;
    token.m_state = m_state;
    return token;
}

} // namespace vexa
