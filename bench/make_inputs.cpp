#include <bench/make_inputs.h>

#include <platform/qz_obj.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <numbers>
#include <random>

namespace {

using Vec = GMathVec3<float>;

// From -1 to 1, the same with every standard library.
class Noise {
  public:
    explicit Noise(unsigned int const& seed) : m_random(seed) {}
    float operator()(float const& size) {
        return size * (static_cast<float>(m_random() >> 8) * 0x1p-23f - 1.0f);
    }
    unsigned int below(unsigned int const& end) {
        return static_cast<unsigned int>(m_random() % end);
    }

  private:
    std::mt19937 m_random;
};

// Text and bytes of a file, collected in memory.
class Writer {
  public:
    Writer& operator<<(std::string_view const& text) {
        m_bytes += text;
        return *this;
    }
    Writer& operator<<(unsigned int const& number) {
        char text[16];
        m_bytes.append(text, std::to_chars(text, text + sizeof text, number).ptr);
        return *this;
    }
    // Six decimals, as most programs write.
    Writer& operator<<(float const& number) {
        char text[64];
        std::to_chars_result const result =
            std::to_chars(text, text + sizeof text, number, std::chars_format::fixed, 6);
        m_bytes.append(text, result.ptr);
        return *this;
    }
    Writer& row(char const* keyword, Vec const& v, unsigned int const& count) {
        *this << keyword;
        for (unsigned int i = 0; i < count; ++i) {
            *this << " " << v[i];
        }
        return *this << "\n";
    }

    void big_endian(unsigned int const& number, unsigned int const& size) {
        for (unsigned int i = size; i-- > 0;) {
            m_bytes += static_cast<char>(number >> (8 * i));
        }
    }
    void big_endian(float const& number) { big_endian(std::bit_cast<unsigned int>(number), 4); }
    // An index of LightWave objects: two bytes, or four from 0xFF00 on.
    void index(unsigned int const& number) {
        number < 0xFF00 ? big_endian(number, 2) : big_endian(number | 0xFF000000u, 4);
    }

    std::string const& get_bytes() const { return m_bytes; }
    void write(std::string const& path) const {
        std::ofstream(path + ".new", std::ios::binary) << m_bytes;
        std::filesystem::rename(path + ".new", path);
    }

