#pragma once

#include <python/mesh.h>

#include <pybind11/pybind11.h>

// The ways to make a mesh. Each raises what the arguments, the file or the block deserve.

std::unique_ptr<PythonMesh>
make_from_arrays(pybind11::object const& positions, pybind11::object const& corners,
                 pybind11::object const& corner_counts, pybind11::object const& groups,
                 pybind11::object const& group_names, pybind11::object const& velocities,
                 pybind11::object const& uv_maps, pybind11::object const& normal_maps,
                 pybind11::object const& color_maps, bool const& check_quads);
std::unique_ptr<PythonMesh> make_from_file(pybind11::object const& path, pybind11::str const& item,
                                           bool const& check_quads);
std::unique_ptr<PythonMesh> make_from_block(pybind11::bytes const& block);
std::unique_ptr<PythonMesh> make_sphere(unsigned int const& segments, unsigned int const& rings,
                                        double const& radius);

// Names of a mesh are bytes; those that are no UTF-8 pass through Python as file names do.
pybind11::str make_text(CoreString const& name);
CoreString get_text(pybind11::handle const& text);
