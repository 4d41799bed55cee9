#include <nrb/NRBThread.h>

NRBThreadLockableResource::~NRBThreadLockableResource() = default;

NRBThreadCriticalSection::NRBThreadCriticalSection(int attempts) : m_nAttempts(attempts) {}

NRBThreadCriticalSection::~NRBThreadCriticalSection() = default;

void NRBThreadCriticalSection::lock() {
    for (int attempt = 0; attempt < m_nAttempts; ++attempt) {
        if (m_mutex.try_lock()) {
            return;
        }
    }
    m_mutex.lock();
}

void NRBThreadCriticalSection::unlock() {
    m_mutex.unlock();
}

NRBThreadGuard::NRBThreadGuard(NRBThreadLockableResource& resource) : m_resource(resource) {
    m_resource.lock();
}

NRBThreadGuard::~NRBThreadGuard() {
    m_resource.unlock();
}
