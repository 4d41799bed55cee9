/**
 * @file
 * Locks: the interface of a lockable resource, a critical section, and a guard that holds a lock
 * for a scope.
 */
#pragma once

#include <nrb/NRBExport.h>

#include <mutex>

/** A resource that one thread at a time can lock. std::lock_guard works with it, too. */
class NRB_EXPORT NRBThreadLockableResource {
public:
    NRBThreadLockableResource() = default;
    NRBThreadLockableResource(const NRBThreadLockableResource&) = delete;
    NRBThreadLockableResource& operator=(const NRBThreadLockableResource&) = delete;
    virtual ~NRBThreadLockableResource();

    /**
     * Waits until the calling thread holds the lock.
     * @throws std::system_error if the system cannot lock it
     */
    virtual void lock() = 0;
    /** Releases the lock. Only the thread that holds it may call this, once for each lock(). */
    virtual void unlock() = 0;
};

/**
 * A recursive lock within one process: the thread that holds it may lock it again, and must unlock
 * it as often.
 */
class NRB_EXPORT NRBThreadCriticalSection : public NRBThreadLockableResource {
public:
    /**
     * Creates the lock in the unlocked state.
     * @param attempts how often lock() tries to lock without blocking before it blocks
     */
    explicit NRBThreadCriticalSection(int attempts);
    ~NRBThreadCriticalSection() override;

    void lock() override;
    void unlock() override;

private:
    int m_nAttempts;
    std::recursive_mutex m_mutex;
};

/** Locks a resource during its own lifetime. The resource must outlive the guard. */
class NRB_EXPORT NRBThreadGuard {
public:
    /** Waits until the calling thread holds the lock. Throws what lock() throws. */
    explicit NRBThreadGuard(NRBThreadLockableResource& resource);
    NRBThreadGuard(const NRBThreadGuard&) = delete;
    NRBThreadGuard& operator=(const NRBThreadGuard&) = delete;
    /** Releases the lock. */
    ~NRBThreadGuard();

private:
    NRBThreadLockableResource& m_resource;
};
