#include <tools/qzpoly/input_file.h>

#include <tools/qzpoly/messages.h>

#include <platform/qz_sys.h>

#include <filesystem>

std::string read_input_file(std::string const& path, std::size_t const& largest_size,
                            std::string& bytes) {
    std::error_code error;
    // A pipe is not waited for.
    if (!std::filesystem::is_regular_file(path, error)) {
        return error ? error.message() : "not a regular file";
    }
    SysFile file;
    file.open(CoreString(std::string_view(path)), SysFile::MODE_READ);
    if (!file.has_failed() && file.get_size() > largest_size) {
        return make_text("more than ", largest_size, " bytes");
    }
    if (!file.has_failed()) {
        bytes.resize(file.get_size());
        bytes.resize(file.read(bytes.data(), bytes.size()));
    }
    return std::string(file.get_error().get_view());
}
