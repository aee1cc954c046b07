#include <python/mesh.h>

#include <pybind11/pybind11.h>

#include <cstring>
#include <new>

PolyMesh const& PythonMesh::get() const {
    if (!m_mesh) {
        throw pybind11::type_error("this mesh has not been made");
    }
    return *m_mesh;
}

void* PythonMesh::operator new(std::size_t size) {
    return std::memset(::operator new(size), 0, size);
}

void PythonMesh::operator delete(void* object) { ::operator delete(object); }

std::shared_ptr<PythonBoxTree const> PythonMesh::get_tree(std::optional<double> const& time) const {
    std::lock_guard<std::mutex> const guard(m_mutex);
    if (!m_tree || m_tree_time != time) {
        m_tree = std::make_shared<PythonBoxTree>(get(), time ? &*time : nullptr);
        m_tree_time = time;
    }
    return m_tree;
}