  private:
    std::string m_bytes;
};

std::string make_obj(BenchMesh const& mesh, std::string const& path) {
    Writer file;
    for (Vec const& v : mesh.positions) {
        file.row("v", v, 3);
    }
    for (Vec const& v : mesh.uvs) {
        file.row("vt", v, 2);
    }
    for (Vec const& v : mesh.normals) {
        file.row("vn", v, 3);
    }
    std::size_t corner = 0;
    for (unsigned int const& count : mesh.counts) {
        file << "f";
        for (std::size_t const end = corner + count; corner < end; ++corner) {
            file << " " << mesh.corners[corner] + 1;
            if (!mesh.uvs.empty()) {
                file << "/" << mesh.uv_corners[corner] + 1 << "/" << mesh.corners[corner] + 1;
            }
        }
        file << "\n";
    }
    file.write(path);
    return path;
}

void add_chunk(Writer& file, char const* id, Writer const& data) {
    file << id;
    file.big_endian(static_cast<unsigned int>(data.get_bytes().size()), 4);
    file << data.get_bytes() << std::string_view("\0", data.get_bytes().size() % 2);
}

// The head of a uv map "uv".
Writer make_uv_map() {
    Writer map;
    map << "TXUV";
    map.big_endian(2, 2);
    map << std::string_view("uv\0\0", 4);
    return map;
}

std::string make_lwo(BenchMesh const& mesh, std::string const& path) {
    Writer tags, layer, points, polygons, surfaces, surface;
    Writer by_point = make_uv_map(), by_corner = make_uv_map();
    tags << std::string_view("ground\0\0", 8);
    layer << std::string(18, '\0');
    surface << std::string_view("ground\0\0\0\0", 10);
    for (unsigned int i = 0; i < mesh.positions.size(); ++i) {
        Vec const& v = mesh.positions[i];
        points.big_endian(v.x);
        points.big_endian(v.y);
        points.big_endian(v.z);
        by_point.index(i);
        by_point.big_endian(v.x * 0x1p-10f);
        by_point.big_endian(v.y * 0x1p-10f);
    }
    polygons << "FACE";
    surfaces << "SURF";
    std::size_t corner = 0;
    for (unsigned int i = 0; i < mesh.counts.size(); ++i) {
        polygons.big_endian(mesh.counts[i], 2);
        for (unsigned int k = 0; k < mesh.counts[i]; ++k, ++corner) {
            polygons.index(mesh.corners[corner]);
            if (i % 10 == 0) {
                by_corner.index(mesh.corners[corner]);
                by_corner.index(i);
                by_corner.big_endian(k % 2 == 0 ? 0.0f : 1.0f);
                by_corner.big_endian(k < 2 ? 0.0f : 1.0f);
            }
        }
        surfaces.index(i);
        surfaces.big_endian(0, 2);
    }
    Writer chunks, file;
    add_chunk(chunks, "TAGS", tags);
    add_chunk(chunks, "LAYR", layer);
    add_chunk(chunks, "PNTS", points);
    add_chunk(chunks, "VMAP", by_point);
    add_chunk(chunks, "POLS", polygons);
    add_chunk(chunks, "PTAG", surfaces);
    add_chunk(chunks, "VMAD", by_corner);
    add_chunk(chunks, "SURF", surface);
    file << "FORM";
    file.big_endian(static_cast<unsigned int>(chunks.get_bytes().size()) + 4, 4);
    file << "LWO2" << chunks.get_bytes();
    file.write(path);
    return path;
}

template <typename T>
std::vector<T> copy(CoreBasicArray<T> const& array) {
    return {array.begin(), array.end()};
}

BenchMesh read_model(std::string const& path) {
    CoreArray<Vec> positions;
    CoreArray<unsigned int> corners, counts, groups;
    CoreArray<CoreString> names;
    CoreArray<GeometryUvMap> uv_maps;
    CoreArray<GeometryNormalMap> normal_maps;
    CoreArray<GeometryColorMap> color_maps;
    ResourceImportData* import_data = nullptr;
    Obj::load(path.c_str(), positions, corners, counts, groups, names, uv_maps, normal_maps,
              color_maps, import_data, nullptr);
    delete import_data;
    return {copy(positions), copy(corners), copy(counts), {}, {}, {}};
}

}  // namespace

BenchMesh make_sphere(unsigned int const& segments, unsigned int const& rings) {
    BenchMesh mesh;
    unsigned int const n = segments;
    auto const get_place = [&](unsigned int const& ring, unsigned int const& segment) {
        double const a = std::numbers::pi * ring / rings, b = 2 * std::numbers::pi * segment / n;
        return Vec(
            GMathVec3<double>(std::sin(a) * std::cos(b), std::cos(a), -std::sin(a) * std::sin(b)));
    };
    for (unsigned int ring = 0; ring <= rings; ++ring) {
        unsigned int const vertex_count = ring == 0 || ring == rings ? 1 : n;
        for (unsigned int segment = 0; segment < vertex_count; ++segment) {
            mesh.positions.push_back(get_place(ring, segment));
        }
        for (unsigned int segment = 0; segment <= n; ++segment) {
            mesh.uvs.emplace_back(static_cast<float>(segment) / static_cast<float>(n),
                                  1.0f - static_cast<float>(ring) / static_cast<float>(rings), 0);
        }
    }
    mesh.normals = mesh.positions;
    auto const add_corner = [&](unsigned int const& ring, unsigned int const& segment) {
        mesh.corners.push_back(ring == 0 ? 0 : 1 + (ring - 1) * n + (ring < rings) * (segment % n));
        mesh.uv_corners.push_back(ring * (n + 1) + segment);
    };
    for (unsigned int ring = 0; ring < rings; ++ring) {
        for (unsigned int segment = 0; segment < n; ++segment) {
            std::size_t const first = mesh.corners.size();
            add_corner(ring, segment);
            add_corner(ring + 1, segment);
            if (ring + 1 < rings) {
                add_corner(ring + 1, segment + 1);
            }
            if (ring > 0) {
                add_corner(ring, segment + 1);
            }
            mesh.counts.push_back(static_cast<unsigned int>(mesh.corners.size() - first));
        }
    }
    return mesh;
}

