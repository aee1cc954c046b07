#include <platform/qz_sys/sys_file.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr std::size_t largest_transfer = 1u << 30;  // below the limit of every read and write call
constexpr int longest_wait = 2000;                  // milliseconds, for a writer to come
constexpr int one_wait = 50;                        // milliseconds, between looks at a stop

}  // namespace

SysFile::~SysFile() { close(); }

bool SysFile::open(CoreString const& path, Mode const& mode) {
    close();
    m_error.clear();
    m_size = 0;
    if (path.get_view().find('\0') != std::string_view::npos) {
        return fail(EINVAL);
    }
    // Opening a pipe would wait, however long, until somebody writes to it.
    int const flags = mode == MODE_READ ? O_RDONLY | O_NONBLOCK : O_WRONLY | O_CREAT | O_TRUNC;
    m_descriptor = ::open(path.get_data(), flags | O_CLOEXEC, 0666);
    if (m_descriptor < 0) {
        return fail(errno);
    }
    struct stat status;
    int const error_number = ::fstat(m_descriptor, &status) != 0 ? errno
                             : S_ISDIR(status.st_mode)           ? EISDIR
                                                                 : 0;
    if (error_number != 0) {
        close();
        return fail(error_number);
    }
    m_size = S_ISREG(status.st_mode) ? static_cast<unsigned long long>(status.st_size) : 0;
    m_has_no_writer = mode == MODE_READ && S_ISFIFO(status.st_mode);
    m_latest_writer = Clock::now() + std::chrono::milliseconds(longest_wait);
    return true;
}

std::size_t SysFile::read(void* buffer, std::size_t const& size) {
    std::size_t const wanted = size;
    std::size_t done = 0;
    while (is_open() && done < wanted) {
        std::size_t const part = std::min(wanted - done, largest_transfer);
        ssize_t const count = ::read(m_descriptor, static_cast<char*>(buffer) + done, part);
        if (count > 0) {
            done += static_cast<std::size_t>(count);
            m_has_no_writer = false;
        } else if (count < 0 && errno != EAGAIN && errno != EINTR) {
            fail(errno);
            break;
        } else if ((count == 0 && !m_has_no_writer) ||
                   !wait_at_pipe(count < 0 && errno == EAGAIN)) {
            break;
        }
    }
    return done;
}

// Until somebody has opened a pipe to write to it, it looks as if it had ended.
bool SysFile::wait_at_pipe(bool const& has_writer) {
    if (m_is_stopped && m_is_stopped()) {
        return false;
    }
    pollfd pipe = {m_descriptor, POLLIN, 0};
    int const found = ::poll(&pipe, 1, one_wait);  // below 0 after a signal
    if (has_writer || found > 0) {
        m_has_no_writer = false;
    } else if (Clock::now() >= m_latest_writer) {
        m_error = "Nobody writes to this pipe";
        return false;
    }
    return true;
}

bool SysFile::write(void const* bytes, std::size_t const& size) {
    std::size_t const wanted = size;
    std::size_t done = 0;
    while (done < wanted) {
        std::size_t const part = std::min(wanted - done, largest_transfer);
        ssize_t const count = ::write(m_descriptor, static_cast<char const*>(bytes) + done, part);
        if (count < 0 && errno != EINTR) {
            return fail(errno);
        }
        done += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    return true;
}

bool SysFile::close() {
    int const descriptor = m_descriptor;
    m_descriptor = -1;
    return descriptor < 0 || ::close(descriptor) == 0 || fail(errno);
}

bool SysFile::fail(int const& error_number) {
    if (m_error.is_empty()) {
        m_error = CoreString(std::strerror(error_number));
    }
    return false;
}
