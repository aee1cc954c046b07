#include <platform/qz_obj/obj_file.h>

#include <platform/qz_obj/obj_block_reader.h>
#include <platform/qz_obj/obj_parser.h>

namespace {

// The byte order marks of UTF-16, which UTF-32 in its usual order begins with too.
bool has_wide_mark(std::string_view const& text) {
    return text.substr(0, 2) == "\xFE\xFF" || text.substr(0, 2) == "\xFF\xFE";
}

char const* get_begin_behind_mark(ObjText const& text) {
    std::string_view const mark = "\xEF\xBB\xBF";
    std::string_view const bytes(text.begin, static_cast<std::size_t>(text.end - text.begin));
    return bytes.substr(0, 3) == mark ? text.begin + 3 : text.begin;
}

// Goes on until the text has the bytes of any mark.
bool read_beginning(ObjBlockReader& reader) {
    bool is_good = reader.read(nullptr);
    while (is_good && !reader.get_text().is_last &&
           reader.get_text().end - reader.get_text().begin < 3) {
        is_good = reader.read(reader.get_text().begin);
    }
    return is_good;
}

bool read_blocks(SysFile& file, ObjLimits const& limits, ObjProgress& progress, ObjReport& report,
                 ObjParser& parser) {
    ObjBlockReader reader(file, limits.block_size);
    bool is_good = read_beginning(reader);
    ObjText text = reader.get_text();
    if (is_good && has_wide_mark({text.begin, static_cast<std::size_t>(text.end - text.begin)})) {
        return report.refuse("UTF-16 or UTF-32 text, where single bytes are expected");
    }
    text.begin = get_begin_behind_mark(text);
    while (is_good) {
        progress.update(reader.get_read_size(), file.get_size());
        if (progress.is_stopped()) {
            return report.refuse("stopped");
        }
        char const* const rest = parser.read(text);
        if (report.is_refused() || text.is_last) {
            return !report.is_refused();
        }
        is_good = reader.read(rest);
        text = reader.get_text();
    }
    return reader.is_rest_too_long() ? report.refuse("a word of more than 65536 bytes")
                                     : report.refuse_file(file.get_error().get_view());
}

bool read_mesh(CoreString const& path, ObjLimits const& limits, ObjProgress& progress,
               ObjReport& report, ObjMesh& mesh) {
    SysFile file;
    if (!file.open(path, SysFile::MODE_READ)) {
        return report.refuse_file(file.get_error().get_view());
    }
    file.set_stop([&progress] { return progress.is_stopped(); });
    ObjBuilder builder(limits, progress);
    builder.reserve(file.get_size());
    ObjParser parser(builder, report);
    if (!read_blocks(file, limits, progress, report, parser) || !builder.finish(report, mesh)) {
        return false;
    }
    return !progress.is_stopped() || report.refuse("stopped");
}

}  // namespace

bool obj_read_file(CoreString const& path, ObjLimits const& limits, AppProgressBar* progress,
                   ObjMesh& mesh) {
    ObjProgress bar(progress);
    ObjReport report;
    if (!read_mesh(path, limits, bar, report, mesh)) {
        report.log_refusal(path);
        return false;
    }
    report.log_warnings(path, mesh.import_data.warnings);
    return true;
}