BenchMesh make_terrain(unsigned int const& size) {
    BenchMesh mesh;
    Noise noise(1);
    for (unsigned int y = 0; y <= size; ++y) {
        for (unsigned int x = 0; x <= size; ++x) {
            float const u = static_cast<float>(x), v = static_cast<float>(y);
            mesh.positions.emplace_back(u + noise(0.2f), v + noise(0.2f), noise(0.2f));
        }
    }
    for (unsigned int y = 0; y < size; ++y) {
        for (unsigned int x = 0; x < size; ++x) {
            unsigned int const first = y * (size + 1) + x;
            mesh.corners.insert(mesh.corners.end(),
                                {first, first + 1, first + size + 2, first + size + 1});
        }
    }
    mesh.counts.assign(std::size_t(size) * size, 4);
    return mesh;
}

BenchMesh make_polygons(unsigned int const& width, unsigned int const& height) {
    BenchMesh mesh;
    Noise noise(2);
    auto const add_vertex = [&](float const& x, float const& y) {
        mesh.positions.emplace_back(x + noise(0.1f), y + noise(0.1f), noise(0.05f));
        return static_cast<unsigned int>(mesh.positions.size()) - 1;
    };
    // A side between two grid points: up to two more vertices on it.
    using Side = std::vector<unsigned int>;
    auto const make_side = [&](float const& x, float const& y, bool const& is_upright,
                               unsigned int const& fewest) {
        Side side;
        unsigned int const count = fewest + noise.below(3 - fewest);
        for (unsigned int i = 1; i <= count; ++i) {
            float const along = static_cast<float>(i) / static_cast<float>(count + 1);
            side.push_back(is_upright ? add_vertex(x, y + along) : add_vertex(x + along, y));
        }
        return side;
    };
    auto const add_side = [&](unsigned int const& corner, Side const& side,
                              bool const& is_backwards) {
        mesh.corners.push_back(corner);
        is_backwards ? mesh.corners.insert(mesh.corners.end(), side.rbegin(), side.rend())
                     : mesh.corners.insert(mesh.corners.end(), side.begin(), side.end());
    };
    std::vector<unsigned int> below(width + 1);
    std::vector<Side> floors(width);
    for (unsigned int x = 0; x <= width; ++x) {
        below[x] = add_vertex(static_cast<float>(x), 0);
    }
    for (unsigned int x = 0; x < width; ++x) {
        floors[x] = make_side(static_cast<float>(x), 0, false, 0);
    }
    for (unsigned int row = 0; row < height; ++row) {
        float const y = static_cast<float>(row);
        unsigned int left_above = add_vertex(0, y + 1);
        Side left = make_side(0, y, true, 0);
        for (unsigned int column = 0; column < width; ++column) {
            float const x = static_cast<float>(column);
            std::size_t const first = mesh.corners.size();
            unsigned int const right_above = add_vertex(x + 1, y + 1);
            Side const right = make_side(x + 1, y, true, 0);
            bool const is_bare = floors[column].empty() && left.empty() && right.empty();
            Side const ceiling = make_side(x, y + 1, false, is_bare ? 1 : 0);
            add_side(below[column], floors[column], false);
            add_side(below[column + 1], right, false);
            add_side(right_above, ceiling, true);
            add_side(left_above, left, true);
            mesh.counts.push_back(static_cast<unsigned int>(mesh.corners.size() - first));
            floors[column] = ceiling;
            below[column] = left_above;
            left_above = right_above;
            left = right;
        }
        below[width] = left_above;
    }
    return mesh;
}

