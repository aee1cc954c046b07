#include <platform/qz_lwo/lwo_chunks.h>

bool LwoChunkReader::next(LwoChunk& chunk) {
    chunk = LwoChunk();
    chunk.offset = m_rest.get_offset();
    LwoByteReader rest = m_rest;
    unsigned int size = 0;
    if (!rest.read_u4(chunk.id) || !rest.read_u4(size) || !rest.take(size, chunk.data)) {
        return false;
    }
    m_is_padding_missing = size % 2 != 0 && !rest.skip(1);
    m_rest = rest;
    return true;
}
