#include <platform/qz_geometry.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace {

using Vec = GMathVec3<float>;

constexpr unsigned long long cloud_size = sizeof(GeometryPointCloud);

std::vector<Vec> const points{{0, 0, 0}, {1, 0, 0}, {0, 2, 0}};

void init(GeometryPointCloud& cloud) { cloud.init(3, points.data(), nullptr, points.data()); }

CoreBasicArray<Vec> view(std::vector<Vec> const& values) {
    return {values.data(), static_cast<unsigned int>(values.size())};
}

class Provider : public GeometrySampleProvider {
  public:
    void fill_sample(GMathTimeSampling const&, unsigned int const&, Vec*) override {}
};

}  // namespace

TEST(GeometryPointCloud, SharesItsArraysUntilOneWrites) {
    GeometryPointCloud source(3);
    EXPECT_EQ(source.get_point_count(), 3u);
    EXPECT_FALSE(source.has_positions());
    init(source);
    GeometryPointCloud copy(source, false);
    GeometryPointCloud const deep(source, true);
    GeometryPointCloud assigned;
    EXPECT_FALSE(assigned.is_version_of(source));
    assigned = source;
    assigned = *&assigned;
    for (GeometryPointCloud const* cloud :
         std::initializer_list<GeometryPointCloud const*>{&copy, &deep, &assigned}) {
        EXPECT_EQ(&cloud->get_data() == &source.get_data(), cloud != &deep);
        EXPECT_TRUE(cloud->is_version_of(source));
    }
    EXPECT_EQ(copy.get_memory_size(), cloud_size);
    EXPECT_EQ(assigned.get_memory_size(), cloud_size);
    EXPECT_EQ(deep.get_memory_size(), source.get_memory_size());
    EXPECT_EQ(source.get_memory_size(),
              cloud_size + sizeof(GeometryPointCloudData) + 2 * (28 + 36) + 6 * 16);

    {
        GeometryPointCloud const maker(source, true);
        copy = maker;
        assigned = maker;
        EXPECT_EQ(assigned.get_memory_size(), cloud_size);
    }
    EXPECT_EQ(copy.get_memory_size(), deep.get_memory_size());
    EXPECT_EQ(assigned.get_memory_size(), cloud_size);
    copy = assigned = source;

    copy.set_positions(view({{5, 5, 5}, {6, 6, 6}, {7, 7, 7}}));
    EXPECT_NE(&copy.get_data(), &source.get_data());
    EXPECT_EQ(copy.get_data().positions[2], Vec(7, 7, 7));
    EXPECT_EQ(source.get_data().positions[2], points[2]);
    EXPECT_TRUE(copy.is_version_of(source));
    EXPECT_EQ(copy.get_memory_size(), source.get_memory_size());

    GeometryPointCloudData const* const before = &copy.get_data();
    copy.set_velocities({});
    EXPECT_EQ(&copy.get_data(), before);  // alone with its arrays
    EXPECT_FALSE(copy.is_animated());
    EXPECT_TRUE(source.is_animated());
    init(copy);
    EXPECT_FALSE(copy.is_version_of(source));
}

TEST(GeometryPointCloud, NormalisesNormals) {
    constexpr float infinity = std::numeric_limits<float>::infinity();
    GeometryPointCloud cloud(6);
    cloud.init_normals(view({{0, 0, 3},
                             {0, 0, 0},
                             {std::nanf(""), 1, 0},
                             {1e-30f, 0, 0},
                             {-1, -2, -0.0f},
                             {-infinity, 1, 0}}),
                       false);
    float const inverse = 1.0f / std::sqrt(5.0f);
    GMathShortNormal const expected[] = {{0, 0, 0x7FFF},
                                         {0, 0, 0},
                                         {0, 0, 0},
                                         {0, 0, 0},
                                         GMathShortNormal::encode({-inverse, -2 * inverse, -0.0f}),
                                         {0, 0, 0}};
    for (unsigned int i = 0; i < 6; ++i) {
        EXPECT_EQ(cloud.get_data().normals[i], expected[i]) << i;
    }
    EXPECT_EQ(expected[4].z, 0x8000);
    cloud.init_normals(view(std::vector<Vec>(6, {1, 0, 0})), true);  // those that are there stay
    CoreArray<Vec> normals;
    cloud.get_normals(normals);
    EXPECT_EQ(normals[0], Vec(0, 0, 1));
}

