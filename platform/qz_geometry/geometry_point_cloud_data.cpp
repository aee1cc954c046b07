#include <platform/qz_geometry/geometry_point_cloud.h>

GeometrySampleProvider::~GeometrySampleProvider() = default;

GeometryPointCloudData::GeometryPointCloudData(GeometryPointCloudData const& other)
    : point_count(other.point_count),
      positions(other.positions),
      normals(other.normals),
      velocities(other.velocities),
      support_geometries(other.support_geometries),
      geometry_indices(other.geometry_indices),
      primitive_indices(other.primitive_indices),
      primitive_uvs(other.primitive_uvs) {
    init_deformation(other.deformation_sampling, other.sample_provider);
}

GeometryPointCloudData::~GeometryPointCloudData() { clear_cache(); }

void GeometryPointCloudData::init_deformation(
    GMathTimeSampling const& sampling, std::shared_ptr<GeometrySampleProvider> const& provider) {
    clear_cache();
    sample_provider = provider;
    deformation_sampling = provider ? sampling : GMathTimeSampling();
    if (deformation_sampling.get_sample_count() != 0) {
        deformation_sample_cache =
            std::make_unique<CacheSlot[]>(deformation_sampling.get_sample_count());
    }
}

unsigned long long GeometryPointCloudData::get_memory_size() const {
    unsigned long long size =
        sizeof(GeometryPointCloudData) + positions.get_memory_size() + normals.get_memory_size() +
        velocities.get_memory_size() + support_geometries.get_memory_size() +
        geometry_indices.get_memory_size() + primitive_indices.get_memory_size() +
        primitive_uvs.get_memory_size() + deformation_sampling.get_memory_size();
    for (unsigned int i = 0; i < deformation_sampling.get_sample_count(); ++i) {
        size += sizeof(CacheSlot);
        if (deformation_sample_cache[i].load(std::memory_order_acquire)) {
            size += sizeof(GMathVec3<float>) * static_cast<unsigned long long>(point_count);
        }
    }
    return size;
}

void GeometryPointCloudData::clear_cache() {
    for (unsigned int i = 0;
         deformation_sample_cache && i < deformation_sampling.get_sample_count(); ++i) {
        core_release(deformation_sample_cache[i].load(std::memory_order_relaxed));
    }
    deformation_sample_cache.reset();
}
