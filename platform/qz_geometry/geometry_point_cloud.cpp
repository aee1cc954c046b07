#include <platform/qz_geometry/geometry_point_cloud.h>

#include <algorithm>
#include <cassert>

namespace {

unsigned long long get_new_origin() {
    static std::atomic<unsigned long long> last{0};
    return last.fetch_add(1, std::memory_order_relaxed) + 1;
}

GMathShortNormal encode_unit(GMathVec3<float> const& normal) {
    float const length = gmath_length(normal);
    if (!(length > 0.0f)) {
        return {0, 0, 0};
    }
    return GMathShortNormal::encode(normal * (1.0f / length));
}

// The same of four normals side by side, each rounded as alone.
void encode_four_units(GMathVec3<float> const* normals, GMathShortNormal* out) {
    GMathVec3<GMathFloatLanes> const n =
        gmath_lanes(normals[0], normals[1], normals[2], normals[3]);
    GMathFloatLanes const length = gmath_root(gmath_dot(n, n));
    GMathShortNormal::encode(gmath_keep(length > 0.0f, n * (1.0f / length)), out);
}

unsigned short encode_parameter(float const& value) {
    return static_cast<unsigned short>(std::clamp(value, 0.0f, 1.0f) * 65535.0f + 0.5f);
}

float decode_parameter(unsigned short const& code) { return static_cast<float>(code) / 65535.0f; }

void encode_units(CoreBasicArray<GMathVec3<float>> const& normals,
                  CoreArray<GMathShortNormal>& out) {
    unsigned int const count = normals.get_count();
    out.reset(count);
    unsigned int i = 0;
    for (; count - i >= 4; i += 4) {
        encode_four_units(normals.get_data() + i, out.get_data() + i);
    }
    for (; i < count; ++i) {
        out[i] = encode_unit(normals[i]);
    }
}

}  // namespace

GeometryPointCloud::GeometryPointCloud(unsigned int const& point_count)
    : m_data(new GeometryPointCloudData), m_origin(get_new_origin()) {
    m_data->point_count = point_count;
    m_data->m_counting_cloud = this;
}

GeometryPointCloud::GeometryPointCloud(GeometryPointCloud const& other, bool const& is_deep)
    : m_data(other.m_data), m_origin(other.m_origin) {
    if (is_deep) {
        m_data = new GeometryPointCloudData(*other.m_data);
        m_data->m_counting_cloud = this;
    } else {
        m_data->m_reference_count.fetch_add(1, std::memory_order_relaxed);
    }
}

GeometryPointCloud::~GeometryPointCloud() { release_data(); }

GeometryPointCloud& GeometryPointCloud::operator=(GeometryPointCloud const& other) {
    if (m_data != other.m_data) {
        other.m_data->m_reference_count.fetch_add(1, std::memory_order_relaxed);
        release_data();
        m_data = other.m_data;
    }
    m_origin = other.m_origin;
    return *this;
}

void GeometryPointCloud::init(unsigned int const& point_count, GMathVec3<float> const* positions,
                              GMathVec3<float> const* normals, GMathVec3<float> const* velocities) {
    auto* const data = new GeometryPointCloudData;
    data->point_count = point_count;
    if (positions) {
        data->positions.copy_from({positions, point_count});
    }
    if (normals) {
        encode_units({normals, point_count}, data->normals);
    }
    if (velocities) {
        data->velocities.copy_from({velocities, point_count});
    }
    replace_data(data);
    m_origin = get_new_origin();
}

void GeometryPointCloud::set_positions(CoreBasicArray<GMathVec3<float>> const& positions) {
    assert(positions.get_count() == get_point_count());
    get_writable_data().positions.copy_from(positions);
}

void GeometryPointCloud::init_normals(CoreBasicArray<GMathVec3<float>> const& normals,
                                      bool const& keeps_existing) {
    assert(normals.get_count() == get_point_count());
    if (!(keeps_existing && has_normals())) {
        encode_units(normals, get_writable_data().normals);
    }
}

void GeometryPointCloud::set_velocities(CoreBasicArray<GMathVec3<float>> const& velocities) {
    assert(velocities.is_empty() || velocities.get_count() == get_point_count());
    get_writable_data().velocities.copy_from(velocities);
}

void GeometryPointCloud::set_deformation(GMathTimeSampling const& sampling,
                                         std::shared_ptr<GeometrySampleProvider> const& provider) {
    get_writable_data().init_deformation(sampling, provider);
}

void GeometryPointCloud::init_support(GeometryDescriptor const& geometry,
                                      unsigned int const* primitive_indices,
                                      GMathVec2<float> const* primitive_uvs) {
    GeometryPointCloudData& data = get_writable_data();
    data.support_geometries.reset(1);
    data.support_geometries[0] = geometry;
    data.geometry_indices.clear();
    data.primitive_indices.copy_from(
        CoreBasicArray<unsigned int>(primitive_indices, data.point_count));
    data.primitive_uvs.reset(data.point_count);
    for (unsigned int i = 0; i < data.point_count; ++i) {
        data.primitive_uvs[i] = {encode_parameter(primitive_uvs[i].x),
                                 encode_parameter(primitive_uvs[i].y)};
    }
}

void GeometryPointCloud::get_positions(CoreArray<GMathVec3<float>>& positions) const {
    positions.copy_from(m_data->positions);
}

void GeometryPointCloud::get_normals(CoreArray<GMathVec3<float>>& normals) const {
    normals.reset(m_data->normals.get_count());
    for (unsigned int i = 0; i < normals.get_count(); ++i) {
        normals[i] = m_data->normals[i].decode();
    }
}

void GeometryPointCloud::get_velocities(CoreArray<GMathVec3<float>>& velocities) const {
    velocities.copy_from(m_data->velocities);
}

GMathVec2<float> GeometryPointCloud::get_primitive_uv(unsigned int const& point) const {
    if (point >= m_data->primitive_uvs.get_count()) {
        return {};
    }
    GeometryPointCloudData::PackedUv const uv = m_data->primitive_uvs[point];
    return {decode_parameter(uv.s), decode_parameter(uv.t)};
}

unsigned long long GeometryPointCloud::get_memory_size() const {
    GeometryPointCloud const* counting = nullptr;
    bool const is_counting =
        m_data->m_counting_cloud.compare_exchange_strong(counting, this) || counting == this;
    return sizeof(GeometryPointCloud) + (is_counting ? m_data->get_memory_size() : 0);
}

// `data` is new.
void GeometryPointCloud::replace_data(GeometryPointCloudData* data) {
    release_data();
    m_data = data;
    m_data->m_counting_cloud = this;
}

void GeometryPointCloud::release_data() {
    GeometryPointCloud const* counting = this;
    m_data->m_counting_cloud.compare_exchange_strong(counting, nullptr);
    if (m_data->m_reference_count.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        delete m_data;
    }
}

// The one gate to writing: what is shared is copied first.
GeometryPointCloudData& GeometryPointCloud::get_writable_data() {
    if (m_data->m_reference_count.load(std::memory_order_acquire) != 1) {
        replace_data(new GeometryPointCloudData(*m_data));
    }
    return *m_data;
}
