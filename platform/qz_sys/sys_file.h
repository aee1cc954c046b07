#pragma once

#include <platform/qz_core.h>
#include <platform/qz_sys/export.h>

#include <chrono>
#include <cstddef>
#include <functional>

// An open file, read or written from front to back. Closed by the destructor; not copyable.
class QZ_SYS_EXPORT SysFile {
  public:
    enum Mode {
        MODE_READ,   // the file must exist
        MODE_WRITE,  // created, or cut to nothing first
    };

    SysFile() = default;
    SysFile(SysFile const&) = delete;
    SysFile& operator=(SysFile const&) = delete;
    ~SysFile();

    // Opens the file of a UTF-8 name; an open file is closed first. A directory is refused, and so
    // is a name with a NUL inside. False leaves the reason in `get_error`.
    bool open(CoreString const& path, Mode const& mode);

    // Reads up to `size` bytes and returns how many: fewer only at the end of the file or after an
    // error, which `has_failed` tells apart, or when `set_stop` has it so. A pipe that nobody has
    // opened to write to 2 seconds after `open` is an error.
    std::size_t read(void* buffer, std::size_t const& size);
    // While `read` waits for a pipe, it asks `is_stopped` every 50 milliseconds and ends if so.
    void set_stop(std::function<bool()> const& is_stopped) { m_is_stopped = is_stopped; }
    // Writes all bytes; false on an error.
    bool write(void const* bytes, std::size_t const& size);
    // False when bytes written earlier could not be stored. Closing twice is fine.
    bool close();

    bool is_open() const { return m_descriptor >= 0; }
    bool has_failed() const { return !m_error.is_empty(); }
    // The system's words for the first thing that went wrong; empty when nothing did.
    CoreString const& get_error() const { return m_error; }
    // The size in bytes when the file was opened; 0 for pipes and devices, whose end is not known.
    unsigned long long const& get_size() const { return m_size; }

  private:
    using Clock = std::chrono::steady_clock;

    bool fail(int const& error_number);
    // Waits a moment for more; false when there is no point in reading on. `has_writer`: somebody
    // has the pipe open.
    bool wait_at_pipe(bool const& has_writer);

    int m_descriptor = -1;
    unsigned long long m_size = 0;
    bool m_has_no_writer = false;       // a pipe that nobody has opened yet to write to
    Clock::time_point m_latest_writer;  // when one has to be there
    std::function<bool()> m_is_stopped;
    CoreString m_error;
};
