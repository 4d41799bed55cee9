/**
 * @file
 * Locks: a resource that can be locked, the critical section, and the guard that holds a lock for a
 * scope.
 */
#pragma once

#include <nrb/NRBExport.h>

#include <mutex>

/** Something that one thread at a time may hold. std::lock_guard and its kin can hold it, too. */
class NRB_EXPORT NRBThreadLockableResource {
public:
    NRBThreadLockableResource() = default;
    NRBThreadLockableResource(const NRBThreadLockableResource&) = delete;
    NRBThreadLockableResource& operator=(const NRBThreadLockableResource&) = delete;
    virtual ~NRBThreadLockableResource();

    /**
     * Waits until the calling thread holds the resource.
     * @throws std::system_error where the system cannot lock it
     */
    virtual void lock() = 0;
    /** Gives the resource back. Only the thread that holds it may call this, once for each lock. */
    virtual void unlock() = 0;
};

/**
 * A lock within one process. The thread that holds it may take it again, and then has to give it
 * back as often.
 */
class NRB_EXPORT NRBThreadCriticalSection : public NRBThreadLockableResource {
public:
    /**
     * An open lock.
     * @param attempts how often lock() tries before it puts the thread to sleep
     */
    explicit NRBThreadCriticalSection(int attempts);
    ~NRBThreadCriticalSection() override;

    void lock() override;
    void unlock() override;

private:
    int m_nAttempts;
    std::recursive_mutex m_mutex;
};

/** Holds a resource from its construction to its destruction; the resource must live longer. */
class NRB_EXPORT NRBThreadGuard {
public:
    /** Waits until the calling thread holds the resource; throws what its lock() throws. */
    explicit NRBThreadGuard(NRBThreadLockableResource& resource);
    NRBThreadGuard(const NRBThreadGuard&) = delete;
    NRBThreadGuard& operator=(const NRBThreadGuard&) = delete;
    /** Gives the resource back. */
    ~NRBThreadGuard();

private:
    NRBThreadLockableResource& m_resource;
};
