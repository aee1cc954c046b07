#include <platform/qz_sys/sys_thread_lock.h>

void SysThreadLock::lock(unsigned int const& duration) {
    constexpr int spin_count = 1000;
    if (duration == 0) {
        for (int i = 0; i < spin_count; ++i) {
            if (m_mutex.try_lock()) {
                return;
            }
        }
    }
    m_mutex.lock();
}

void SysThreadLock::unlock() { m_mutex.unlock(); }
