#include <platform/qz_obj/obj_block_reader.h>

#include <cstring>

ObjBlockReader::ObjBlockReader(SysFile& file, unsigned int const& block_size)
    : m_file(file),
      m_block_size(block_size),
      m_storage(longest_rest + block_size + 1 + static_cast<unsigned int>(ObjMarks::margin)),
      m_end(m_storage.get_data() + longest_rest) {
    m_marks.init(m_storage.get_data(), longest_rest + block_size + 1);
    m_text = {m_end, m_end, false, &m_marks};
}

bool ObjBlockReader::read(char const* rest) {
    std::size_t const rest_size = rest ? static_cast<std::size_t>(m_end - rest) : 0;
    if (rest_size > longest_rest) {
        m_is_rest_too_long = true;
        return false;
    }
    char* const block = m_storage.get_data() + longest_rest;
    if (rest_size != 0) {
        std::memmove(block - rest_size, rest, rest_size);
    }
    std::size_t const size = m_file.read(block, m_block_size);
    if (m_file.has_failed()) {
        return false;
    }
    m_read_size += size;
    char* end = block + size;
    m_end = end;
    m_text.begin = block - rest_size;
    m_text.is_last = size < m_block_size;
    if (m_text.is_last) {
        *end++ = '\n';
    }
    std::memset(end, '\n', ObjMarks::margin);
    // A CR at the edge waits for the LF that may follow. It is a line end too, as promised.
    bool const ends_in_cr = !m_text.is_last && end > m_text.begin && end[-1] == '\r';
    m_text.end = end - (ends_in_cr ? 1 : 0);
    m_marks.update(static_cast<std::size_t>(m_text.begin - m_storage.get_data()),
                   static_cast<std::size_t>(end - m_storage.get_data()));
    return true;
}
