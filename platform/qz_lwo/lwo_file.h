#pragma once

#include <platform/qz_core.h>
#include <platform/qz_lwo/lwo_report.h>

#include <cstddef>

// The bytes of an object's file, up to the end of the form and one byte more, which tells whether
// the file goes on. Of a file that is no object, just the first 12 bytes.
class LwoFile {
  public:
    LwoFile() = default;
    LwoFile(LwoFile const&) = delete;
    LwoFile& operator=(LwoFile const&) = delete;
    ~LwoFile();

    // Call once. Believes neither the size that the file system tells, which pipes lack and which
    // may change, nor the one in the file: memory grows with what is really read.
    bool read(CoreString const& path, LwoReport& report);

    unsigned char const* get_bytes() const { return m_bytes; }
    std::size_t const& get_size() const { return m_size; }

  private:
    bool reserve(std::size_t const& capacity);

    unsigned char* m_bytes = nullptr;
    std::size_t m_size = 0;
    std::size_t m_capacity = 0;
};
