#include <python/queries.h>

#include <python/array_arguments.h>

#include <cmath>
#include <limits>

namespace py = pybind11;

namespace {

constexpr unsigned int none = 0xFFFFFFFFu;

using Numbers = PythonArray<double>;

// `count` rows of `width` numbers.
template <typename T>
PythonArray<T> make_rows(py::ssize_t const& count, py::ssize_t const& width) {
    return PythonArray<T>({count, width});
}

GMathVec3<double> get_row(Numbers const& rows, py::ssize_t const& row) {
    double const* const at = rows.data() + (rows.shape(0) == 1 ? 0 : 3 * row);
    return {at[0], at[1], at[2]};
}

// As many entries as both have, where one entry serves for all.
py::ssize_t get_common_count(py::ssize_t const& a, py::ssize_t const& b) {
    if (a != b && a != 1 && b != 1) {
        throw py::value_error("origins and directions: " + std::to_string(a) + " and " +
                              std::to_string(b) + " rows do not go together");
    }
    return a == 1 ? b : a;
}

// Places on primitives, as arrays name them.
class Places {
  public:
    Places(PolyMesh const& mesh, py::object const& primitives, py::object const& s,
           py::object const& t, double const& time)
        : m_primitives(get_indices(primitives, "primitives", mesh.get_primitive_count(), true)),
          m_s(get_numbers(s, "s")),
          m_t(get_numbers(t, "t")),
          m_time(time) {
        if (m_s.size() != get_count() || m_t.size() != get_count()) {
            throw py::value_error("primitives, s and t: as many entries of each are needed, not " +
                                  std::to_string(get_count()) + ", " + std::to_string(m_s.size()) +
                                  " and " + std::to_string(m_t.size()));
        }
    }

    py::ssize_t get_count() const { return m_primitives.get_count(); }

    GeometryFragment operator[](py::ssize_t const& place) const {
        GeometryFragment fragment;
        fragment.primitive_index = m_primitives[static_cast<unsigned int>(place)];
        fragment.s = m_s.data()[place];
        fragment.t = m_t.data()[place];
        fragment.time = m_time;
        return fragment;
    }

  private:
    CoreArray<unsigned int> m_primitives;
    Numbers m_s;
    Numbers m_t;
    double m_time;
};

template <typename T>
void put_row(T* rows, py::ssize_t const& row, GMathVec3<T> const& value) {
    rows[3 * row] = value.x;
    rows[3 * row + 1] = value.y;
    rows[3 * row + 2] = value.z;
}

py::object make_record(char const* name, py::tuple const& fields) {
    return py::module_::import("qz_poly.records").attr(name)(*fields);
}

}  // namespace

py::object intersect(PythonMesh const& mesh, py::object const& origins,
                     py::object const& directions, bool const& exact,
                     double const& minimum_distance, double const& maximum_distance,
                     std::optional<double> const& time) {
    Numbers const origin_rows = get_rows<double>(origins, "origins", true);
    Numbers const direction_rows = get_rows<double>(directions, "directions", true);
    py::ssize_t const count = get_common_count(origin_rows.shape(0), direction_rows.shape(0));
    py::array_t<unsigned int> primitives(count);
    py::array_t<double> s(count), t(count), distances(count);
    unsigned int* const primitive_at = primitives.mutable_data();
    double* const s_at = s.mutable_data();
    double* const t_at = t.mutable_data();
    double* const distance_at = distances.mutable_data();
    {
        py::gil_scoped_release const no_gil;
        auto const tree = mesh.get_tree(time);
        GeometryRay ray;
        ray.time = time.value_or(0.0);
        ray.minimum_distance = minimum_distance;
        ray.maximum_distance = std::min(maximum_distance, ray.maximum_distance);
        for (py::ssize_t i = 0; i < count; ++i) {
            ray.ray = GMathBasicRay(get_row(origin_rows, i), get_row(direction_rows, i));
            GeometryHit const hit = tree->find_nearest(
                ray, exact ? GeometryRaytraceCtx::TEST_EXACT : GeometryRaytraceCtx::TEST_TOLERANT);
            primitive_at[i] = hit.primitive_index;
            s_at[i] = hit.s;
            t_at[i] = hit.t;
            distance_at[i] = hit.primitive_index == none ? INFINITY : hit.distance;
        }
    }
    return make_record("Hits", py::make_tuple(primitives, s, t, distances));
}

py::object sample(PythonMesh const& mesh, py::object const& primitives, py::object const& s,
                  py::object const& t, std::optional<double> const& time) {
    Places const places(mesh.get(), primitives, s, t, time.value_or(0.0));
    py::ssize_t const count = places.get_count();
    PythonArray<float> rows[5];
    float* at[5];
    for (unsigned int k = 0; k < 5; ++k) {
        rows[k] = make_rows<float>(count, 3);
        at[k] = rows[k].mutable_data();
    }
    {
        py::gil_scoped_release const no_gil;
        for (py::ssize_t i = 0; i < count; ++i) {
            GeometrySample place;
            mesh.get().compute_fragment_sample(CtxEval(), places[i], place);
            put_row(at[0], i, place.get_position());
            put_row(at[1], i, place.get_geometric_normal());
            put_row(at[2], i, place.get_shading_normal());
            put_row(at[3], i, place.get_position_ds());
            put_row(at[4], i, place.get_position_dt());
        }
    }
    return make_record("Sample", py::make_tuple(rows[0], rows[1], rows[2], rows[3], rows[4]));
}

py::array sample_uv(PythonMesh const& mesh, long long const& map, py::object const& primitives,
                    py::object const& s, py::object const& t) {
    unsigned int const number = check_map(map, mesh.get().get_uv_map_count(), "uv");
    Places const places(mesh.get(), primitives, s, t, 0.0);
    auto rows = make_rows<double>(places.get_count(), 3);
    double* const at = rows.mutable_data();
    {
        py::gil_scoped_release const no_gil;
        for (py::ssize_t i = 0; i < places.get_count(); ++i) {
            GMathVec3<double> uvw(0, 0, 0), ds, dt;
            if (places[i].primitive_index != none) {
                mesh.get().compute_fragment_uvw(CtxEval(), places[i], number, uvw, ds, dt);
            }
            put_row(at, i, uvw);
        }
    }
    return rows;
}

py::array sample_color(PythonMesh const& mesh, long long const& map, py::object const& primitives,
                       py::object const& s, py::object const& t) {
    unsigned int const number = check_map(map, mesh.get().get_color_map_count(), "color");
    Places const places(mesh.get(), primitives, s, t, 0.0);
    auto rows = make_rows<float>(places.get_count(), 4);
    float* at = rows.mutable_data();
    {
        py::gil_scoped_release const no_gil;
        for (py::ssize_t i = 0; i < places.get_count(); ++i) {
            GMathVec4<float> color(0, 0, 0, 0);
            if (places[i].primitive_index != none) {
                mesh.get().compute_fragment_color(CtxEval(), places[i], number, color);
            }
            for (float const component : {color.x, color.y, color.z, color.w}) {
                *at++ = component;
            }
        }
    }
    return rows;
}

unsigned int check_map(long long const& map, unsigned int const& count, char const* kind) {
    if (map < 0 || map >= count) {
        throw py::index_error("there is no " + std::string(kind) + " map " + std::to_string(map) +
                              " of " + std::to_string(count));
    }
    return static_cast<unsigned int>(map);
}
