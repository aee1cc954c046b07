#include <platform/qz_sys/sys_thread_lock.h>

void SysThreadLock::lock(unsigned int const& duration) {
    constexpr int spin_count = 1000;
    for (int tries = duration == 0 ? spin_count : 1; tries > 0; --tries) {
        State expected = FREE;
        if (m_state.compare_exchange_strong(expected, TAKEN)) {
            return;
        }
    }
    // Who wakes cannot know whether others still wait, so the lock stays awaited.
    while (m_state.exchange(AWAITED) != FREE) {
        m_state.wait(AWAITED);
    }
}

void SysThreadLock::unlock() {
    if (m_state.exchange(FREE) == AWAITED) {
        m_state.notify_one();
    }
}
