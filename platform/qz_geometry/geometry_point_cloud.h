#pragma once

#include <platform/qz_core.h>
#include <platform/qz_geometry/export.h>
#include <platform/qz_geometry/geometry_descriptor.h>
#include <platform/qz_gmath.h>
#include <platform/qz_sys.h>

#include <atomic>
#include <memory>

class GeometryPointCloud;

// Makes the positions of deformation samples. Asked once per sample and cloud, possibly from a
// render thread, but never by two threads at once for one cloud.
class QZ_GEOMETRY_EXPORT GeometrySampleProvider {
  public:
    virtual ~GeometrySampleProvider();
    // Fills all of `positions`, one per point, for sample number `sample` of `sampling`.
    virtual void fill_sample(GMathTimeSampling const& sampling, unsigned int const& sample,
                             GMathVec3<float>* positions) = 0;
};

// The arrays of a point cloud. Shared by clouds until one of them writes.
//
// | field                    | length              | meaning                                    |
// |--------------------------|---------------------|--------------------------------------------|
// | positions                | point count, or 0   | at rest                                    |
// | normals                  | point count, or 0   |                                            |
// | velocities               | point count, or 0   | units per time, linear through time 0     |
// | support_geometries       | 0 or 1              | the geometry that the points lie on        |
// | geometry_indices         | 0                   | empty: all points lie on geometry 0        |
// | primitive_indices        | point count, or 0   | the primitive under the point, or absent   |
// | primitive_uvs            | point count, or 0   | where on it: (s, t) in units of 1/65535    |
// | deformation_sample_cache | deformation samples | null, or a position per point; filled once |
class QZ_GEOMETRY_EXPORT GeometryPointCloudData {
  public:
    struct PackedUv {
        unsigned short s;
        unsigned short t;
    };
    using CacheSlot = std::atomic<GMathVec3<float>*>;

    GeometryPointCloudData() = default;
    // Copies all but the cache and the lock, which start anew.
    GeometryPointCloudData(GeometryPointCloudData const& other);
    GeometryPointCloudData& operator=(GeometryPointCloudData const&) = delete;
    ~GeometryPointCloudData();

    // Makes one empty cache slot per sample; none without a provider.
    void init_deformation(GMathTimeSampling const& sampling,
                          std::shared_ptr<GeometrySampleProvider> const& provider);

    // Velocities, or deformation samples.
    bool is_moving() const { return !velocities.is_empty() || deformation_sample_cache; }

    unsigned long long get_memory_size() const;

    unsigned int point_count = 0;
    CoreArray<GMathVec3<float>> positions;
    CoreArray<GMathShortNormal> normals;
    CoreArray<GMathVec3<float>> velocities;
    CoreArray<GeometryDescriptor> support_geometries;
    CoreIndexArray geometry_indices;
    CoreIndexArray primitive_indices;
    CoreArray<PackedUv> primitive_uvs;
    GMathTimeSampling deformation_sampling;
    std::shared_ptr<GeometrySampleProvider> sample_provider;
    // Slots are published with release and read with acquire; filling is under the lock.
    std::unique_ptr<CacheSlot[]> deformation_sample_cache;
    mutable SysThreadLock lock;

  private:
    friend class GeometryPointCloud;
    void clear_cache();

    std::atomic<unsigned int> m_reference_count{1};
    // The cloud that counts the arrays as its memory; null until somebody claims them.
    std::atomic<GeometryPointCloud const*> m_counting_cloud{nullptr};
};

// A set of points. Copies share their arrays until one of them writes; then it gets its own, with
// an empty sample cache. Every cloud has an origin, which copies and writes keep and only `init`
// renews: clouds of equal origin are versions of the same points.
//
// Operations that write are not thread-safe; reading is, from any number of threads.
class QZ_GEOMETRY_EXPORT GeometryPointCloud {
  public:
    // Points without any data.
    explicit GeometryPointCloud(unsigned int const& point_count = 0);
    // Shares the arrays of `other`, or copies them when `is_deep`; the origin stays either way.
    GeometryPointCloud(GeometryPointCloud const& other, bool const& is_deep = false);
    ~GeometryPointCloud();
    GeometryPointCloud& operator=(GeometryPointCloud const& other);

    // Replaces everything. Each array has `point_count` entries, or is null: that kind of data is
    // then absent.
    void init(unsigned int const& point_count, GMathVec3<float> const* positions,
              GMathVec3<float> const* normals, GMathVec3<float> const* velocities);
    // Replaces the positions by `positions`, one per point.
    void set_positions(CoreBasicArray<GMathVec3<float>> const& positions);
    // Normalises and stores one normal per point; zero, or one whose length is no number, becomes
    // three zero words. `keeps_existing`: normals that are there already stay instead.
    void init_normals(CoreBasicArray<GMathVec3<float>> const& normals, bool const& keeps_existing);
    // One velocity per point, or none at all.
    void set_velocities(CoreBasicArray<GMathVec3<float>> const& velocities);
    // Positions at the times of `sampling`, made by `provider` when they are first asked for. A
    // null provider takes deformation away.
    void set_deformation(GMathTimeSampling const& sampling,
                         std::shared_ptr<GeometrySampleProvider> const& provider);
    // What carries the points: a primitive (or 0xFFFFFFFF) and a place on it per point, parameters
    // in [0, 1]. The geometry that `geometry` names is never followed.
    void init_support(GeometryDescriptor const& geometry, unsigned int const* primitive_indices,
                      GMathVec2<float> const* primitive_uvs);

    unsigned int const& get_point_count() const { return m_data->point_count; }
    bool has_positions() const { return !m_data->positions.is_empty(); }
    bool has_normals() const { return !m_data->normals.is_empty(); }
    bool has_velocities() const { return !m_data->velocities.is_empty(); }
    // The points move: by velocities, or by deformation samples.
    bool is_animated() const { return m_data->is_moving(); }
    bool is_version_of(GeometryPointCloud const& other) const { return m_origin == other.m_origin; }

    // One entry per point, or none when that kind is absent; the old storage is freed first.
    void get_positions(CoreArray<GMathVec3<float>>& positions) const;
    void get_normals(CoreArray<GMathVec3<float>>& normals) const;
    void get_velocities(CoreArray<GMathVec3<float>>& velocities) const;
    // Where point `point` lies on its primitive; (0, 0) without support.
    GMathVec2<float> get_primitive_uv(unsigned int const& point) const;

    // The arrays themselves, valid until this cloud is written, assigned or destroyed.
    GeometryPointCloudData const& get_data() const { return *m_data; }

    // The object, and its arrays when it is this cloud that counts them: who made them, and when
    // that cloud is gone, the first of those left to be asked.
    unsigned long long get_memory_size() const;

  private:
    void replace_data(GeometryPointCloudData* data);
    void release_data();
    GeometryPointCloudData& get_writable_data();

    GeometryPointCloudData* m_data;
    unsigned long long m_origin;
};
