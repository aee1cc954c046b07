#include <tools/qzpoly/models/input_file.h>

#include <tools/qzpoly/terminal/messages.h>

#include <platform/qz_sys.h>

#include <algorithm>
#include <filesystem>

namespace {

// Reads as many bytes of a file as get_size(its size, reason) says.
template <typename GetSize>
std::string read(std::string const& path, GetSize const& get_size, std::string& bytes) {
    std::error_code error;
    // A pipe is not waited for.
    if (!std::filesystem::is_regular_file(path, error)) {
        return error ? error.message() : "not a regular file";
    }
    SysFile file;
    std::string reason;
    if (file.open(CoreString(std::string_view(path)), SysFile::MODE_READ)) {
        bytes.resize(get_size(file.get_size(), reason));
        bytes.resize(file.read(bytes.data(), bytes.size()));
    }
    return reason.empty() ? std::string(file.get_error().get_view()) : reason;
}

}  // namespace

std::string read_input_file(std::string const& path, std::size_t const& largest_size,
                            std::string& bytes) {
    auto const get_size = [&](unsigned long long const& size, std::string& reason) {
        reason = size > largest_size ? make_text("more than ", largest_size, " bytes") : "";
        return size > largest_size ? 0 : size;
    };
    return read(path, get_size, bytes);
}

std::string read_input_file_start(std::string const& path, std::size_t const& most,
                                  std::string& bytes) {
    auto const get_size = [&](unsigned long long const& size, std::string&) {
        return std::min<unsigned long long>(size, most);
    };
    return read(path, get_size, bytes);
}
