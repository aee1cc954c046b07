#pragma once

#include <fuzz/checks.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include <sys/mman.h>
#include <unistd.h>

// A file that is only in memory, and that loaders open by its path as they do any other.
class MemoryFile {
  public:
    MemoryFile() : m_descriptor(memfd_create("input", MFD_CLOEXEC)) {
        require(m_descriptor >= 0, "there is room for a file in memory");
    }
    MemoryFile(MemoryFile const&) = delete;
    MemoryFile& operator=(MemoryFile const&) = delete;
    ~MemoryFile() { ::close(m_descriptor); }

    void write(std::uint8_t const* bytes, std::size_t const& size) {
        bool const is_written =
            ::ftruncate(m_descriptor, static_cast<off_t>(size)) == 0 &&
            ::pwrite(m_descriptor, bytes, size, 0) == static_cast<ssize_t>(size);
        require(is_written, "a file in memory takes an input");
    }

    std::string get_path() const { return "/proc/self/fd/" + std::to_string(m_descriptor); }

  private:
    int m_descriptor;
};
