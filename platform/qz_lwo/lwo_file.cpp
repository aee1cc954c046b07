#include <platform/qz_lwo/lwo_file.h>

#include <platform/qz_lwo/lwo_form.h>
#include <platform/qz_sys.h>

#include <algorithm>
#include <cstdlib>

namespace {

constexpr std::size_t least_capacity = 1u << 16;
constexpr std::size_t block_size = 4u << 20;  // a stop request waits for one block at most

bool refuse_reading(SysFile const& file, LwoReport const& report) {
    CoreString reason("cannot be read: ");
    reason.append(file.get_error());
    return report.refuse(reason.get_view());
}

}  // namespace

LwoFile::~LwoFile() { std::free(m_bytes); }

bool LwoFile::read(CoreString const& path, LwoReport& report) {
    SysFile file;
    if (!file.open(path, SysFile::MODE_READ)) {
        return refuse_reading(file, report);
    }
    file.set_stop([&report] { return report.is_stopped(); });
    unsigned long long wanted = lwo_form_header_size;
    std::size_t const file_size = static_cast<std::size_t>(file.get_size());
    while (m_size < wanted) {
        std::size_t const room = std::max({least_capacity, file_size + 1, 2 * m_capacity});
        if (m_size == m_capacity &&
            !reserve(static_cast<std::size_t>(std::min<unsigned long long>(wanted, room)))) {
            return report.refuse("there is not enough memory for its bytes");
        }
        std::size_t const block = std::min(block_size, m_capacity - m_size);
        std::size_t const count = file.read(m_bytes + m_size, block);
        m_size += count;
        if (file.has_failed()) {
            return refuse_reading(file, report);
        }
        if (m_size == lwo_form_header_size && lwo_is_form_header(m_bytes, m_size)) {
            wanted = lwo_get_form_end(m_bytes) + 1;
            report.set_file_size(std::min<unsigned long long>(wanted, std::max(file_size, m_size)));
        }
        if (!report.advance(count)) {
            return false;
        }
        if (count < block) {
            break;
        }
    }
    return true;
}

bool LwoFile::reserve(std::size_t const& capacity) {
    void* const bytes = std::realloc(m_bytes, capacity);
    if (!bytes) {
        return false;
    }
    m_bytes = static_cast<unsigned char*>(bytes);
    m_capacity = capacity;
    return true;
}
