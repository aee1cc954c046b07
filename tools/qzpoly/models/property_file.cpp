#include <tools/qzpoly/models/property_file.h>

#include <tools/qzpoly/terminal/json_out.h>

#include <platform/qz_sys.h>

#include <algorithm>
#include <cmath>
#include <istream>
#include <iterator>
#include <streambuf>
#include <vector>

namespace {

// What a file says, checked for form but not yet against the mesh.
struct PropertyText {
    std::string name;
    PolyMeshProperty::Type kind;
    ResourceProperty::Type value_type;
    unsigned int extent = 1;
    std::vector<ToolJson const*> values;  // one list a time
    std::vector<unsigned int> indices;
    std::vector<double> times = {0.0};
};

struct PropertyError {
    std::string reason;
};

[[noreturn]] void refuse(std::string const& reason) { throw PropertyError{reason}; }

constexpr char const* kind_names[] = {"vertex", "polygon", "constant"};
constexpr char const* value_type_names[] = {"int8",   "uint8", "int16",  "uint16", "int32",
                                            "uint32", "int64", "uint64", "half",   "float",
                                            "double", "bool",  "choice"};

ToolJson const& get_member(ToolJson const& json, char const* key) {
    auto const found = json.find(key);
    if (found == json.end()) {
        refuse(make_text("there is no \"", key, "\""));
    }
    return *found;
}

template <std::size_t count>
unsigned int find_name(ToolJson const& json, char const* key, char const* const (&names)[count]) {
    ToolJson const& value = get_member(json, key);
    auto const* const found =
        std::find_if(std::begin(names), std::end(names), [&](char const* name) {
            return value.is_string() && value.get_ref<std::string const&>() == name;
        });
    if (found == std::end(names)) {
        refuse(make_text("\"", key, "\" is none of those known"));
    }
    return static_cast<unsigned int>(found - std::begin(names));
}

unsigned int get_unsigned(ToolJson const& value, char const* key) {
    if (!value.is_number_unsigned() || value.get<unsigned long long>() > 0xFFFFFFFFull) {
        refuse(
            make_text("\"", key, "\" holds something other than whole numbers from 0 to 2^32 - 1"));
    }
    return value.get<unsigned int>();
}

void read_times(ToolJson const& json, PropertyText& text) {
    auto const found = json.find("times");
    if (found == json.end()) {
        return;
    }
    text.times.clear();
    for (ToolJson const& time : *found) {
        if (!time.is_number() || !std::isfinite(time.get<double>())) {
            refuse("\"times\" holds something other than numbers");
        }
        text.times.push_back(time.get<double>());
    }
    if (text.times.empty() || !std::is_sorted(text.times.begin(), text.times.end())) {
        refuse("\"times\" must hold one time or more, in ascending order");
    }
}

// A flat list of numbers for a single time may stand for itself.
void read_values(ToolJson const& json, PropertyText& text) {
    ToolJson const& values = get_member(json, "values");
    if (!values.is_array()) {
        refuse("\"values\" is no list");
    }
    bool const is_flat = values.empty() || !values[0].is_array();
    if (is_flat) {
        text.values.push_back(&values);
    } else {
        for (ToolJson const& list : values) {
            text.values.push_back(&list);
        }
    }
    if (text.values.size() != text.times.size()) {
        refuse(make_text("there are ", text.values.size(), " lists of values for ",
                         text.times.size(), " times"));
    }
}

class FileBuffer : public std::streambuf {
  public:
    explicit FileBuffer(SysFile& file) : m_file(file) {}

  protected:
    int_type underflow() override {
        std::size_t const size = m_file.read(m_block, sizeof m_block);
        setg(m_block, m_block, m_block + size);
        return size == 0 ? traits_type::eof() : traits_type::to_int_type(*m_block);
    }

