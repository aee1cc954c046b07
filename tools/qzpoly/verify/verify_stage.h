#pragma once

#include <poly/mesh/poly_mesh.h>

#include <memory>
#include <vector>

// Where a mesh is verified.
struct ToolVerifyPlace {
    char const* name;
    bool is_far;
    bool is_moving;
};

// A mesh that was put somewhere, and where its vertices are.
class ToolVerifyStage {
  public:
    // A near mesh stays as it is, unless it is further from the origin than it is large: then it is
    // moved there. A far one is scaled to a size of 200 first. A moving one turns about its middle.
    // Refers to `mesh`.
    ToolVerifyStage(PolyMesh const& mesh, ToolVerifyPlace const& place);

    ToolVerifyPlace const& get_place() const { return m_place; }
    PolyMesh const& get_mesh() const { return *m_mesh; }
    CtxShader const& get_shader_ctx() const { return m_shader_ctx; }
    // When the shutter opens and closes; none when nothing moves.
    std::vector<double> const& get_times() const { return m_times; }

    // The vertices at a time, computed as rays see them. Valid as long as this object.
    GeometryPositionArray get_positions(double const& time) const;

    // All positions of the primitives' corners that are numbers, over all times.
    GMathBbox3<double> const& get_bbox() const { return m_bbox; }
    double const& get_size() const { return m_size; }  // the longest side, at rest
    // Whether no ray may miss the mesh under this test.
    bool is_bar(GeometryRaytraceCtx::TestMode const& mode) const {
        return mode == GeometryRaytraceCtx::TEST_EXACT && !m_place.is_far;
    }
    // The largest coordinate.
    double const& get_reach() const { return m_reach; }

  private:
    void measure(CoreArray<unsigned int> const& corners);

    ToolVerifyPlace m_place;
    std::unique_ptr<PolyMesh> m_mesh;
    std::vector<double> m_times;
    CtxShader m_shader_ctx;
    GMathBbox3<double> m_bbox;
    double m_size = 0;
    double m_reach = 0;
};

// Whether the primitives' corners that are numbers have an extent that can be scaled and searched.
bool can_be_staged(PolyMesh const& mesh);
bool has_finite_corners(PolyMesh const& mesh);

// At 33 times, how often a corner of a primitive, as rays see it, lies outside of the box of the
// primitive or of the mesh. Corners that are no numbers have no place in either. An interrupt ends
// it.
unsigned long long count_bound_faults(ToolVerifyStage const& stage);
