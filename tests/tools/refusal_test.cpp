#include <tests/log_capture.h>
#include <tests/mesh/mesh_blocks.h>
#include <tests/platform/lwo_refusals.h>
#include <tests/platform/obj_refusals.h>
#include <tests/tools/run_tool.h>

#include <tools/qzpoly/models/mesh_dump.h>

#include <atomic>
#include <cstdlib>
#include <thread>

namespace {

// All that can be asked of a mesh.
std::string dump(PolyMesh const& mesh) {
    char* text = nullptr;
    std::size_t size = 0;
    std::FILE* const stream = open_memstream(&text, &size);
    DumpWriter writer(stream, false);
    dump_mesh(mesh, {true, {30}}, writer);
    std::fclose(stream);
    std::unique_ptr<char, decltype(&std::free)> const owner(text, &std::free);
    return {text, size};
}

bool import(PolyMesh& mesh, std::string const& path, char const* item_name = "") {
    AppProgressBar build_progress("building");
    return mesh.import_from_file(path.c_str(), item_name, 0.0, nullptr, &build_progress);
}

// A mesh that has something of everything, moving.
void fill(ToolFolder const& folder, PolyMesh& mesh) {
    std::string const text = "v 0 0 0 1 0 0\nv 1 0 1\nv 1 1 0\nv 0 1 0\nv 2 0.5 0\nv 2 2 2\n"
                             "vt 0.5 0.25\nvt 1 0\nvn 0 0 1\nvn 1 0 0\nusemtl a b\n"
                             "f 1/1/1 2/2/2 3/1/2 4\nusemtl c\nf 2//1 5//2 6//1 3//1 1/1\nf 1 2\n"
                             "f 3 2 6\nt crease 2/1/0 0 1 2.5\n";
    ASSERT_TRUE(import(mesh, folder.write("filled.obj", text)));
    CoreArray<GMathVec3<float>> velocities;
    mesh.get_point_cloud()->get_positions(velocities);
    GeometryPointCloud cloud(*mesh.get_point_cloud(), true);
    cloud.set_velocities(velocities);
    ASSERT_TRUE(mesh.set_point_cloud(cloud, nullptr));
    mesh.set_primitive_edge_visibility(0, 1, false);
}

TEST(Refusals, LeaveAFilledMeshAsItIs) {
    ToolFolder const folder;
    PolyMesh mesh;
    LogCapture capture(2);
    fill(folder, mesh);
    std::string const before = dump(mesh);
    EXPECT_GT(before.size(), 2000u);
    CoreArray<CoreString> const warnings(mesh.get_import_data()->warnings);
    unsigned int count = 0;
    auto const check = [&](bool const& is_taken, std::string const& what) {
        SCOPED_TRACE(what);
        ASSERT_FALSE(is_taken);
        EXPECT_NE(capture.take(), "");
        EXPECT_EQ(dump(mesh), before);
        EXPECT_EQ(mesh.get_import_data()->crease_indices.get_count(), 2u);
        EXPECT_EQ(mesh.get_import_data()->warnings.get_count(), warnings.get_count());
        ++count;
    };
    auto const check_file = [&](std::string const& bytes, char const* item_name = "") {
        check(import(mesh, folder.write("bad", bytes), item_name), bytes);
    };
    for (ObjRefusal const& row : list_obj_refusals()) {
        check_file(row.text);
    }
    for (lwo_building::Refusal const& row : lwo_building::list_refusals()) {
        check_file(row.bytes, row.item_name);
    }
    using namespace lwo_building;
    std::string const whole = object(names + quad + tags({0, 0}) + uv({0}, {0, 1}));
    for (std::size_t size = 0; size < whole.size(); ++size) {
        check_file(whole.substr(0, size));
    }
    for (MeshBlock const& row : list_mesh_blocks()) {
        for (std::size_t cut = row.is_accepted ? 1 : 0; cut <= row.bytes.size(); ++cut) {
            check(mesh.deserialize(row.bytes.data(), row.bytes.size() - cut), row.name);
        }
    }
    for (char const* const path : {"/no such file", "/", "/dev/null", "/proc/self/mem"}) {
        check(import(mesh, path), path);
    }
    AppProgressBar stopped("loading");
    stopped.set_callback([](void*, AppProgressBar const&) { return false; }, nullptr);
    for (std::string const& bytes : {folder.read("filled.obj"), whole}) {
        check(
            mesh.import_from_file(folder.write("good", bytes).c_str(), "", 0.0, &stopped, nullptr),
            "stopped");
    }
    EXPECT_GT(count, 300u);
}

// Someone cuts the file to any length, and writes it anew, all the time.
TEST(Refusals, FilesMayChangeWhileTheyAreRead) {
    ToolFolder const folder;
    using namespace lwo_building;
    std::string polygons = "FACE";
    std::string text = "v 0 0 0\nv 1 0 0\nv 1 1 0\n";
    for (unsigned int i = 0; i < 20000; ++i) {
        polygons += u2({3, 0, 1, 2});
        text += "f 1 2 3\n";
    }
    PolyMesh block_mesh;
    ASSERT_TRUE(import(block_mesh, folder.write("mesh", text)));
    unsigned long long size = 0;
    std::unique_ptr<unsigned char, decltype(&std::free)> const block(block_mesh.serialize(size),
                                                                     &std::free);
    std::string const contents[] = {text, object(chunk("POLS", polygons)),
                                    std::string(block.get(), block.get() + size)};
    unsigned int refused_count = 0;
    for (std::string const& bytes : contents) {
        std::string const path = folder.write("mesh", bytes);
        std::atomic<bool> is_done{false};
        std::thread writer([&] {
            for (unsigned int i = 0; !is_done; ++i) {
                std::filesystem::resize_file(path, i * 7919 % bytes.size());
                std::fstream(path, std::ios::in | std::ios::out | std::ios::binary) << bytes;
            }
        });
        for (unsigned int i = 0; i < 50; ++i) {
            ToolRun const run = run_tool({"info", path});
            bool const is_refused = run.errors.find("error: cannot load") != std::string::npos;
            EXPECT_EQ(run.status, is_refused ? 1 : 0) << run.errors;
            refused_count += is_refused ? 1 : 0;
        }
        is_done = true;
        writer.join();
        EXPECT_EQ(run_tool({"info", path}).status, 0);
    }
    EXPECT_GT(refused_count, 0u);
}

}  // namespace
