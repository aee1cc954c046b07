#pragma once

#include <platform/qz_obj/obj_text.h>
#include <platform/qz_sys.h>

// Reads a file block by block. What the parser could not finish stays in front of the next block.
class ObjBlockReader {
  public:
    // Bytes that may stay: no number or index is longer.
    static constexpr unsigned int longest_rest = 1u << 16;

    ObjBlockReader(SysFile& file, unsigned int const& block_size);

    // Reads on. The bytes of the last text from `rest` on come first; null stands for none. False:
    // more than `longest_rest` bytes would stay, or reading failed, which the file tells.
    bool read(char const* rest);

    ObjText const& get_text() const { return m_text; }
    unsigned long long const& get_read_size() const { return m_read_size; }
    bool is_rest_too_long() const { return m_is_rest_too_long; }

  private:
    SysFile& m_file;
    unsigned int m_block_size;
    unsigned long long m_read_size = 0;
    bool m_is_rest_too_long = false;
    CoreArray<char> m_storage;  // room for the rest, the block and the margin
    char const* m_end;          // of the bytes that were read; the text may end one earlier
    ObjMarks m_marks;
    ObjText m_text;
};
