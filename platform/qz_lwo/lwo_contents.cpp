#include <platform/qz_lwo/lwo_contents.h>

#include <platform/qz_lwo/lwo_layers.h>

namespace {

constexpr unsigned int point_size = 12;
constexpr unsigned int least_index_size = 2;

bool read_names(LwoChunk const& chunk, LwoContents& contents, LwoReport& report) {
    LwoByteReader data = chunk.data;
    LwoProgress progress(report, data);
    while (!data.is_at_end()) {
        std::string_view name;
        if (!data.read_string(name)) {
            return report.refuse_end(chunk, data, "a name");
        }
        contents.names.append(name.data());
        if (!progress.step()) {
            return false;
        }
    }
    return true;
}

bool add_points(LwoChunk const& chunk, LwoContents& contents, LwoReport& report) {
    std::size_t const size = chunk.data.get_left();
    if (size % point_size != 0) {
        return report.refuse(chunk, chunk.offset + 4, "the size is no multiple of 12 bytes");
    }
    contents.point_count += static_cast<unsigned int>(size / point_size);
    return true;
}

bool check_end(LwoForm const& form, LwoChunkReader const& chunks, LwoChunk const& last,
               LwoReport& report) {
    if (!chunks.is_at_end()) {
        return report.refuse(last, last.offset, "the chunk reaches past the end of the form");
    }
    if (form.is_one_byte_short && !chunks.is_padding_missing()) {
        return report.refuse(last, last.offset, "the form reaches past the end of the file");
    }
    if (chunks.is_padding_missing()) {
        report.warn(LwoReport::PADDING_MISSING, last, last.offset);
    }
    return true;
}

bool check_item(LwoLayers const& layers, CoreString const& item_name, LwoContents const& contents,
                LwoReport& report) {
    if (layers.is_found()) {
        return contents.point_count != 0 || report.refuse("there are no points");
    }
    CoreString const names = layers.get_names();
    CoreString reason("there is no layer ");
    reason.append(lwo_quote(item_name.get_view()));
    reason.append(names.is_empty() ? ", and none has a name" : ", there are ").append(names);
    return report.refuse(reason.get_view());
}

}  // namespace

bool lwo_read_contents(LwoForm const& form, CoreString const& item_name, LwoContents& contents,
                       LwoReport& report) {
    unsigned int const names_id = form.is_old() ? lwo_id("SRFS") : lwo_id("TAGS");
    LwoLayers layers(form, item_name);
    LwoChunkReader chunks(form.chunks);
    LwoChunk chunk;
    LwoChunk last;
    unsigned long long index_limit = 0;
    LwoProgress progress(report, form.chunks);
    for (; chunks.next(chunk); last = chunk) {
        bool is_good = true;
        if (layers.is_layer(chunk)) {
            is_good = layers.enter(chunk, report);
        } else if (chunk.id == names_id) {
            is_good = read_names(chunk, contents, report);
        } else if (chunk.id == lwo_id("PNTS") && layers.is_chosen()) {
            is_good = add_points(chunk, contents, report);
        } else if ((chunk.id == lwo_id("POLS") || chunk.id == lwo_id("PCHS")) &&
                   layers.is_chosen()) {
            index_limit += chunk.data.get_left() / least_index_size;
        }
        if (!is_good || !progress.step()) {
            return false;
        }
    }
    contents.index_limit = static_cast<unsigned int>(index_limit);
    return check_end(form, chunks, chunks.is_at_end() ? last : chunk, report) &&
           check_item(layers, item_name, contents, report);
}
