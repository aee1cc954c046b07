#pragma once

#include <platform/qz_sys/export.h>

#include <atomic>

// A mutual exclusion lock of one word, on every system. Neither copyable nor recursive.
class QZ_SYS_EXPORT SysThreadLock {
  public:
    SysThreadLock() = default;
    SysThreadLock(SysThreadLock const&) = delete;
    SysThreadLock& operator=(SysThreadLock const&) = delete;

    // Waits until the lock is free and takes it; it never gives up. `duration` hints how long locks
    // of this kind are held: 0 a few instructions (a waiter spins a while before it sleeps), 1 and
    // above longer (it sleeps at once).
    void lock(unsigned int const& duration);
    void unlock();

  private:
    enum State : unsigned int { FREE, TAKEN, AWAITED };

    std::atomic<State> m_state{FREE};
};
