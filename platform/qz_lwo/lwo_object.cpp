#include <platform/qz_lwo/lwo_object.h>

#include <platform/qz_lwo/lwo_contents.h>
#include <platform/qz_lwo/lwo_form.h>
#include <platform/qz_lwo/lwo_layers.h>
#include <platform/qz_lwo/lwo_maps.h>
#include <platform/qz_lwo/lwo_polygons.h>
#include <platform/qz_lwo/lwo_surfaces.h>

namespace {

struct Parts {
    LwoContents const& contents;
    LwoPolygons& polygons;
    LwoMaps& maps;
};

bool read_old_chunk(LwoChunk const& chunk, Parts const& parts, LwoReport& report) {
    switch (chunk.id) {
    case lwo_id("PNTS"):
        return parts.polygons.read_points(chunk, report);
    case lwo_id("POLS"):
    case lwo_id("PCHS"):
        return parts.polygons.read_old_polygons(chunk, report);
    default:
        return true;
    }
}

bool read_chunk(LwoChunk const& chunk, Parts const& parts, LwoReport& report) {
    switch (chunk.id) {
    case lwo_id("PNTS"):
        return parts.polygons.read_points(chunk, report);
    case lwo_id("POLS"):
        return parts.polygons.read_polygons(chunk, report);
    case lwo_id("PTAG"):
        return lwo_read_surface_tags(chunk, parts.contents, parts.polygons, report);
    case lwo_id("VMAP"):
    case lwo_id("VMAD"):
        return parts.maps.collect(chunk, parts.polygons, report);
    default:
        return true;
    }
}

bool read_chunks(LwoForm const& form, CoreString const& item_name, Parts const& parts,
                 LwoReport& report) {
    LwoLayers layers(form, item_name);
    LwoChunkReader chunks(form.chunks);
    LwoChunk chunk;
    LwoProgress progress(report, form.chunks);
    while (chunks.next(chunk)) {
        bool is_good = true;
        if (layers.is_layer(chunk)) {
            parts.polygons.begin_layer();
            is_good = layers.enter(chunk, report);
        } else if (layers.is_chosen()) {
            is_good = form.is_old() ? read_old_chunk(chunk, parts, report)
                                    : read_chunk(chunk, parts, report);
        }
        if (!is_good || !progress.step()) {
            return false;
        }
    }
    return true;
}

}  // namespace

bool lwo_read_object(unsigned char const* bytes, std::size_t const& size,
                     CoreString const& item_name, LwoMesh& mesh, LwoReport& report) {
    LwoForm form;
    LwoContents contents;
    if (!lwo_read_form(bytes, size, form, report) ||
        !lwo_read_contents(form, item_name, contents, report)) {
        return false;
    }
    LwoPolygons polygons(contents, mesh);
    LwoMaps maps;
    if (!read_chunks(form, item_name, {contents, polygons, maps}, report)) {
        return false;
    }
    polygons.finish();
    if (!lwo_build_groups(contents, polygons, mesh, report) ||
        !maps.build(polygons, size, mesh, report)) {
        return false;
    }
    report.log_warnings();
    return true;
}

bool lwo_load_from_memory(unsigned char const* bytes, std::size_t const& size,
                          CoreString const& path, CoreString const& item_name, LwoMesh& mesh,
                          AppProgressBar* progress) {
    LwoReport report(path, progress);
    report.set_file_size(size);
    return lwo_read_object(bytes, size, item_name, mesh, report);
}
