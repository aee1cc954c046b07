#include <platform/qz_geometry/geometry_property.h>

#include <algorithm>
#include <cassert>

namespace {

// Samples that agree stay exactly as they are, infinities and large integers too.
double blend(double const& a, double const& b, double const& factor) {
    return a == b ? a : a + (b - a) * factor;
}

long long blend(long long const& a, long long const& b, double const& factor) {
    if (a == b) {
        return a;
    }
    return geometry_truncate(blend(static_cast<double>(a), static_cast<double>(b), factor));
}

}  // namespace

GeometryProperty::GeometryProperty(CoreString const& name, GMathTimeSampling const& time_sampling,
                                   ResourceProperty::Type const& value_type,
                                   unsigned int const& value_extent,
                                   unsigned int const& value_count, unsigned int const& index_count)
    : m_name(name),
      m_time_sampling(time_sampling),
      m_value_type(value_type),
      m_value_extent(value_extent),
      m_value_count(value_count),
      m_index_count(index_count) {
    allocate_states();
}

GeometryProperty::GeometryProperty(GeometryProperty const& other)
    : CoreBaseObject(other),
      m_name(other.m_name),
      m_time_sampling(other.m_time_sampling),
      m_value_type(other.m_value_type),
      m_value_extent(other.m_value_extent),
      m_value_count(other.m_value_count),
      m_index_count(other.m_index_count),
      m_integer_callback(other.m_integer_callback),
      m_double_callback(other.m_double_callback) {
    allocate_states();
    for (unsigned int i = 0; i < m_time_sampling.get_sample_count(); ++i) {
        m_states[i].store(other.get_state(i), std::memory_order_relaxed);
    }
}

GeometryProperty::~GeometryProperty() = default;

CoreClassInfo const& GeometryProperty::class_info() {
    static CoreClassInfo const& info = CoreClassInfo::new_class(
        "GeometryProperty", core_destroy<GeometryProperty>, &CoreBaseObject::class_info(), nullptr);
    return info;
}

CoreClassInfo const& GeometryProperty::get_class_info() const { return class_info(); }

unsigned long long GeometryProperty::get_memory_size() const { return sizeof(GeometryProperty); }

void GeometryProperty::set_evaluate_callbacks(IntegerCallback const& integer_callback,
                                              DoubleCallback const& double_callback) {
    m_integer_callback = integer_callback;
    m_double_callback = double_callback;
}

void GeometryProperty::_load_data(unsigned int const&) {}

void GeometryProperty::set_attached(unsigned int const& sample, bool const& is_attached) {
    assert(sample < m_time_sampling.get_sample_count());
    m_states[sample].store(is_attached ? STATE_ATTACHED : STATE_UNLOADED,
                           std::memory_order_release);
}

// Most properties have one sample, which is there: nothing need be kept for after its callback.
unsigned int GeometryProperty::evaluate(CtxEval const& ctx, GeometryFragment const& fragment,
                                        long long* values, long long* d_ds, long long* d_dt,
                                        long long* d_extra, unsigned int const& max_count) const {
    if (m_integer_callback && m_time_sampling.get_sample_count() == 1 &&
        get_state(0) == STATE_ATTACHED) {
        return m_integer_callback(*this, ctx, fragment, 0, values, d_ds, d_dt, d_extra, max_count);
    }
    return evaluate_by(m_integer_callback, ctx, fragment, values, d_ds, d_dt, d_extra, max_count);
}

unsigned int GeometryProperty::evaluate(CtxEval const& ctx, GeometryFragment const& fragment,
                                        double* values, double* d_ds, double* d_dt, double* d_extra,
                                        unsigned int const& max_count) const {
    if (m_double_callback && m_time_sampling.get_sample_count() == 1 &&
        get_state(0) == STATE_ATTACHED) {
        return m_double_callback(*this, ctx, fragment, 0, values, d_ds, d_dt, d_extra, max_count);
    }
    return evaluate_by(m_double_callback, ctx, fragment, values, d_ds, d_dt, d_extra, max_count);
}

void GeometryProperty::allocate_states() {
    m_states = std::make_unique<std::atomic<State>[]>(m_time_sampling.get_sample_count());
}

// Double-checked: once a state is known, nobody comes to the lock any more.
bool GeometryProperty::load_slowly(unsigned int const& sample) const {
    if (get_state(sample) == STATE_UNLOADED) {
        m_lock.lock(1);
        if (get_state(sample) == STATE_UNLOADED) {
            // Loading on demand is not a change that anyone can see: the block was always there.
            const_cast<GeometryProperty*>(this)->_load_data(sample);
            State unloaded = STATE_UNLOADED;
            m_states[sample].compare_exchange_strong(unloaded, STATE_MISSING);
        }
        m_lock.unlock();
    }
    return get_state(sample) == STATE_ATTACHED;
}

template <typename T>
unsigned int GeometryProperty::evaluate_by(Callback<T> const& callback, CtxEval const& ctx,
                                           GeometryFragment const& fragment, T* values, T* d_ds,
                                           T* d_dt, T* d_extra,
                                           unsigned int const& max_count) const {
    unsigned int const sample_count = m_time_sampling.get_sample_count();
    if (!callback || sample_count == 0) {
        return 0;
    }
    unsigned int sample = 0;
    if (sample_count > 1) {
        double factor = 0.0;
        m_time_sampling.get_span(fragment.time, sample, factor);
        if (factor != 0.0 && factor != 1.0) {
            return evaluate_between(callback, ctx, fragment, sample, factor,
                                    {values, d_ds, d_dt, d_extra},
                                    std::min(max_count, largest_blend_count));
        }
        sample += factor == 1.0 ? 1 : 0;
    }
    if (!load(sample)) {
        return 0;
    }
    return callback(*this, ctx, fragment, sample, values, d_ds, d_dt, d_extra, max_count);
}

// The later sample goes to scratch first, so that its count limits what the outputs are given.
// Called, not inlined: the many who ask for one sample need no room for scratch.
template <typename T>
unsigned int GeometryProperty::evaluate_between(Callback<T> const& callback, CtxEval const& ctx,
                                                GeometryFragment const& fragment,
                                                unsigned int const& sample, double const& factor,
                                                T* const (&outputs)[4],
                                                unsigned int const& max_count) const {
    if (!load(sample) || !load(sample + 1)) {
        return 0;
    }
    T scratch[4][largest_blend_count];
    T* later[4];
    for (unsigned int k = 0; k < 4; ++k) {
        later[k] = outputs[k] ? scratch[k] : nullptr;
    }
    unsigned int const later_count = callback(*this, ctx, fragment, sample + 1, later[0], later[1],
                                              later[2], later[3], max_count);
    unsigned int const count = callback(*this, ctx, fragment, sample, outputs[0], outputs[1],
                                        outputs[2], outputs[3], later_count);
    for (unsigned int k = 0; k < 4; ++k) {
        for (unsigned int i = 0; outputs[k] && i < count; ++i) {
            outputs[k][i] = blend(outputs[k][i], later[k][i], factor);
        }
    }
    return count;
}
