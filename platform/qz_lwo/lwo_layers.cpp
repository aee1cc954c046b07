#include <platform/qz_lwo/lwo_layers.h>

#include <algorithm>

namespace {

constexpr unsigned int shown_names = 20;

}  // namespace

bool LwoLayers::enter(LwoChunk const& chunk, LwoReport& report) {
    std::string_view name;
    if (!read_name(chunk, name)) {
        return report.refuse_end(chunk, chunk.data, "the description of a layer");
    }
    m_is_chosen = m_item_name.is_empty() || name == m_item_name.get_view();
    m_is_found = m_is_found || m_is_chosen;
    return true;
}

CoreString LwoLayers::get_names() const {
    std::string_view names[shown_names];
    unsigned int count = 0;
    CoreString text;
    LwoChunkReader chunks(m_form.chunks);
    LwoChunk chunk;
    while (chunks.next(chunk)) {
        std::string_view name;
        if (!is_layer(chunk) || !read_name(chunk, name) || name.empty() ||
            std::find(names, names + count, name) != names + count) {
            continue;
        }
        if (count == shown_names) {
            text.append(" and more");
            break;
        }
        text.append(count == 0 ? "" : ", ").append(lwo_quote(name));
        names[count++] = name;
    }
    return text;
}

// Number and flags (2 bytes each), a pivot (12 bytes) in the newer forms, then the name; a parent
// and more may follow.
bool LwoLayers::read_name(LwoChunk const& chunk, std::string_view& name) const {
    LwoByteReader data = chunk.data;
    unsigned int const least_size = m_form.is_old() ? 6 : 18;
    return data.get_left() >= least_size && data.skip(least_size - 2) && data.read_string(name);
}
