#include <tools/qzpoly/terminal/output_file.h>

#include <tools/qzpoly/terminal/terminal.h>

#include <platform/qz_sys.h>

#include <unistd.h>

#include <filesystem>

namespace {

namespace fs = std::filesystem;

bool write_whole(fs::path const& path, void const* bytes, std::size_t const& size,
                 std::string& reason) {
    SysFile file;
    bool const is_good =
        file.open(CoreString(std::string_view(path.native())), SysFile::MODE_WRITE) &&
        file.write(bytes, size) && file.close();
    reason = file.get_error().get_view();
    return is_good;
}

bool replace_file(std::string const& path, void const* bytes, std::size_t const& size,
                  std::string& reason) {
    std::error_code error;
    fs::file_status const old = fs::status(path, error);
    fs::path const target = fs::exists(old) ? fs::canonical(path, error) : fs::path(path);
    if (fs::exists(old) &&
        (!fs::is_regular_file(old) || access(target.parent_path().c_str(), W_OK) != 0)) {
        return write_whole(path, bytes, size, reason);
    }
    fs::path part = target;
    part.replace_filename(".qzpoly." + std::to_string(getpid()) + ".part");
    if (write_whole(part, bytes, size, reason)) {
        if (fs::exists(old)) {
            fs::permissions(part, old.permissions(), error);
        }
        if (!is_interrupted()) {
            fs::rename(part, target, error);
            reason = error ? error.message() : "";
            if (!error) {
                return true;
            }
        }
    }
    fs::remove(part, error);
    return false;
}

}  // namespace

bool write_file(std::string const& path, void const* bytes, std::size_t const& size,
                ToolMessages& messages) {
    std::string reason;
    begin_writing();
    if (is_interrupted() || !replace_file(path, bytes, size, reason)) {
        messages.fail(
            make_text("cannot write ", std::string_view(path), ": ", std::string_view(reason)));
        return false;
    }
    return true;
}