TEST(GeometryPointCloud, KeepsSupportExactAtTheEnds) {
    GeometryPointCloud cloud(4);
    EXPECT_EQ(cloud.get_primitive_uv(0), GMathVec2<float>(0, 0));
    unsigned int const primitives[] = {2, 0xFFFFFFFF, 0, 7};
    GMathVec2<float> const uvs[] = {{0, 1}, {1, 0}, {0.3f, 0.7f}, {0.5f, 0}};
    cloud.init_support(GeometryDescriptor(), primitives, uvs);
    GeometryPointCloudData const& data = cloud.get_data();
    EXPECT_EQ(data.support_geometries.get_count(), 1u);
    EXPECT_EQ(sizeof data.primitive_uvs[0], 4u);
    for (unsigned int i = 0; i < 4; ++i) {
        EXPECT_EQ(data.primitive_indices[i], primitives[i]);
        float const tolerance = i < 2 ? 0.0f : 0.5f / 65535.0f;
        EXPECT_NEAR(cloud.get_primitive_uv(i).x, uvs[i].x, tolerance);
        EXPECT_NEAR(cloud.get_primitive_uv(i).y, uvs[i].y, tolerance);
    }
}

TEST(GeometryPointCloud, GivesCopiesAnEmptySampleCache) {
    double const times[] = {0.0, 1.0};
    GMathTimeSampling const sampling(CoreBasicArray<double>(times, 2));
    GeometryPointCloud cloud;
    init(cloud);
    cloud.set_velocities({});
    unsigned long long const still = cloud.get_memory_size();
    cloud.set_deformation(sampling, std::make_shared<Provider>());
    EXPECT_TRUE(cloud.is_animated());
    cloud.get_data().deformation_sample_cache[1] =
        static_cast<Vec*>(core_allocate(3 * sizeof(Vec)));  // freed with the cloud
    EXPECT_EQ(cloud.get_memory_size(), still + 12 + 16 + 2 * sizeof(void*) + 36);
    GeometryPointCloud const copy(cloud, true);
    EXPECT_TRUE(copy.is_animated());
    EXPECT_EQ(copy.get_data().deformation_sample_cache[1].load(), nullptr);
    cloud.set_deformation(sampling, nullptr);
    EXPECT_FALSE(cloud.is_animated());
    EXPECT_EQ(cloud.get_memory_size(), still);
}

TEST(GeometryPointCloud, EncodesEveryNormalAsAlone) {
    constexpr float infinity = std::numeric_limits<float>::infinity();
    float const odd[] = {0.0f, -0.0f, 1e-45f, -1e-30f, 1e19f, -3e38f, infinity, -infinity, NAN};
    std::mt19937 random(1);
    std::vector<Vec> normals;
    auto const get_value = [&] {
        float const value = static_cast<float>(random()) / 0x1p31f - 1.0f;
        return random() % 20 == 0 ? odd[random() % std::size(odd)] : value;
    };
    for (unsigned int i = 0; i < 10003; ++i) {
        normals.push_back({get_value(), get_value(), get_value()});
    }
    GeometryPointCloud cloud(static_cast<unsigned int>(normals.size()));
    cloud.init_normals(view(normals), false);
    for (unsigned int i = 0; i < normals.size(); ++i) {
        float const length = gmath_length(normals[i]);
        GMathShortNormal const expected = length > 0.0f
                                              ? GMathShortNormal::encode(normals[i] * (1 / length))
                                              : GMathShortNormal{0, 0, 0};
        ASSERT_EQ(cloud.get_data().normals[i], expected) << i;
    }
}
