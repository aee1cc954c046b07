#pragma once

#include <platform/qz_gmath.h>

#include <cassert>

// Every vertex's position at one time: a weighted sum of up to four arrays, none of them owned.
class GeometryPositionArray {
  public:
    static constexpr unsigned int max_pair_count = 4;

    // No pairs, for arrays of `point_count` positions.
    void init(unsigned int const& point_count) {
        m_point_count = point_count;
        m_pair_count = 0;
    }
    void append(GMathVec3<float> const* array, float const& weight) {
        assert(m_pair_count < max_pair_count);
        m_arrays[m_pair_count] = array;
        m_weights[m_pair_count] = weight;
        ++m_pair_count;
    }

    // The sum of weight * array[vertex], from the first pair on, in floats.
    GMathVec3<float> operator[](unsigned int const& vertex) const {
        assert(vertex < m_point_count);
        GMathVec3<float> sum(0, 0, 0);
        for (unsigned int i = 0; i < m_pair_count; ++i) {
            sum += m_arrays[i][vertex] * m_weights[i];
        }
        return sum;
    }

    unsigned int const& get_point_count() const { return m_point_count; }
    unsigned int const& get_pair_count() const { return m_pair_count; }
    GMathVec3<float> const* get_array(unsigned int const& pair) const { return m_arrays[pair]; }
    float const& get_weight(unsigned int const& pair) const { return m_weights[pair]; }

  private:
    GMathVec3<float> const* m_arrays[max_pair_count];
    float m_weights[max_pair_count];
    unsigned int m_point_count = 0;
    unsigned int m_pair_count = 0;
};
