#include <poly/property/poly_mesh_property.h>
#include <tests/plain_place.h>
#include <tests/shapes.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <bit>
#include <cmath>
#include <cstring>
#include <iterator>
#include <limits>
#include <memory>
#include <random>
#include <thread>
#include <utility>

namespace {

using P = PolyMeshProperty;
using R = ResourceProperty;
using Elements = std::vector<unsigned long long>;  // in the lowest bytes
using Integers = std::vector<long long>;
using Reals = std::vector<double>;

constexpr unsigned int none = 0xFFFFFFFF;
constexpr unsigned long long top = 1ull << 63;
constexpr long long low = -0x7FFFFFFFFFFFFFFF - 1, p31 = 1ll << 31, p39 = 1ll << 39;
constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = -12345;  // what results have in place of NaN

unsigned long long f(float const& value) { return std::bit_cast<unsigned int>(value); }
unsigned long long d(double const& value) { return std::bit_cast<unsigned long long>(value); }

int deleted_count = 0;

struct Block : R {
    Block(R::Type const& type, Elements const& elements)
        : R(type, 1, static_cast<unsigned int>(elements.size())) {
        for (unsigned int i = 0; i < elements.size() && get_element_size(type) != 0; ++i) {
            std::memcpy(get_item_values(i), &elements[i], get_element_size(type));
        }
    }
    ~Block() override { ++deleted_count; }
};

// The value and the derivatives by s and t of one component; empty when there is none.
template <typename T>
std::vector<T> evaluate(GeometryProperty const& property, GeometryFragment const& fragment) {
    std::vector<T> r(4, T(77));
    if (property.evaluate(CtxEval(), fragment, &r[0], &r[1], &r[2], &r[3], 1) == 0) {
        EXPECT_EQ(r, std::vector<T>(4, T(77)));
        return {};
    }
    EXPECT_EQ(r[3], T(0));
    r.pop_back();
    for (T& x : r) {
        x = std::isnan(static_cast<double>(x)) ? T(nan) : x;
    }
    return r;
}

// A row of a triangle (primitive 0), a quad (1) and a pentagon (2 to 4).
struct PropertyTest : testing::Test {
    PropertyTest() { make_row().set(mesh); }
    // `type` may be unknown.
    P make_empty(unsigned int const& type, R::Type const& value_type,
                 bool const& owns_values = false, Reals const& times = {0}) {
        return P(mesh, P::Type(type), value_type, 1, 0, 0, "p", GMathTimeSampling(view(times)),
                 owns_values);
    }
    P make(unsigned int const& type, R::Type const& value_type, Elements const& elements,
           Numbers const& indices = {}) {
        P property = make_empty(type, value_type);
        blocks.emplace_back(new Block(value_type, elements));
        property.init_indices(view(indices));
        EXPECT_TRUE(property.init(0, blocks.back().get()));
        return property;
    }
    PolyMesh mesh;
    std::vector<std::unique_ptr<R>> blocks;
};

// Elements at the triangle's corners; their sum at weights 1/4, 1/4 and 1/2, its derivatives, and
// the element a alone, as integers and as doubles.
struct ElementRow {
    R::Type type;
    unsigned long long a, b, c;
    long long value, d_ds, d_dt, alone;
    double real, real_ds, real_dt, real_alone;
};

ElementRow const element_rows[] = {
    {R::TYPE_INT8, 0x80, 127, 0, 0, 255, 128, -128, -0.25, 255, 128, -128},
    {R::TYPE_UINT8, 255, 0, 1, 64, -255, -254, 255, 64.25, -255, -254, 255},
    {R::TYPE_INT16, 0x8000, 32767, 2, 0, 65535, 32770, -32768, 0.75, 65535, 32770, -32768},
    {R::TYPE_UINT16, 65535, 1, 3, 16385, -65534, -65532, 65535, 16385.5, -65534, -65532, 65535},
    // From here on differences wrap around, and those of unsigned elements are never negative.
    {R::TYPE_INT32, p31, p31 - 1, 0, 0, -1, -p31, -p31, 0, -1, -0x1p31, -0x1p31},
    {R::TYPE_UINT32, p31, p31 - 1, 0, p31 / 2, ~0u, p31, p31, 0x1p30, ~0u, 0x1p31, 0x1p31},
    {R::TYPE_INT64, top, top - 1, 0, 0, -1, low, low, 0, -1, -0x1p63, -0x1p63},
    {R::TYPE_UINT64, top, top - 1, ~0ull, low, -1, ~low, low, 0x1.8p63, 0x1p64, 0x1p63, 0x1p63},
    // Rounded twice, on the way to float and to double: once would give more.
    {R::TYPE_UINT64, top + p39 + 1, 0, 0, 1ll << 61, ~low - p39, ~low - p39, low + p39 + 1, 0x1p61,
     0x1p63 - 0x1p39, 0x1p63 - 0x1p39, 0x1p63 + 0x1p39},
    {R::TYPE_UINT64, top + 1025, 0, 0, 1ll << 61, ~low - 1024, ~low - 1024, low + 1025, 0x1p61,
     0x1p63 - 1024, 0x1p63 - 1024, 0x1p63},
    {R::TYPE_HALF, 0x3E00, 0x4000, 0xC500, -1, 0, -6, 1, -1.625, 0.5, -6.5, 1.5},
    {R::TYPE_HALF, 0x7E00, 0, 0, low, low, low, low, nan, nan, nan, nan},
    {R::TYPE_HALF, 0x7C00, 0xFC00, 0x7C00, low, low, low, low, nan, -inf, nan, inf},
    // Sums are formed in floats from the left, or in doubles.
    {R::TYPE_FLOAT, f(0x1p24f), f(1), f(1), 1 << 22, 1 - (1 << 24), 1 - (1 << 24), 1 << 24,
     0x1p22 + 0.5, 1 - 0x1p24, 1 - 0x1p24, 0x1p24},
    {R::TYPE_DOUBLE, d(0x1p53), d(1), d(-1), (1ll << 51) - 1, 1 - (1ll << 53), -1ll << 53,
     1ll << 53, 0x1p51 - 0.5, 1 - 0x1p53, -0x1p53, 0x1p53},
    {R::TYPE_DOUBLE, d(-1e300), 0, 0, low, low, low, low, -2.5e299, 1e300, 1e300, -1e300},
    {R::TYPE_BOOL, 255, 1, 0, 0, 2, 1, -1, 0, 2, 1, -1},
    {R::TYPE_CHOICE, 65535, 1, 3, 16385, -65534, -65532, 65535, 16385.5, -65534, -65532, 65535},
};

TEST_F(PropertyTest, EveryElementTypeConvertsInterpolatesAndDiffers) {
    for (ElementRow const& row : element_rows) {
        P const by_vertex = make(P::TYPE_VERTEX, row.type, {row.a, row.b, row.c, 0, 0, 0, 0, 0});
        GeometryFragment const inside{none, 0, 0.25, 0.5};
        Integers const integers{row.value, row.d_ds, row.d_dt};
        EXPECT_EQ(evaluate<long long>(by_vertex, inside), integers) << row.type;
        Reals const reals{row.real, row.real_ds, row.real_dt};
        EXPECT_EQ(evaluate<double>(by_vertex, inside), reals) << row.type;

        // Alone: a vertex by its number, a polygon whatever its index, and a constant anywhere.
        P const by_polygon = make(P::TYPE_POLYGON, row.type, {row.b, row.c, row.a}, {0, 0, 0});
        P const constant = make(P::TYPE_CONSTANT, row.type, {row.a, row.b});
        std::pair<P const*, GeometryFragment> const lookups[] = {
            {&by_vertex, {0, 1}}, {&by_polygon, {none, 3}}, {&constant, {none, 99}}};
        for (auto const& [property, fragment] : lookups) {
            EXPECT_EQ(evaluate<long long>(*property, fragment), (Integers{row.alone, 0, 0}));
            EXPECT_EQ(evaluate<double>(*property, fragment), (Reals{row.real_alone, 0, 0}));
        }
    }
}

TEST_F(PropertyTest, TheShortestItemDecides) {
    Numbers const offsets{0, 3, 5, 9, 9, 10, 11, 12, 90};  // lengths 3, 2, 4, 0, 1, 1, 1, 78
    R block(R::TYPE_UINT8, view(offsets));
    P property = make_empty(P::TYPE_VERTEX, R::TYPE_UINT8);
    EXPECT_TRUE(property.init(0, &block));
    std::pair<GeometryFragment, unsigned int> const rows[] = {
        {{none, 0, 1, 0}, 2}, {{none, 1, 0, 0}, 1}, {{none, 1, 1, 0}, 0},
        {{none, 5, 0, 0}, 0}, {{2, 99}, 4},         {{7, 0}, 78}};
    for (auto const& [fragment, expected] : rows) {
        Reals r(90, 77);
        EXPECT_EQ(property.evaluate(CtxEval(), fragment, &r[0], nullptr, nullptr, nullptr, 90),
                  expected);
        EXPECT_EQ(std::count(r.begin(), r.end(), 77), 90 - expected);
    }
    for (unsigned int corner = 0; corner < 3; ++corner) {
        Numbers indices(12, 0);
        indices[corner] = 1;  // past the one item
        auto const missing = make(P::TYPE_VERTEX, R::TYPE_INT8, {1}, indices);
        EXPECT_EQ(evaluate<double>(missing, {none, 0}), Reals());
    }
    EXPECT_EQ(evaluate<double>(make(P::TYPE_POLYGON, R::TYPE_INT8, {1, 2, 3}), {none, 5}), Reals());
}

TEST_F(PropertyTest, InitTakesOnlyWhatFits) {
    // Type, indices, items, whether it fits.
    unsigned int const rows[][4] = {{0, 0, 8, 1},  {0, 0, 7, 0}, {0, 12, 3, 1}, {0, 8, 8, 0},
                                    {1, 0, 3, 1},  {1, 0, 5, 0}, {1, 3, 99, 1}, {1, 12, 3, 0},
                                    {2, 0, 99, 1}, {2, 5, 1, 1}, {3, 0, 8, 0},  {77, 0, 8, 0}};
    for (auto const& [type, index_count, item_count, fits] : rows) {
        P property = make_empty(type, R::TYPE_FLOAT);
        property.init_indices(view(Numbers(index_count, 0)));
        R block(R::TYPE_FLOAT, 1, item_count);
        EXPECT_EQ(property.init(0, &block), fits) << type << " " << index_count;
        EXPECT_EQ(property.get_values_property(0), fits ? &block : nullptr);
        EXPECT_EQ(evaluate<double>(property, {none, 0}).empty(), !fits);
    }
    EXPECT_EQ(evaluate<double>(make(P::TYPE_CONSTANT, R::Type(13), {0}), {}), Reals());
}

TEST_F(PropertyTest, OwnedBlocksAreDeletedOnce) {
    R small(R::TYPE_INT8, 1, 7), floats(R::TYPE_FLOAT, 1, 8);
    std::pair<R*, bool> const refused[] = {{&small, true}, {&floats, false}, {nullptr, false}};
    for (auto const& [block, keeps_old] : refused) {
        deleted_count = 0;
        auto* const property = new P(make_empty(P::TYPE_VERTEX, R::TYPE_INT8, true));
        auto* const old = new Block(R::TYPE_INT8, Elements(8, 0));
        EXPECT_TRUE(property->init(0, new Block(R::TYPE_INT8, Elements(8, 0))));
        EXPECT_TRUE(property->init(0, old) && property->init(0, old));
        EXPECT_EQ(property->get_memory_size(), sizeof *property + old->get_memory_size());
        EXPECT_FALSE(property->init(0, block));
        EXPECT_EQ(property->get_values_property(0), keeps_old ? old : nullptr);
        EXPECT_EQ(deleted_count, keeps_old ? 1 : 2);
        EXPECT_TRUE(P::class_info().destroy(property, false));
        EXPECT_EQ(deleted_count, 2);
    }
}

TEST_F(PropertyTest, CopiesShareBlocksAndHaveTheirOwnIndices) {
    auto* const original = new P(make(P::TYPE_VERTEX, R::TYPE_INT8, {4}, Numbers(12, 0)));
    original->init_indices({original->get_indices().get_data(), 5});
    P const copy(*original);
    EXPECT_EQ(copy.get_indices().get_count(), 12u);
    EXPECT_EQ(copy.get_memory_size(), sizeof copy);
    EXPECT_TRUE(copy.is_kindof(GeometryProperty::class_info()));
    EXPECT_FALSE(original->init(0, nullptr));
    original->init_indices({});
    EXPECT_FALSE(original->has_indices());
    delete original;
    EXPECT_EQ(evaluate<double>(copy, {none, 0}), (Reals{4, 0, 0}));
    mesh.add_property(copy);
    EXPECT_EQ(mesh.find_property("p"), &mesh.get_property(0));
    EXPECT_EQ(PolyMesh(mesh).get_property_count(), 0u);
}

TEST_F(PropertyTest, SamplesBlendBetweenTheirTimes) {
    P property = make_empty(P::TYPE_CONSTANT, R::TYPE_INT64, true, {0, 1, 3, 5, 6});
    EXPECT_TRUE(property.init(0, new Block(R::TYPE_INT64, {3})));
    EXPECT_TRUE(property.init(1, new Block(R::TYPE_INT64, {0ull - 4})));
    EXPECT_EQ(evaluate<double>(property, {0, 0, 0, 0, 2}), Reals());
    EXPECT_TRUE(property.init(2, new Block(R::TYPE_INT64, {top - 1})));
    EXPECT_TRUE(property.init(3, new Block(R::TYPE_INT64, {top - 1})));
    EXPECT_TRUE(property.init(4, new Block(R::TYPE_INT64, {7})));
    std::pair<double, double> const rows[] = {{-9, 3},     {0.5, -0.5}, {0.75, -2.25}, {1, -4},
                                              {2, 0x1p62}, {4, 0x1p63}, {9, 7}};
    for (auto const& [time, value] : rows) {
        EXPECT_EQ(evaluate<double>(property, {0, 0, 0, 0, time}), (Reals{value, 0, 0}));
    }
    EXPECT_EQ(evaluate<long long>(property, {0, 0, 0, 0, 0.75})[0], -2);
    EXPECT_EQ(evaluate<long long>(property, {0, 0, 0, 0, 4})[0], ~low);
    P endless = make_empty(P::TYPE_CONSTANT, R::TYPE_DOUBLE, true, {0, 1});
    EXPECT_TRUE(endless.init(0, new Block(R::TYPE_DOUBLE, {d(inf)})));
    EXPECT_TRUE(endless.init(1, new Block(R::TYPE_DOUBLE, {d(inf)})));
    EXPECT_EQ(evaluate<double>(endless, {0, 0, 0, 0, 0.5})[0], inf);
    // As many components as both samples have.
    EXPECT_TRUE(property.init(2, new R(R::TYPE_INT64, 2, 1)));
    double r[2];
    EXPECT_EQ(property.evaluate(CtxEval(), {0, 0, 0, 0, 2}, r, nullptr, nullptr, nullptr, 2), 1u);
}

struct Half {
    explicit Half(unsigned long const& value) : bits(static_cast<unsigned short>(value)) {}
    operator float() const { return GMathHalfFloatConverter::s_conv_htof[bits]; }
    unsigned short bits;
};

// Random items, by vertex or by corner, at random places and at or between two times.
template <typename E>
void check_random(unsigned int const& seed, R::Type const& type) {
    std::mt19937 random(seed);
    PolyMesh mesh;
    make_even_soup(seed).set(mesh);
    unsigned int const extent = 1 + seed % 2, count = mesh.get_vertex_count();
    Numbers items = make_even_soup(seed).vertex_indices, indices(seed % 4 / 2 * items.size());
    std::generate(indices.begin(), indices.end(), [&] { return unsigned(random() % count); });
    P property(mesh, P::TYPE_VERTEX, type, extent, 0, 0, "p", GMathTimeSampling(view(Reals{0, 1})),
               true);
    property.init_indices(view(indices));
    items = indices.empty() ? items : indices;
    std::vector<E> elements[2];
    for (unsigned int sample = 0; sample < 2; ++sample) {
        auto* const block = new R(type, extent, count);
        std::generate_n(std::back_inserter(elements[sample]), count * extent,
                        [&] { return E(random() % 100); });
        std::memcpy(block->get_item_values(0), &elements[sample][0], sizeof(E) * count * extent);
        ASSERT_TRUE(property.init(sample, block));
    }
    for (unsigned int i = 0; i < 50; ++i) {
        auto const get_number = [&] {
            return i % 2 == 0 ? double(random() % 5) / 4 : double(random() % 1000) / 999;
        };
        GeometryFragment const fragment{none, unsigned(random() % mesh.get_primitive_count()),
                                        get_number(), get_number(), double(random() % 3) / 2};
        PlainPlace place(mesh.get_topology(), fragment.primitive_index, fragment.s, fragment.t);
        place.w[0] = (1.0f - place.w[1]) - place.w[2];
        double r[3][2];
        ASSERT_EQ(property.evaluate(CtxEval(), fragment, r[0], r[1], r[2], nullptr, 2), extent);
        for (unsigned int k = 0; k < 3 * extent; ++k) {
            auto const get = [&](unsigned int const& sample) {
                auto const element = [&](unsigned int const& corner) {
                    return elements[sample][items[place.ids[corner]] * extent + k / 3];
                };
                using Real = std::conditional_t<std::is_same_v<E, double>, double, float>;
                Real const x[] = {Real(element(0)), Real(element(1)), Real(element(2))};
                return k % 3 == 0   ? double(place.interpolate(x)[0])
                       : k % 3 == 1 ? double(element(1) - element(place.s_start))
                                    : double(element(2) - element(place.t_start));
            };
            double const a = get(0), b = get(1), time = fragment.time;
            EXPECT_EQ(r[k % 3][k / 3], time == 1 ? b
                                       : a == b  ? a
                                                 : a + (b - a) * time)
                << type << " " << seed;
        }
    }
}

template <typename... E>
void check_all(unsigned int const& seed) {
    unsigned int type = 0;
    (check_random<E>(seed, R::Type(type++)), ...);
}

TEST(Property, EvaluatesAsItsDefinitionSays) {
    for (unsigned int seed = 0; seed < 24; ++seed) {
        check_all<signed char, unsigned char, short, unsigned short, int, unsigned int, long long,
                  unsigned long long, Half, float, double, signed char, unsigned short>(seed);
    }
}

// Has a block for sample 0 alone.
struct LazyProperty : P {
    using P::P;
    void _load_data(unsigned int const& sample) override {
        ++load_count;
        std::this_thread::yield();
        init(sample, sample == 0 ? new Block(R::TYPE_INT8, {6}) : nullptr);
    }
    std::atomic<int> load_count{0};
};

TEST_F(PropertyTest, OneOfManyThreadsLoadsABlock) {
    Reals const times{0, 1};
    LazyProperty property(mesh, P::TYPE_CONSTANT, R::TYPE_INT8, 1, 1, 0, "lazy",
                          GMathTimeSampling(view(times)), true);
    std::atomic<int> right_count{0};
    std::vector<std::jthread> threads(8);
    for (std::jthread& thread : threads) {
        thread = std::jthread([&] {
            right_count += evaluate<double>(property, {}) == Reals{6, 0, 0} &&
                           evaluate<double>(property, {0, 0, 0, 0, 0.5}).empty();
        });
    }
    threads.clear();
    EXPECT_EQ(right_count, 8);
    EXPECT_EQ(property.load_count, 2);
}

}  // namespace
