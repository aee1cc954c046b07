#include <platform/qz_gmath/gmath_time_sampling.h>

#include <algorithm>
#include <cassert>
#include <cmath>

GMathTimeSampling::GMathTimeSampling(CoreBasicArray<double> const& times) : m_times(times) {
    assert(std::is_sorted(times.begin(), times.end()));
}

GMathTimeSampling::GMathTimeSampling(double const& time) { m_times.append(time); }

void GMathTimeSampling::get_span(double const& time, unsigned int& index, double& factor) const {
    double const wanted = time;
    index = 0;
    factor = 0.0;
    unsigned int const count = m_times.get_count();
    if (count < 2 || !(wanted > m_times[0])) {
        return;
    }
    if (wanted >= m_times[count - 1]) {
        index = count - 2;
        factor = 1.0;
        return;
    }
    double const* const after = std::upper_bound(m_times.begin(), m_times.end(), wanted);
    index = static_cast<unsigned int>(after - m_times.begin()) - 1;
    double const start = m_times[index];
    double const end = m_times[index + 1];
    // The distance between two times may be beyond the doubles; that between their halves is not.
    double const scale = std::isinf(end - start) ? 0.5 : 1.0;
    factor = (scale * wanted - scale * start) / (scale * end - scale * start);
}
