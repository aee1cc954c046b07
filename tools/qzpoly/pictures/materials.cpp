#include <tools/qzpoly/pictures/materials.h>

#include <tools/qzpoly/pictures/material_library.h>

#include <platform/qz_lwo.h>

#include <algorithm>
#include <filesystem>
#include <map>

namespace {

namespace fs = std::filesystem;

constexpr std::size_t most_textures = 1024;

using Materials = std::vector<std::optional<ToolMaterial>>;

float clamp_to_unit(float const& value) { return value > 0 ? std::min(value, 1.0f) : 0.0f; }

ToolColor to_light(GMathVec3<float> const& color) {
    return from_display(clamp_to_unit(color.x), clamp_to_unit(color.y), clamp_to_unit(color.z));
}

std::map<std::string_view, unsigned int> list_groups(PolyMesh const& mesh) {
    std::map<std::string_view, unsigned int> groups;
    CoreArray<CoreString> const& names = mesh.get_shading_group_names();
    for (unsigned int group = 0; group < names.get_count(); ++group) {
        groups.emplace(names[group].get_view(), group);
    }
    return groups;
}

void load_surface_colors(ToolMesh const& mesh, Materials& materials) {
    std::map<std::string_view, unsigned int> const groups = list_groups(*mesh.mesh);
    CoreArray<CoreString> names;
    CoreArray<GMathVec3<float>> colors;
    Lwo::load_surface_colors(CoreString(std::string_view(mesh.path)), names, colors);
    for (unsigned int i = 0; i < names.get_count(); ++i) {
        auto const group = groups.find(names[i].get_view());
        if (group != groups.end()) {
            materials[group->second] = ToolMaterial{.color = to_light(colors[i])};
        }
    }
}

// Loads each picture once, and all of them no larger than one may be.
class Textures {
  public:
    Textures(fs::path const& folder, ToolMessages& messages)
        : m_folder(folder), m_messages(messages) {}

    // Null after a warning.
    std::shared_ptr<ToolTexture const> load(std::string const& name) {
        if (m_textures.size() == most_textures && !m_textures.contains(name)) {
            m_messages.warn(make_text("more than ", most_textures, " textures"));
            return nullptr;
        }
        auto const [entry, is_new] = m_textures.try_emplace(name);
        if (is_new) {
            std::string reason;
            std::size_t size = 0;
            std::string const path = find_beside(m_folder, name);
            entry->second = load_texture(path, m_room, size, reason);
            m_room -= size;
            if (!entry->second) {
                m_messages.warn(
                    make_text("texture ", std::string_view(name), ": ", std::string_view(reason)));
            }
        }
        return entry->second;
    }

  private:
    fs::path m_folder;
    ToolMessages& m_messages;
    std::map<std::string, std::shared_ptr<ToolTexture const>> m_textures;
    std::size_t m_room = tool_largest_texture;
};

void load_libraries(ToolMesh const& mesh, ToolMessages& messages, Materials& materials) {
    fs::path const folder = fs::path(mesh.path).parent_path();
    std::map<std::string_view, unsigned int> const groups = list_groups(*mesh.mesh);
    Textures textures(folder, messages);
    for (std::string const& library : find_material_libraries(mesh.path, messages)) {
        std::map<std::string_view, unsigned int> missing = groups;
        std::erase_if(missing, [&](auto const& group) { return materials[group.second]; });
        for (ToolLibraryMaterial const& found : read_material_library(library, missing, messages)) {
            materials[found.group] = ToolMaterial{.color = to_light(found.diffuse),
                                                  .uv_scale = found.texture.scale,
                                                  .uv_offset = found.texture.offset};
            if (!found.texture.path.empty()) {
                materials[found.group]->texture = textures.load(found.texture.path);
            }
        }
    }
}

}  // namespace

Materials load_materials(ToolMesh const& mesh, ToolMessages& messages) {
    Materials materials(mesh.mesh->get_shading_group_names().get_count());
    if (mesh.is_light_wave) {
        load_surface_colors(mesh, materials);
    } else if (mesh.is_obj()) {
        load_libraries(mesh, messages, materials);
    }
    return materials;
}
