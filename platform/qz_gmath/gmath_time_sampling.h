#pragma once

#include <platform/qz_core.h>
#include <platform/qz_gmath/export.h>

// An ascending list of sample times.
class QZ_GMATH_EXPORT GMathTimeSampling {
  public:
    GMathTimeSampling() = default;
    // `times` must be finite and ascend; equal neighbours are allowed.
    explicit GMathTimeSampling(CoreBasicArray<double> const& times);
    // One sample at `time`.
    explicit GMathTimeSampling(double const& time);

    unsigned int const& get_sample_count() const { return m_times.get_count(); }
    // `index` must be below the sample count.
    double const& get_sample_time(unsigned int const& index) const { return m_times[index]; }

    // The sample at or before `time`, and how far `time` lies towards the next one, in [0, 1].
    // Before the first sample: 0 and 0; at or after the last: the last span and 1; with fewer than
    // two samples, or a NaN time: 0 and 0.
    void get_span(double const& time, unsigned int& index, double& factor) const;

    unsigned long long get_memory_size() const { return m_times.get_memory_size(); }

  private:
    CoreArray<double> m_times;
};
