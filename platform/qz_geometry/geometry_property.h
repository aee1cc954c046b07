#pragma once

#include <platform/qz_core.h>
#include <platform/qz_ctx.h>
#include <platform/qz_geometry/export.h>
#include <platform/qz_geometry/geometry_fragment.h>
#include <platform/qz_gmath.h>
#include <platform/qz_resource.h>
#include <platform/qz_sys.h>

#include <atomic>
#include <limits>
#include <memory>

// `value` without its fraction. What 64 bits cannot hold, NaN included, gives -2^63, whatever the
// processor would do.
inline long long geometry_truncate(double const& value) {
    double const wanted = value;
    if (wanted >= -0x1p63 && wanted < 0x1p63) {
        return static_cast<long long>(wanted);
    }
    return std::numeric_limits<long long>::min();
}

// A named attribute of a geometry, with a block of values per motion sample, which is evaluated at
// fragments as integers or as doubles. A derived class keeps the blocks, and installs the two
// functions that read them.
//
// Threads: const operations run on any number of threads at once; each block is loaded by one of
// them while the others wait. Attaching blocks and copying is for one thread alone.
class QZ_GEOMETRY_EXPORT GeometryProperty : public CoreBaseObject {
  public:
    // The most components that an evaluation between two samples gives.
    static constexpr unsigned int largest_blend_count = 64;

    // Evaluates one motion sample, whose block is attached. Every output has room for `max_count`
    // components, or is null and skipped. Returns the number of components that each was given.
    // `d_ds` and `d_dt` are derivatives by the fragment's s and t; `d_extra` is all zeros.
    template <typename T>
    using Callback = unsigned int (*)(GeometryProperty const& property, CtxEval const& ctx,
                                      GeometryFragment const& fragment, unsigned int const& sample,
                                      T* values, T* d_ds, T* d_dt, T* d_extra,
                                      unsigned int const& max_count);
    using IntegerCallback = Callback<long long>;
    using DoubleCallback = Callback<double>;

    // The counts announce what the blocks will hold, and are kept for whoever asks:
    // - value_extent: elements of an item; 0 when items differ;
    // - value_count: items;
    // - index_count: indices into the items; 0 without indices.
    GeometryProperty(CoreString const& name, GMathTimeSampling const& time_sampling,
                     ResourceProperty::Type const& value_type, unsigned int const& value_extent,
                     unsigned int const& value_count, unsigned int const& index_count);
    // Takes over the callbacks too, and which samples are loaded.
    GeometryProperty(GeometryProperty const& other);
    GeometryProperty& operator=(GeometryProperty const&) = delete;
    ~GeometryProperty() override;

    static CoreClassInfo const& class_info();
    CoreClassInfo const& get_class_info() const override;
    // The object's own size.
    unsigned long long get_memory_size() const override;

    CoreString const& get_name() const { return m_name; }
    GMathTimeSampling const& get_time_sampling() const { return m_time_sampling; }
    ResourceProperty::Type const& get_value_type() const { return m_value_type; }
    unsigned int const& get_value_extent() const { return m_value_extent; }
    unsigned int const& get_value_count() const { return m_value_count; }
    unsigned int const& get_index_count() const { return m_index_count; }

    // The property at a fragment and its time. Outputs as for the callbacks. Returns the number of
    // components given; 0, with the outputs untouched, when the value type cannot be evaluated, a
    // block is missing, or the fragment names nothing.
    //
    // At the time of a sample, and before the first and after the last, it is that sample. Between
    // two it is a + (b - a) * factor in doubles, or just a where a equals b; as integers, that sum
    // truncated. The components are then those that both samples have, and at most
    // `largest_blend_count`. Allocates nothing, but for what loading takes.
    unsigned int evaluate(CtxEval const& ctx, GeometryFragment const& fragment, long long* values,
                          long long* d_ds, long long* d_dt, long long* d_extra,
                          unsigned int const& max_count) const;
    unsigned int evaluate(CtxEval const& ctx, GeometryFragment const& fragment, double* values,
                          double* d_ds, double* d_dt, double* d_extra,
                          unsigned int const& max_count) const;

  protected:
    // Either may be null: evaluations of that kind then give no components.
    void set_evaluate_callbacks(IntegerCallback const& integer_callback,
                                DoubleCallback const& double_callback);

    // Attaches the block of `sample`, or leaves it missing for good. Called when the block is first
    // asked for, once, under the property's lock; it must not ask the property for values. Those
    // who ask may hold a const reference, but an object that loads must not be created const.
    // Default: does nothing.
    virtual void _load_data(unsigned int const& sample);

    // To be told whenever the block of `sample` was attached, or taken away: it is then loaded
    // again when somebody asks for it. `sample` must be below the sample count, here and below.
    void set_attached(unsigned int const& sample, bool const& is_attached);
    // Loads the block of `sample` if nobody has; false when there is none.
    bool load(unsigned int const& sample) const {
        return get_state(sample) == STATE_ATTACHED || load_slowly(sample);
    }

  private:
    enum State : unsigned char {
        STATE_UNLOADED,
        STATE_ATTACHED,
        STATE_MISSING,  // loaded, and found to have no block
    };

    // Published with release after the block is in place, so that who sees a state sees the block.
    State get_state(unsigned int const& sample) const {
        return m_states[sample].load(std::memory_order_acquire);
    }
    void allocate_states();
    bool load_slowly(unsigned int const& sample) const;
    template <typename T>
    [[gnu::noinline]] unsigned int
    evaluate_by(Callback<T> const& callback, CtxEval const& ctx, GeometryFragment const& fragment,
                T* values, T* d_ds, T* d_dt, T* d_extra, unsigned int const& max_count) const;
    template <typename T>
    unsigned int evaluate_between(Callback<T> const& callback, CtxEval const& ctx,
                                  GeometryFragment const& fragment, unsigned int const& sample,
                                  double const& factor, T* const (&outputs)[4],
                                  unsigned int const& max_count) const;

    CoreString m_name;
    GMathTimeSampling m_time_sampling;
    ResourceProperty::Type m_value_type;
    unsigned int m_value_extent;
    unsigned int m_value_count;
    unsigned int m_index_count;
    IntegerCallback m_integer_callback = nullptr;
    DoubleCallback m_double_callback = nullptr;
    std::unique_ptr<std::atomic<State>[]> m_states;  // one per sample
    mutable SysThreadLock m_lock;
};