BenchMesh make_fans(BenchMesh const& mesh) {
    BenchMesh fans;
    fans.positions = mesh.positions;
    unsigned int const* corners = mesh.corners.data();
    for (unsigned int const& count : mesh.counts) {
        for (unsigned int k = 2; k < count; ++k) {
            fans.corners.insert(fans.corners.end(), {corners[0], corners[k - 1], corners[k]});
            fans.counts.push_back(3);
        }
        corners += count;
    }
    return fans;
}

BenchInputs::BenchInputs(std::string const& folder, bool const& is_short)
    : m_folder(folder), m_is_short(is_short), m_names({"sphere", "terrain", "polygons"}) {
    char const* const models = std::getenv("QZ_POLY_MODELS");
    m_models = models != nullptr ? models : "";
    for (char const* const name : {"bunny", "spot", "rocker-arm"}) {
        if (std::filesystem::exists(get_model(name))) {
            m_names.emplace_back(name);
        }
    }
}

bool BenchInputs::has(std::string const& name) const {
    std::string const whole = name.substr(0, name.find("-triangles"));
    return std::find(m_names.begin(), m_names.end(), whole) != m_names.end();
}

BenchMesh const& BenchInputs::get_mesh(std::string const& name) {
    auto const [entry, is_new] = m_meshes.try_emplace(name);
    if (is_new) {
        unsigned int const size = m_is_short ? 300 : 1000;
        std::size_t const suffix = name.find("-triangles");
        entry->second = suffix != name.npos  ? make_fans(get_mesh(name.substr(0, suffix)))
                        : name == "sphere"   ? make_sphere(size, size)
                        : name == "terrain"  ? make_terrain(size)
                        : name == "polygons" ? make_polygons(size / 2, size * 2 / 5)
                                             : read_model(get_model(name));
    }
    return entry->second;
}

std::string BenchInputs::get_obj(std::string const& name) {
    if (std::string const model = get_model(name); std::filesystem::exists(model)) {
        return model;
    }
    std::string const path = get_file(name + ".obj");
    return std::filesystem::exists(path) ? path : make_obj(get_mesh(name), path);
}

std::string BenchInputs::get_terrain_obj(unsigned int const& size) {
    std::string const path = get_file("terrain-" + std::to_string(size) + ".obj");
    return std::filesystem::exists(path) ? path : make_obj(make_terrain(size), path);
}

std::vector<std::string> BenchInputs::get_small_objs(unsigned int const& count) {
    std::vector<std::string> paths;
    for (unsigned int i = 0; i < count; ++i) {
        std::string const path = get_file("small-" + std::to_string(i) + ".obj");
        paths.push_back(path);
        if (!std::filesystem::exists(path)) {
            unsigned int const size = 60 + i % 20;
            make_obj(i % 3 == 0   ? make_sphere(size, size)
                     : i % 3 == 1 ? make_terrain(size)
                                  : make_polygons(size, size),
                     path);
        }
    }
    return paths;
}

std::string BenchInputs::get_lwo() {
    std::string const path = get_file("terrain.lwo");
    return std::filesystem::exists(path) ? path : make_lwo(get_mesh("terrain"), path);
}

std::string BenchInputs::get_model(std::string const& name) const {
    return m_models + "/obj/c3d-" + (name == "bunny" ? "stanford-bunny" : name) + ".obj";
}

std::string BenchInputs::get_file(std::string const& name) const {
    std::filesystem::path const folder =
        std::filesystem::path(m_folder) / (m_is_short ? "short" : "long");
    std::filesystem::create_directories(folder);
    return folder / name;
}
