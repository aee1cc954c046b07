#include <platform/qz_sys/sys_filesystem.h>

#include <sys/stat.h>

bool SysFilesystem::file_exists(CoreString const& path) {
    struct stat status;
    return path.get_view().find('\0') == std::string_view::npos &&
           ::stat(path.get_data(), &status) == 0;
}
