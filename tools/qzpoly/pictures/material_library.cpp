#include <tools/qzpoly/pictures/material_library.h>

#include <tools/qzpoly/models/input_file.h>
#include <tools/qzpoly/models/obj_statements.h>

#include <tiny_obj_loader.h>

#include <algorithm>
#include <sstream>

namespace {

namespace fs = std::filesystem;

constexpr std::size_t searched_size = std::size_t(1) << 24;     // of the OBJ file, in bytes
constexpr std::size_t largest_library = std::size_t(1) << 22;   // in bytes
constexpr std::size_t longest_material = std::size_t(1) << 14;  // in bytes
constexpr std::size_t most_libraries = 64;                      // those behind are not read

bool is_file(std::string const& path) {
    std::error_code error;
    return fs::is_regular_file(path, error);
}

// A name may have blanks, escaped or not; or blanks part several names.
std::vector<std::string> split_names(fs::path const& folder, std::string_view const& rest) {
    if (is_file(find_beside(folder, std::string(rest)))) {
        return {std::string(rest)};
    }
    std::vector<std::string> names(1);
    for (std::size_t i = 0; i < rest.size(); ++i) {
        bool const is_blank = rest[i] == ' ' || rest[i] == '\t';
        if (rest[i] == '\\' && i + 1 < rest.size() && rest[i + 1] == ' ') {
            names.back() += rest[++i];
        } else if (!is_blank) {
            names.back() += rest[i];
        } else if (!names.back().empty()) {
            names.emplace_back();
        }
    }
    return names;
}

// The last one of a material. Its options are not left to the reader, which takes a path for the
// last number of an option that is short of numbers.
ToolTextureStatement find_texture(std::string_view const& text) {
    ToolTextureStatement texture;
    ToolObjStatements statements(text);
    ToolObjStatement statement;
    while (statements.find_next(statement)) {
        if (statement.keyword == "map_Kd") {
            texture = read_texture_statement(statement.rest);
        }
    }
    return texture;
}

// One material of a library, as text. False, with the reason, when its reader fails.
bool read_material(std::string_view const& text, ToolLibraryMaterial& material,
                   std::string& reason) {
    reason.clear();
    try {
        std::map<std::string, int> numbers;
        std::vector<tinyobj::material_t> materials;
        std::istringstream stream{std::string(text)};
        std::string warnings;
        tinyobj::LoadMtl(&numbers, &materials, &stream, &warnings, &reason);
        if (reason.empty() && !materials.empty()) {
            tinyobj::material_t const& read = materials[0];
            material.diffuse = {read.diffuse[0], read.diffuse[1], read.diffuse[2]};
            material.texture = find_texture(text);
            return true;
        }
    } catch (std::exception const& fault) {
        reason = fault.what();
    }
    return false;
}

}  // namespace

std::string find_beside(fs::path const& folder, std::string name) {
    std::replace(name.begin(), name.end(), '\\', '/');
    fs::path const path(name);
    bool const leads_away = path.is_absolute() || (name.size() > 1 && name[1] == ':') ||
                            std::find(path.begin(), path.end(), "..") != path.end();
    return (folder / (leads_away ? path.filename() : path)).string();
}

std::vector<std::string> find_material_libraries(std::string const& obj_path,
                                                 ToolMessages& messages) {
    std::string text;
    std::vector<std::string> paths;
    fs::path const folder = fs::path(obj_path).parent_path();
    read_input_file_start(obj_path, searched_size, text);
    ToolObjStatements statements(text);
    ToolObjStatement statement;
    std::size_t name_count = 0;
    while (name_count < most_libraries && statements.find_next(statement)) {
        if (statement.keyword != "mtllib") {
            continue;
        }
        for (std::string const& name : split_names(folder, statement.rest)) {
            if (++name_count > most_libraries) {
                break;
            }
            std::string const path = find_beside(folder, name);
            if (!is_file(path)) {
                messages.warn(make_text("material library ", std::string_view(name),
                                        " is not beside the model"));
            } else if (std::find(paths.begin(), paths.end(), path) == paths.end()) {
                paths.push_back(path);
            }
        }
    }
    return paths;
}

// The reader sees one material at a time, and only those that are wanted: what it keeps of each is
// large, and a material that is not used can do no harm. The first one of a name counts.
std::vector<ToolLibraryMaterial>
read_material_library(std::string const& path, std::map<std::string_view, unsigned int> groups,
                      ToolMessages& messages) {
    std::string text;
    std::vector<ToolLibraryMaterial> materials;
    std::string reason = read_input_file(path, largest_library, text);
    auto const warn = [&] {
        messages.warn(
            make_text("material library ", std::string_view(path), ": ", std::string_view(reason)));
    };
    if (!reason.empty()) {
        warn();
        return materials;
    }
    auto wanted = groups.end();
    char const* begin = text.data();
    auto const end_material = [&](char const* end) {
        if (wanted == groups.end()) {
            return;
        }
        ToolLibraryMaterial material;
        material.group = wanted->second;
        groups.erase(wanted);
        std::string_view const part(begin, static_cast<std::size_t>(end - begin));
        reason = "a material is too long";
        if (part.size() <= longest_material && read_material(part, material, reason)) {
            materials.push_back(material);
        } else {
            warn();
        }
    };
    ToolObjStatements statements(text);
    ToolObjStatement statement;
    while (statements.find_next(statement)) {
        if (statement.keyword == "newmtl") {
            end_material(statement.keyword.data());
            begin = statement.keyword.data();
            wanted = groups.find(statement.rest);
        }
    }
    end_material(text.data() + text.size());
    return materials;
}
