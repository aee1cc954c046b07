#include <poly/render/vertex_fetch.h>

#include <cassert>

namespace {

// Made when the library is loaded: queries allocate nothing, the first ones included.
CtxMotionBlur const no_blur;

// Two neighbouring samples around a time, and the blend from the first to the second.
struct SampleSpan {
    SampleSpan(GMathTimeSampling const& sampling, double const& time) {
        double wide_factor;
        sampling.get_span(time, index, wide_factor);
        factor = static_cast<float>(wide_factor);
    }

    bool uses_first() const { return 1.0f - factor > blend_epsilon; }
    bool uses_second() const { return factor > blend_epsilon; }

    unsigned int index;
    float factor;
};

bool is_deforming(GeometryPointCloudData const& data) {
    return data.deformation_sampling.get_sample_count() >= 2;
}

// `fetch(i)` is the position at sample `i` of the span's sampling; only what is used is fetched.
template <typename Fetch>
GMathVec3<float> blend_span(SampleSpan const& span, Fetch const& fetch) {
    if (!span.uses_second()) {
        return fetch(span.index);
    }
    if (!span.uses_first()) {
        return fetch(span.index + 1);
    }
    GMathVec3<float> const first = fetch(span.index);
    return first * (1.0f - span.factor) + fetch(span.index + 1) * span.factor;
}

// The deformation samples at a time, each times `scale`.
void append_deformation(GeometryPointCloudData const& data, double const& time, float const& scale,
                        GeometryPositionArray& positions) {
    SampleSpan const span(data.deformation_sampling, time);
    if (span.uses_first()) {
        positions.append(get_deformation_sample(data, span.index), (1.0f - span.factor) * scale);
    }
    if (span.uses_second()) {
        positions.append(get_deformation_sample(data, span.index + 1), span.factor * scale);
    }
}

}  // namespace

GMathTimeSampling const& get_shutter_sampling(CtxEval const& ctx) {
    CtxShader const* const shader_ctx = ctx.get_shader_ctx();
    return (shader_ctx ? shader_ctx->get_motion_blur() : no_blur).get_time_sampling();
}

GMathVec3<float> const* get_deformation_sample(GeometryPointCloudData const& data,
                                               unsigned int const& sample) {
    assert(sample < data.deformation_sampling.get_sample_count());
    GeometryPointCloudData::CacheSlot& slot = data.deformation_sample_cache[sample];
    if (GMathVec3<float> const* const ready = slot.load(std::memory_order_acquire)) {
        return ready;
    }
    // Many threads may have come this far: the first to get the lock fills the sample. Publishing
    // it with release lets those who never take the lock see it whole.
    data.lock.lock(1);
    GMathVec3<float>* positions = slot.load(std::memory_order_relaxed);
    if (!positions) {
        positions = static_cast<GMathVec3<float>*>(
            core_allocate(sizeof(GMathVec3<float>) * static_cast<std::size_t>(data.point_count)));
        data.sample_provider->fill_sample(data.deformation_sampling, sample, positions);
        slot.store(positions, std::memory_order_release);
    }
    data.lock.unlock();
    return positions;
}

void fetch_deformation_position(GeometryPointCloudData const& data, unsigned int const& vertex,
                                double const& time, GMathVec3<float>& position) {
    assert(is_deforming(data) && vertex < data.point_count);
    unsigned int const v = vertex;
    position = blend_span(SampleSpan(data.deformation_sampling, time), [&](unsigned int const& i) {
        return get_deformation_sample(data, i)[v];
    });
}

void fetch_vertex_position(GeometryPointCloudData const& data, unsigned int const& vertex,
                           double const& time, GMathTimeSampling const& shutter,
                           GMathVec3<float>& position) {
    if (!is_deforming(data)) {
        position = data.positions[vertex];
        if (!data.velocities.is_empty()) {
            GMathVec3<double> const velocity(data.velocities[vertex]);
            position += GMathVec3<float>(velocity * time);
        }
        return;
    }
    if (shutter.get_sample_count() < 2) {
        fetch_deformation_position(data, vertex, time, position);
        return;
    }
    position = blend_span(SampleSpan(shutter, time), [&](unsigned int const& i) {
        GMathVec3<float> at_sample;
        fetch_deformation_position(data, vertex, shutter.get_sample_time(i), at_sample);
        return at_sample;
    });
}

void compute_position_blend(GeometryPointCloudData const& data, double const& time,
                            GMathTimeSampling const& shutter, GeometryPositionArray& positions) {
    positions.init(data.point_count);
    if (!is_deforming(data)) {
        positions.append(data.positions.get_data(), 1.0f);
        if (!data.velocities.is_empty()) {
            positions.append(data.velocities.get_data(), static_cast<float>(time));
        }
        return;
    }
    if (shutter.get_sample_count() < 2) {
        append_deformation(data, time, 1.0f, positions);
        return;
    }
    SampleSpan const span(shutter, time);
    if (span.uses_first()) {
        append_deformation(data, shutter.get_sample_time(span.index), 1.0f - span.factor,
                           positions);
    }
    if (span.uses_second()) {
        append_deformation(data, shutter.get_sample_time(span.index + 1), span.factor, positions);
    }
}
