#pragma once

#include <python/mesh.h>

#include <pybind11/numpy.h>

#include <optional>

// What rays meet and what surfaces are like, for many at once.

// qz_poly.Hits. Origins and directions: as many each, or one for all.
pybind11::object intersect(PythonMesh const& mesh, pybind11::object const& origins,
                           pybind11::object const& directions, bool const& exact,
                           double const& minimum_distance, double const& maximum_distance,
                           std::optional<double> const& time);

// qz_poly.Sample. A primitive of 0xFFFFFFFF gives zeros, here and below.
pybind11::object sample(PythonMesh const& mesh, pybind11::object const& primitives,
                        pybind11::object const& s, pybind11::object const& t,
                        std::optional<double> const& time);
pybind11::array sample_uv(PythonMesh const& mesh, long long const& map,
                          pybind11::object const& primitives, pybind11::object const& s,
                          pybind11::object const& t);
pybind11::array sample_color(PythonMesh const& mesh, long long const& map,
                             pybind11::object const& primitives, pybind11::object const& s,
                             pybind11::object const& t);

// `map` itself, where it is below `count`; raises IndexError otherwise.
unsigned int check_map(long long const& map, unsigned int const& count, char const* kind);
