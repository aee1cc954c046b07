#include <bench/peers.h>
#include <bench/rows.h>

#include <platform/qz_obj.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <fstream>
#include <map>
#include <memory>

namespace {

struct ObjArrays {
    CoreArray<GMathVec3<float>> positions;
    CoreArray<unsigned int> corners, counts, groups;
    CoreArray<CoreString> names;
    CoreArray<GeometryUvMap> uv_maps;
    CoreArray<GeometryNormalMap> normal_maps;
    CoreArray<GeometryColorMap> color_maps;
    std::unique_ptr<ResourceImportData> import_data;
};

void read(std::string const& path, ObjArrays& result) {
    ObjArrays arrays;
    ResourceImportData* import_data = nullptr;
    Obj::load(path.c_str(), arrays.positions, arrays.corners, arrays.counts, arrays.groups,
              arrays.names, arrays.uv_maps, arrays.normal_maps, arrays.color_maps, import_data,
              nullptr);
    arrays.import_data.reset(import_data);
    result = std::move(arrays);
}

bool is_near(float const& a, float const& b) {
    return std::abs(a - b) <= 1e-5f * (1 + std::abs(a));
}

bool agrees(ObjArrays const& ours, BenchMesh const& theirs) {
    return std::ranges::equal(ours.corners, theirs.corners) &&
           std::ranges::equal(ours.counts, theirs.counts) &&
           std::ranges::equal(ours.positions, theirs.positions, [](auto const& a, auto const& b) {
               return is_near(a.x, b.x) && is_near(a.y, b.y) && is_near(a.z, b.z);
           });
}

// All numbers of the lines of a keyword, correctly rounded.
std::vector<float> parse(std::string const& path, std::string const& keyword) {
    std::vector<float> numbers;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with(keyword + " ")) {
            char const* next = line.data() + keyword.size();
            char const* const end = line.data() + line.size();
            for (float number = 0;;) {
                next = std::find_if(next, end, [](char const& c) { return c != ' '; });
                auto const result = std::from_chars(next, end, number);
                if (result.ec != std::errc()) {
                    break;
                }
                numbers.push_back(number);
                next = result.ptr;
            }
        }
    }
    return numbers;
}

// The first `width` components of the values are these numbers to the bit.
bool is_rounded(CoreBasicArray<GMathVec3<float>> const& values, std::vector<float> const& numbers,
                unsigned int const& width) {
    bool is_equal = numbers.size() == std::size_t(width) * values.get_count();
    for (std::size_t i = 0; is_equal && i < numbers.size(); ++i) {
        unsigned int const place = static_cast<unsigned int>(i);
        is_equal = numbers[i] == values[place / width][place % width];
    }
    return is_equal;
}

bool is_rounded(ObjArrays const& arrays, std::string const& path) {
    bool is_good = is_rounded(arrays.positions, parse(path, "v"), 3);
    for (GeometryUvMap const& map : arrays.uv_maps) {
        is_good = is_good && is_rounded(map.values, parse(path, "vt"), 2);
    }
    for (GeometryNormalMap const& map : arrays.normal_maps) {
        is_good = is_good && is_rounded(map.values, parse(path, "vn"), 3);
    }
    return is_good;
}

}  // namespace

void add_obj_rows(Bench& bench, BenchInputs& inputs) {
    std::map<std::string, double> const bars = {
        {"bunny", 10}, {"spot", 7.5}, {"sphere", 4.6}, {"terrain", 6}, {"polygons", 4.4}};
    for (std::string const& name : inputs.get_names()) {
        bench.add("obj/" + name, [=, &inputs](BenchRow& row) {
            std::string const path = inputs.get_obj(name);
            auto const arrays = std::make_shared<ObjArrays>();
            row.ours([=] { read(path, *arrays); });
            row.agree("every float correctly rounded", [=] { return is_rounded(*arrays, path); });
            if constexpr (has_tinyobjloader) {
                MeshWork const peer = make_tinyobjloader_reader(path);
                auto const bar = bars.find(name);
                row.peer("tinyobjloader", peer.work,
                         bar == bars.end() ? shown() : at_least(bar->second));
                row.agree("points and polygons", [=] { return agrees(*arrays, peer.get_mesh()); });
            } else {
                row.missing("tinyobjloader");
            }
        });
    }
}
