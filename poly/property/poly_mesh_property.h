#pragma once

#include <platform/qz_core.h>
#include <platform/qz_geometry.h>
#include <platform/qz_resource.h>
#include <poly/mesh/poly_mesh.h>

#include <vector>

// An attribute of a polygon mesh: items of any length and value type, by vertex, polygon corner or
// polygon, or one for all.
//
//     PolyMeshProperty density(mesh, PolyMeshProperty::TYPE_VERTEX, ResourceProperty::TYPE_FLOAT,
//                              1, mesh.get_vertex_count(), 0, "density", GMathTimeSampling(0.0),
//                              true);
//     density.init(0, block);  // a new ResourceProperty with an item per vertex
//     density.evaluate(ctx, fragment, &value, nullptr, nullptr, nullptr, 1);
//
// The mesh is not owned; it must outlive the property and keep its polygons.
//
// |                   | blocks                   | who deletes the blocks                    |
// |-------------------|--------------------------|-------------------------------------------|
// | construction      | none                     | the property, if it was told to own them  |
// | copy construction | the source's, not copies | both, if the source owns them             |
// | destruction       | deleted if owned         |                                           |
//
// Deliberate: a copy keeps the flag of ownership, so the caller must see to it that only one of
// two owners is left to delete the blocks they share.
class QZ_POLY_EXPORT PolyMeshProperty : public GeometryProperty {
  public:
    // What the items belong to. A property of any other number takes no blocks and evaluates to
    // nothing.
    enum Type : unsigned int {
        TYPE_VERTEX = 0,    // a vertex; with indices, what the index of a polygon corner names
        TYPE_POLYGON = 1,   // a polygon, indices or not
        TYPE_CONSTANT = 2,  // the whole mesh: item 0
    };

    // `time_sampling` has a sample per block. The counts are those of GeometryProperty.
    // `owns_values`: delete an attached block when another takes its place, when `init` takes it
    // away, and at the end.
    PolyMeshProperty(PolyMesh const& mesh, PolyMeshProperty::Type const& type,
                     ResourceProperty::Type const& value_type, unsigned int const& value_extent,
                     unsigned int const& value_count, unsigned int const& index_count,
                     CoreString const& name, GMathTimeSampling const& time_sampling,
                     bool const& owns_values);
    PolyMeshProperty(PolyMeshProperty const& other);
    PolyMeshProperty& operator=(PolyMeshProperty const&) = delete;
    ~PolyMeshProperty() override;

    static CoreClassInfo const& class_info();
    CoreClassInfo const& get_class_info() const override;
    static bool ___class_destructor__(void* object, bool const& is_array);

    // Attaches the block of motion sample `sample`, which must be below the sample count. False:
    // - a null block, or one of another value type: no block is attached to the sample any more;
    // - a block that does not fit, or an unknown type: what was attached stays.
    // A refused block stays the caller's. A block fits a constant always, and otherwise when there
    // are as many indices (without indices, items) as there are polygons, or vertices; with
    // indices, polygon corners in place of vertices.
    bool init(unsigned int const& sample, ResourceProperty* values);
    // Replaces the indices by a copy of `indices`: the number of the item of each polygon corner.
    // An empty array leaves the property without indices; its own array, from `get_indices`,
    // changes nothing. No block may be attached yet, since `init` holds them to the index count.
    void init_indices(CoreBasicArray<unsigned int> const& indices);

    // The block of a sample, loaded if need be; null when there is none.
    ResourceProperty const* get_values_property(unsigned int const& sample) const;
    // The same without loading.
    ResourceProperty const* get_attached_values(unsigned int const& sample) const {
        return m_values[sample];
    }

    CoreBasicArray<unsigned int> const& get_indices() const { return m_indices; }
    bool has_indices() const { return !m_indices.is_empty(); }
    PolyMesh const& get_mesh() const { return *m_mesh; }
    PolyMeshProperty::Type const& get_type() const { return m_type; }

    // The object's own size and, if it owns them, that of its blocks. Deliberate: indices are left
    // out.
    unsigned long long get_memory_size() const override;

  private:
    void set_block(unsigned int const& sample, ResourceProperty* values);
    bool has_fitting_count(ResourceProperty const& values) const;

    PolyMesh const* m_mesh;
    std::vector<ResourceProperty*> m_values;  // one per sample; null where nothing is attached
    CoreArray<unsigned int> m_indices;
    Type m_type;
    bool m_owns_values;
};
