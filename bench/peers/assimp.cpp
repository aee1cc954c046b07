#include <bench/peers.h>

#include <assimp/Importer.hpp>
#include <assimp/config.h>
#include <assimp/mesh.h>
#include <assimp/postprocess.h>
#include <assimp/scene.h>

#include <memory>

namespace {

using Importer = Assimp::Importer;

constexpr unsigned int steps =
    aiProcess_Triangulate | aiProcess_GenSmoothNormals | aiProcess_JoinIdenticalVertices;

std::size_t count_triangles(Importer const& importer) {
    std::size_t count = 0;
    aiScene const* const scene = importer.GetScene();
    for (unsigned int i = 0; scene != nullptr && i < scene->mNumMeshes; ++i) {
        aiMesh const& mesh = *scene->mMeshes[i];
        for (unsigned int k = 0; k < mesh.mNumFaces; ++k) {
            count += mesh.mFaces[k].mNumIndices == 3;
        }
    }
    return count;
}

void smooth(Importer& importer) {
    aiScene const* const scene = importer.GetScene();
    for (unsigned int i = 0; i < scene->mNumMeshes; ++i) {
        aiMesh& mesh = *scene->mMeshes[i];
        delete[] mesh.mNormals;
        mesh.mNormals = nullptr;
    }
    importer.ApplyPostProcessing(aiProcess_GenSmoothNormals);
}

std::vector<GMathVec3<float>> get_normals(Importer const& importer) {
    std::vector<GMathVec3<float>> normals;
    aiScene const* const scene = importer.GetScene();
    for (unsigned int i = 0; i < scene->mNumMeshes; ++i) {
        aiMesh const& mesh = *scene->mMeshes[i];
        for (unsigned int k = 0; k < mesh.mNumFaces; ++k) {
            for (unsigned int j = 0; j < mesh.mFaces[k].mNumIndices; ++j) {
                aiVector3D const& n = mesh.mNormals[mesh.mFaces[k].mIndices[j]];
                normals.emplace_back(n.x, n.y, n.z);
            }
        }
    }
    return normals;
}

}  // namespace

TrianglesWork make_assimp_import(std::string const& path) {
    auto const importer = std::make_shared<Importer>();
    auto const import_file = [=] { importer->ReadFile(path, steps); };
    return {import_file, [=] { return count_triangles(*importer); }};
}

NormalsWork make_assimp_smoothing(std::string const& path, float const& angle) {
    auto const importer = std::make_shared<Importer>();
    importer->SetPropertyFloat(AI_CONFIG_PP_GSN_MAX_SMOOTHING_ANGLE, angle);
    importer->ReadFile(path, 0);
    return {[=] { smooth(*importer); }, [=] { return get_normals(*importer); }};
}

std::shared_ptr<void> import_by_assimp(std::string const& path) {
    auto const importer = std::make_shared<Importer>();
    importer->ReadFile(path, steps);
    return importer;
}
