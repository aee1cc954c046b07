#pragma once

#include <platform/qz_core.h>
#include <platform/qz_gmath.h>

#include <pybind11/numpy.h>

// Entries one after another in memory, brought into type T where they are of another.
template <typename T>
using PythonArray = pybind11::array_t<T, pybind11::array::c_style | pybind11::array::forcecast>;

// Arrays that Python hands over, checked. Each raises TypeError for entries of another kind,
// ValueError for another shape and IndexError for indices out of range; `name` is what the texts
// call it.

// Rows of three numbers, as float32 or float64: shape (n, 3), or (3,) for one row if `one_will_do`.
template <typename T>
PythonArray<T> get_rows(pybind11::object const& argument, char const* name,
                        bool const& one_will_do);

// One number a row: shape (n,), or a number for one.
PythonArray<double> get_numbers(pybind11::object const& argument, char const* name);

// Whole numbers from 0 to below `limit`, or 0xFFFFFFFF if `may_be_none`; of any shape, flattened.
CoreArray<unsigned int> get_indices(pybind11::object const& argument, char const* name,
                                    unsigned int const& limit, bool const& may_be_none);

// Rows of four bytes: shape (n, 4).
CoreArray<GMathVec4<unsigned char>> get_colors(pybind11::object const& argument, char const* name);

// The rows as an array of the library.
CoreArray<GMathVec3<float>> copy_rows(PythonArray<float> const& rows);