  private:
    SysFile& m_file;
    char m_block[1 << 16] = {};
};

ToolJson read_json(std::string const& path) {
    SysFile file;
    file.open(CoreString(std::string_view(path)), SysFile::MODE_READ);
    FileBuffer buffer(file);
    std::istream stream(&buffer);
    try {
        return ToolJson::parse(stream);
    } catch (std::exception const&) {
        if (file.has_failed()) {
            refuse(std::string(file.get_error().get_view()));
        }
        throw;
    }
}

PropertyText read_text(ToolJson const& json) {
    if (!json.is_object()) {
        refuse("it holds no JSON object");
    }
    PropertyText text;
    ToolJson const& name = get_member(json, "name");
    if (!name.is_string()) {
        refuse("\"name\" is no text");
    }
    text.name = name.get<std::string>();
    text.kind = static_cast<PolyMeshProperty::Type>(find_name(json, "kind", kind_names));
    text.value_type =
        static_cast<ResourceProperty::Type>(find_name(json, "value_type", value_type_names));
    if (json.contains("extent")) {
        text.extent = get_unsigned(json["extent"], "extent");
    }
    if (json.contains("indices")) {
        for (ToolJson const& index : json["indices"]) {
            text.indices.push_back(get_unsigned(index, "indices"));
        }
    }
    read_times(json, text);
    if (text.times.size() > 1 && text.extent > GeometryProperty::largest_blend_count) {
        refuse(make_text("\"extent\" is ", text.extent, ", and at most ",
                         GeometryProperty::largest_blend_count, " of several times are blended"));
    }
    read_values(json, text);
    return text;
}

// The nearest half, ties to even; beyond the largest, infinity.
unsigned short get_half(double const& value) {
    unsigned int const sign = std::signbit(value) ? 0x8000u : 0u;
    double const magnitude = std::fabs(value);
    if (std::isnan(value)) {
        return 0x7E00;
    }
    if (magnitude >= 65520.0) {
        return static_cast<unsigned short>(sign | 0x7C00u);
    }
    int exponent = 0;
    std::frexp(magnitude, &exponent);
    int const step_exponent = std::max(exponent - 11, -24);  // of the last of its 11 bits
    double const steps = std::nearbyint(std::ldexp(magnitude, -step_exponent));
    // Steps of the smallest size count up through the subnormals; above, the exponent is added.
    unsigned int const bits =
        static_cast<unsigned int>(steps) + (static_cast<unsigned int>(step_exponent + 24) << 10);
    return static_cast<unsigned short>(sign | bits);
}

template <typename T>
void store_number(ToolJson const& value, void* element) {
    T number{};
    if constexpr (std::is_floating_point_v<T>) {
        number = static_cast<T>(value.get<double>());
    } else {
        bool const fits =
            value.is_number_unsigned()
                ? std::in_range<T>(value.get<unsigned long long>())
                : value.is_number_integer() && std::in_range<T>(value.get<long long>());
        if (!fits) {
            refuse(make_text("the value ", std::string_view(value.dump()),
                             " does not fit the value type"));
        }
        number = value.is_number_unsigned() ? static_cast<T>(value.get<unsigned long long>())
                                            : static_cast<T>(value.get<long long>());
    }
    std::memcpy(element, &number, sizeof number);
}

void store_half(ToolJson const& value, void* element) {
    unsigned short const half = get_half(value.get<double>());
    std::memcpy(element, &half, sizeof half);
}

// By value type.
constexpr void (*store_functions[])(ToolJson const& value, void* element) = {
    store_number<signed char>,
    store_number<unsigned char>,
    store_number<short>,
    store_number<unsigned short>,
    store_number<int>,
    store_number<unsigned int>,
    store_number<long long>,
    store_number<unsigned long long>,
    store_half,
    store_number<float>,
    store_number<double>,
    store_number<signed char>,
    store_number<unsigned short>,
};
static_assert(std::size(store_functions) == std::size(value_type_names));

std::unique_ptr<ResourceProperty> make_block(PropertyText const& text, ToolJson const& values) {
    unsigned int const extent = text.extent;
    if (!values.is_array() || extent == 0 || values.size() % extent != 0 ||
        values.size() > 0x0FFFFFFFu) {
        refuse(make_text(values.size(), " values do not make whole items of extent ", extent));
    }
    auto const item_count = static_cast<unsigned int>(values.size() / extent);
    auto block = std::make_unique<ResourceProperty>(text.value_type, extent, item_count);
    auto* element = static_cast<unsigned char*>(block->get_item_values(0));
    for (ToolJson const& value : values) {
        if (!value.is_number()) {
            refuse("\"values\" holds something other than numbers");
        }
        store_functions[text.value_type](value, element);
        element += ResourceProperty::get_element_size(text.value_type);
    }
    return block;
}

// Every item that a corner names must be there, or evaluating would read past the block.
void check_items(PropertyText const& text, unsigned int const& item_count) {
    for (unsigned int const index : text.indices) {
        if (index >= item_count) {
            refuse(make_text("index ", index, " names none of the ", item_count, " items"));
        }
    }
    if (text.kind == PolyMeshProperty::TYPE_CONSTANT && item_count == 0) {
        refuse("a constant needs 1 item, and there are 0");
    }
}

// What the mesh has for items, or indices, to belong to.
struct NeededCount {
    char const* what;
    unsigned int count;
};

NeededCount get_needed_count(PropertyText const& text, PolyMesh const& mesh) {
    if (text.kind == PolyMeshProperty::TYPE_POLYGON) {
        return {"polygons", mesh.get_polygon_count()};
    }
    return text.indices.empty() ? NeededCount{"vertices", mesh.get_vertex_count()}
                                : NeededCount{"polygon corners", mesh.get_polygon_index_count()};
}

std::unique_ptr<PolyMeshProperty> make_property(PropertyText const& text, PolyMesh const& mesh) {
    auto const count = [](auto const& list) { return static_cast<unsigned int>(list.size()); };
    if (text.kind != PolyMeshProperty::TYPE_VERTEX && !text.indices.empty()) {
        refuse("only a vertex property has indices");
    }
    auto property = std::make_unique<PolyMeshProperty>(
        mesh, text.kind, text.value_type, text.extent,
        count(*text.values[0]) / std::max(1u, text.extent), count(text.indices),
        CoreString(std::string_view(text.name)),
        GMathTimeSampling(CoreBasicArray<double>(text.times.data(), count(text.times))), true);
    property->init_indices({text.indices.data(), count(text.indices)});
    for (unsigned int sample = 0; sample < count(text.values); ++sample) {
        std::unique_ptr<ResourceProperty> block = make_block(text, *text.values[sample]);
        check_items(text, block->get_item_count());
        if (!property->init(sample, block.get())) {
            NeededCount const needed = get_needed_count(text, mesh);
            refuse(make_text(text.indices.empty() ? block->get_item_count() : count(text.indices),
                             text.indices.empty() ? " items" : " indices", " do not fit the ",
                             needed.count, " ", needed.what, " of the mesh"));
        }
        static_cast<void>(block.release());  // the property owns it now
    }
    return property;
}

}  // namespace

std::unique_ptr<PolyMeshProperty> load_property(std::string const& file, PolyMesh const& mesh,
                                                ToolMessages& messages) {
    try {
        ToolJson const json = read_json(file);
        return make_property(read_text(json), mesh);
    } catch (PropertyError const& error) {
        messages.fail(
            make_text("property ", std::string_view(file), ": ", std::string_view(error.reason)));
    } catch (std::exception const& error) {
        messages.fail(make_text("property ", std::string_view(file), ": ", error.what()));
    }
    return nullptr;
}
