#include <python/array_arguments.h>

#include <cstring>
#include <string>

namespace py = pybind11;

namespace {

constexpr unsigned int none = 0xFFFFFFFFu;
constexpr unsigned int largest_count = 0xFFFFFFFEu;

std::string describe_shape(py::array const& array) {
    return py::str(array.attr("shape")).cast<std::string>();
}

// An array of one of these kinds: 'i' and 'u' whole numbers, 'f' floats. An empty one is of any.
py::array get_array(py::object const& argument, char const* name, char const* kinds) {
    py::array const array = py::array::ensure(argument);
    if (!array) {
        PyErr_Clear();
        throw py::type_error(std::string(name) + ": an array is needed");
    }
    if (array.size() > 0 && std::strchr(kinds, array.dtype().kind()) == nullptr) {
        throw py::type_error(std::string(name) +
                             (std::strchr(kinds, 'f') != nullptr
                                  ? ": numbers are needed, not "
                                  : ": whole numbers are needed, not ") +
                             py::str(array.dtype()).cast<std::string>());
    }
    if (array.size() > largest_count) {
        throw py::value_error(std::string(name) + ": more than 2^32 - 2 entries");
    }
    return array;
}

[[noreturn]] void refuse_shape(char const* name, char const* wanted, py::array const& array) {
    throw py::value_error(std::string(name) + ": the shape must be " + wanted + ", not " +
                          describe_shape(array));
}

}  // namespace

template <typename T>
PythonArray<T> get_rows(py::object const& argument, char const* name, bool const& one_will_do) {
    py::array const array = get_array(argument, name, "iuf");
    bool const is_one = one_will_do && array.ndim() == 1 && array.shape(0) == 3;
    if (!is_one && (array.ndim() != 2 || array.shape(1) != 3)) {
        refuse_shape(name, one_will_do ? "(n, 3) or (3,)" : "(n, 3)", array);
    }
    auto rows = PythonArray<T>::ensure(array);
    if (!rows) {
        throw py::error_already_set();
    }
    return is_one ? PythonArray<T>(rows.reshape({1, 3})) : rows;
}

template PythonArray<float> get_rows<float>(py::object const&, char const*, bool const&);
template PythonArray<double> get_rows<double>(py::object const&, char const*, bool const&);

PythonArray<double> get_numbers(py::object const& argument, char const* name) {
    py::array const array = get_array(argument, name, "iuf");
    if (array.ndim() > 1) {
        refuse_shape(name, "(n,) or ()", array);
    }
    auto numbers = PythonArray<double>::ensure(array);
    if (!numbers) {
        throw py::error_already_set();
    }
    return PythonArray<double>(numbers.reshape({-1}));
}

CoreArray<unsigned int> get_indices(py::object const& argument, char const* name,
                                    unsigned int const& limit, bool const& may_be_none) {
    py::array const array = get_array(argument, name, "iu");
    // 64-bit entries above 2^63 become negative, and are refused like those.
    auto const entries = PythonArray<long long>::ensure(array);
    if (!entries) {
        throw py::error_already_set();
    }
    CoreArray<unsigned int> indices(static_cast<unsigned int>(entries.size()));
    long long const* const values = entries.data();
    for (unsigned int i = 0; i < indices.get_count(); ++i) {
        long long const value = values[i];
        bool const is_none = may_be_none && value == none;
        if (!is_none && (value < 0 || value >= static_cast<long long>(limit))) {
            throw py::index_error(std::string(name) + ": entry " + std::to_string(i) + " is " +
                                  std::to_string(value) + ", not from 0 to below " +
                                  std::to_string(limit));
        }
        indices[i] = static_cast<unsigned int>(value);
    }
    return indices;
}

CoreArray<GMathVec4<unsigned char>> get_colors(py::object const& argument, char const* name) {
    py::array const array = get_array(argument, name, "u");
    if (array.ndim() != 2 || array.shape(1) != 4) {
        refuse_shape(name, "(n, 4)", array);
    }
    if (array.itemsize() != 1) {
        throw py::type_error(std::string(name) + ": bytes (uint8) are needed");
    }
    auto const bytes = PythonArray<unsigned char>::ensure(array);
    CoreArray<GMathVec4<unsigned char>> colors(static_cast<unsigned int>(array.shape(0)));
    if (!colors.is_empty()) {
        std::memcpy(static_cast<void*>(colors.get_data()), bytes.data(),
                    sizeof(colors[0]) * colors.get_count());
    }
    return colors;
}

CoreArray<GMathVec3<float>> copy_rows(PythonArray<float> const& rows) {
    CoreArray<GMathVec3<float>> copy(static_cast<unsigned int>(rows.shape(0)));
    if (!copy.is_empty()) {
        std::memcpy(static_cast<void*>(copy.get_data()), rows.data(),
                    sizeof(copy[0]) * copy.get_count());
    }
    return copy;
}
