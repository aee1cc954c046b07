#include <poly/render/vertex_fetch.h>

#include <tests/shapes.h>

#include <gtest/gtest.h>

#include <barrier>
#include <limits>
#include <thread>

namespace {

using Times = std::vector<double>;

// Samples 0, 1 and 2 put the points at x = 1, 9 and 5.
struct CountingProvider : GeometrySampleProvider {
    void fill_sample(GMathTimeSampling const&, unsigned int const& sample,
                     GMathVec3<float>* positions) override {
        ++fill_count;
        float const x = sample == 0 ? 1.0f : sample == 1 ? 9.0f : 5.0f;
        positions[0] = positions[1] = {x, 0, 0};
    }
    std::atomic<int> fill_count{0};
};

TEST(VertexFetch, BlendsSamplesAndShutter) {
    Times const three{0, 1, 2}, none{}, closed{0};
    double const nan = std::numeric_limits<double>::quiet_NaN();
    double const above_1 = 1 + 0x1p-24 - 0x1p-40;  // narrows to 1
    struct Case {
        char const* name;
        Times samples, shutter;
        float velocity;
        double time;
        std::vector<float> weights;  // of the blend's arrays
        float x;                     // of one vertex
        int fill_count;
    };
    for (Case const& c : {
             Case{"still", none, {0, 1}, 0, nan, {1}, 0, 0},
             {"velocity at time 0", none, closed, 4, 0, {1, 0}, 0, 0},
             {"velocity in doubles", none, closed, 1.75f, above_1, {1, 1}, 1.75f + 0x1p-23f, 0},
             {"one sample is none", {7}, {0, 1}, 4, 0.5, {1, 0.5f}, 2, 0},
             {"between, velocity or not", three, closed, 4, 0.25, {0.75f, 0.25f}, 3, 2},
             {"on a sample", three, closed, 0, 1, {1}, 9, 1},
             {"before the first", three, closed, 0, -1, {1}, 1, 1},
             {"on the last", three, closed, 0, 2, {1}, 5, 1},
             {"just after a sample", three, closed, 0, 0.00005, {0.99995f}, 1, 1},
             {"just before a sample", three, closed, 0, 0.99995, {0.99995f}, 9, 1},
             {"wide shutter", three, {0, 2}, 0, 1, {0.5f, 0.5f}, 3, 2},
             {"narrow shutter", three, {0.5, 1.5}, 4, 1, {0.25f, 0.25f, 0.25f, 0.25f}, 6, 3},
             {"shutter just open", three, {0, 1}, 0, 0.00005, {0.99995f}, 1, 1},
             {"shutter nearly closed", three, {0, 1}, 0, 0.99995, {0.99995f}, 9, 1},
         }) {
        SCOPED_TRACE(c.name);
        Points const positions(2, {0, 0, 0}), velocities(2, {c.velocity, 0, 0});
        GeometryPointCloud cloud;
        cloud.init(2, positions.data(), nullptr, c.velocity == 0 ? nullptr : velocities.data());
        auto const provider = std::make_shared<CountingProvider>();
        if (!c.samples.empty()) {
            cloud.set_deformation(GMathTimeSampling(view(c.samples)), provider);
        }
        GMathTimeSampling const shutter(view(c.shutter));
        GMathVec3<float> position;
        fetch_vertex_position(cloud.get_data(), 1, c.time, shutter, position);
        EXPECT_EQ(position.x, c.x);
        GeometryPositionArray blend;
        compute_position_blend(cloud.get_data(), c.time, shutter, blend);
        EXPECT_NEAR(blend[1].x, c.x, 0.001f);
        ASSERT_EQ(blend.get_pair_count(), c.weights.size());
        for (unsigned int i = 0; i < blend.get_pair_count(); ++i) {
            EXPECT_NEAR(blend.get_weight(i), c.weights[i], 1e-7f);
        }
        EXPECT_EQ(provider->fill_count, c.fill_count);
    }
}

TEST(VertexFetch, FillsASampleOnceForAllThreads) {
    GeometryPointCloud cloud(2);
    auto const provider = std::make_shared<CountingProvider>();
    cloud.set_deformation(GMathTimeSampling(view(Times{0, 1})), provider);
    std::barrier start(8);
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([&] {
            start.arrive_and_wait();
            EXPECT_EQ(get_deformation_sample(cloud.get_data(), 1)[1].x, 9.0f);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(provider->fill_count, 1);
}

}  // namespace
