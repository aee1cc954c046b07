#include <fuzz/query_geometry.h>
#include <fuzz/query_property.h>
#include <poly/mesh/mesh_invariants.h>
#include <poly/property/poly_mesh_property.h>
#include <poly/smoothed/poly_mesh_smoothed.h>
#include <tests/answers.h>
#include <tests/log_capture.h>
#include <tests/scratch_path.h>
#include <tests/shapes.h>

#include <gtest/gtest.h>

#include <atomic>
#include <barrier>
#include <fstream>
#include <thread>

// Their worth shows under a thread sanitizer.

namespace {

// Runs `work(number)` on so many threads at once.
template <typename Work>
void run_at_once(int const& count, Work const& work) {
    std::barrier start(count);
    std::vector<std::jthread> threads;
    for (int i = 0; i < count; ++i) {
        threads.emplace_back([&, i] {
            start.arrive_and_wait();
            work(i);
        });
    }
}

struct Wave : GeometrySampleProvider {
    explicit Wave(Points positions) : rest(std::move(positions)) {}
    void fill_sample(GMathTimeSampling const&, unsigned int const& sample,
                     GMathVec3<float>* positions) override {
        for (std::size_t i = 0; i < rest.size(); ++i) {
            positions[i] = rest[i] + GMathVec3<float>(0, 0, static_cast<float>(sample));
        }
    }
    Points rest;
};

struct LazyHeat : PolyMeshProperty {
    using PolyMeshProperty::PolyMeshProperty;
    void _load_data(unsigned int const& sample) override {
        unsigned int const count = get_mesh().get_vertex_count();
        init(sample, new ResourceProperty(ResourceProperty::TYPE_FLOAT, 1, count));
    }
};

// A moving mesh, its smoothed view and a property, none of whose caches is filled.
struct Scene {
    Scene() {
        Shape const soup = make_soup(2);
        soup.set(mesh);
        std::vector<double> const times{0, 1, 2};
        GMathTimeSampling const sampling(view(times));
        GeometryPointCloud cloud(*mesh.get_point_cloud());
        cloud.set_deformation(sampling, std::make_shared<Wave>(soup.positions));
        EXPECT_TRUE(mesh.set_point_cloud(cloud, nullptr));
        smoothed.set(mesh, 40, 0xFFFFFFFFu, nullptr);
        heat = std::make_unique<LazyHeat>(mesh, PolyMeshProperty::TYPE_VERTEX,
                                          ResourceProperty::TYPE_FLOAT, 1, mesh.get_vertex_count(),
                                          0, "heat", sampling, true);
    }

    std::vector<std::uint64_t> ask(double const& time) const {
        Answers all;
        for (unsigned int p = 0; p < mesh.get_primitive_count(); ++p) {
            for (PolyMeshBase const* const m : {static_cast<PolyMeshBase const*>(&mesh),
                                                static_cast<PolyMeshBase const*>(&smoothed)}) {
                std::vector<std::uint64_t> const answers = ask_all(*m, p, time);
                all.list.insert(all.list.end(), answers.begin(), answers.end());
                GeometrySample sample;
                m->compute_fragment_sample(CtxEval(), {0xFFFFFFFFu, p, 0.5, 0.25, time, 0.5},
                                           sample);
                all.add_vector(sample.get_smooth_position());
                all.add_vector(sample.get_shading_normal());
                all.add_vector(sample.get_motion_vector());
            }
            double value = 7;
            heat->evaluate(CtxEval(), {0xFFFFFFFFu, p, 0.5, 0.25, time, 0}, &value, nullptr,
                           nullptr, nullptr, 1);
            all.add(value);
        }
        return all.list;
    }

    PolyMesh mesh;
    PolyMeshSmoothed smoothed;
    std::unique_ptr<LazyHeat> heat;
};

TEST(Threads, AskAMovingMeshWithColdCaches) {
    Scene const scene;
    std::vector<std::uint64_t> answers[8];
    run_at_once(8, [&](int const& i) {
        answers[i] = scene.ask(0.25 + 0.5 * (i % 4));
        query_geometry(scene.mesh, 8);
        query_geometry(scene.smoothed, 8);
        query_property(scene.mesh, *scene.heat);
    });
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(answers[i], Scene().ask(0.25 + 0.5 * (i % 4))) << i;
    }
}

TEST(Threads, BuildMeshesBesideEachOther) {
    LogCapture const capture(2);
    run_at_once(2, [&](int const& i) {
        std::string const path = get_scratch_path(std::to_string(i) + ".obj");
        std::ofstream(path) << "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nusemtl a\n"
                            << (i == 0 ? "f 1 2 3 4\n" : "f 4 3 2\nusemtl b\nf 1 2 4\n");
        for (unsigned int round = 0; round < 20; ++round) {
            PolyMesh imported, filled;
            EXPECT_TRUE(imported.import_from_file(path.c_str(), "", 0, nullptr, nullptr));
            make_soup(2 * round + static_cast<unsigned int>(i)).set(filled);
            PolyMeshSmoothed smoothed;
            smoothed.set(filled, 30, 0xFFFFFFFFu, nullptr);
            PolyMesh const copy(filled);
            EXPECT_EQ(find_broken_invariant(imported), "");
            EXPECT_EQ(find_broken_invariant(copy), "");
        }
    });
}

TEST(Threads, RegisterClassesAndLog) {
    LogCapture const capture(3);
    std::atomic<CoreClassInfo const*> seen[16] = {};
    run_at_once(16, [&](int const& i) {
        char const name[] = {'R', 'a', 'c', static_cast<char>('a' + i / 2), 0};
        CoreClassInfo const& parent =
            i % 2 == 0 ? PolyMeshSmoothed::class_info() : PolyMeshProperty::class_info();
        seen[i] = &CoreClassInfo::new_class(name, nullptr, &parent, nullptr);
        CoreLogHandler::get_main().log(3, CoreLogStream() << name << '\n');
    });
    for (int i = 0; i < 16; ++i) {
        EXPECT_EQ(seen[i], seen[i / 2 * 2]);
    }
}

}  // namespace
