// Draws a model by the public headers alone: rays walk a tree of boxes over its primitives.
// usage: box_tree MODEL > PICTURE.pgm
#include <poly/mesh/poly_mesh.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>
#include <span>
#include <vector>

using Vec = GMathVec3<double>;
using Box = GMathBbox3<double>;

struct Node {
    Box box;
    unsigned int primitive;
    std::unique_ptr<Node> children[2];  // none: a leaf
};

// Halves the leaves at their middle, along x, y and z in turn.
std::unique_ptr<Node> build(std::span<std::unique_ptr<Node>> leaves, unsigned int axis) {
    if (leaves.size() == 1) {
        return std::move(leaves[0]);
    }
    std::size_t const half = leaves.size() / 2;
    auto const lies_before = [&](auto& a, auto& b) {
        return a->box.minimum[axis] < b->box.minimum[axis];
    };
    std::nth_element(leaves.begin(), leaves.first(half).end(), leaves.end(), lies_before);
    std::unique_ptr<Node> node(new Node{Box::get_inverted(), 0, {}});
    for (unsigned int k = 0; k < 2; ++k) {
        auto const part = k == 0 ? leaves.first(half) : leaves.subspan(half);
        node->children[k] = build(part, (axis + 1) % 3);
        node->box.extend(node->children[k]->box.minimum);
        node->box.extend(node->children[k]->box.maximum);
    }
    return node;
}

void intersect(Node const& node, PolyMesh const& mesh, GeometryRaytraceCtx& rays,
               GeometryHit const& hit) {
    GMathBasicRay const& ray = rays.get_basic_ray(0);
    double low = 0, high = hit.primitive_index == 0xFFFFFFFFu ? INFINITY : hit.distance;
    for (unsigned int axis = 0; axis < 3; ++axis) {
        double const origin = ray.get_origin()[axis], direction = ray.get_direction()[axis];
        double const a = (node.box.minimum[axis] - origin) / direction;
        double const b = (node.box.maximum[axis] - origin) / direction;
        low = std::max(low, std::min(a, b));
        high = std::min(high, std::max(a, b));
    }
    if (low <= high && node.children[0]) {
        intersect(*node.children[0], mesh, rays, hit);
        intersect(*node.children[1], mesh, rays, hit);
    } else if (low <= high) {
        mesh.intersect_primitive(CtxEval(), node.primitive, rays);
    }
}

int main(int count, char** arguments) {
    PolyMesh mesh;
    AppProgressBar building("building");  // without it, 4-gons that are not convex stay quads
    if (count != 2 || !mesh.import_from_file(arguments[1], "", 0, nullptr, &building)) {
        return 1;  // the log has told the reason on stderr
    }
    Vec const low = mesh.get_bbox().minimum, high = mesh.get_bbox().maximum;
    double const size = gmath_length(high - low), margin = 1e-6 * (size + gmath_length(low));
    std::vector<std::unique_ptr<Node>> leaves;
    for (unsigned int i = 0; i < mesh.get_primitive_count(); ++i) {
        leaves.emplace_back(new Node{Box(), i, {}});
        Box& box = leaves.back()->box;  // wider by more than rounding moves hits
        mesh.compute_primitive_bbox(CtxEval(), i, box);
        box = {box.minimum - Vec(margin, margin, margin),
               box.maximum + Vec(margin, margin, margin)};
    }
    std::unique_ptr<Node> const root = leaves.empty() ? nullptr : build(leaves, 0);
    int const width = 256;
    std::printf("P5 %d %d 255\n", width, width);
    for (int pixel = 0; root && pixel < width * width; ++pixel) {
        int const row = pixel / width, column = pixel % width;
        Vec const place(column + 0.5, width - row - 0.5, 3.0 * width);
        GeometryRay ray;
        ray.ray = GMathBasicRay((low + high - Vec(size, size, size)) * 0.5 + place * (size / width),
                                {0, 0, -1});
        GeometryHit hit;
        GeometryRaytraceCtx rays(&ray, &hit, 1);
        rays.test_mode = GeometryRaytraceCtx::TEST_EXACT;  // no ray slips between neighbours
        intersect(*root, mesh, rays, hit);
        GeometryFragment fragment;
        fragment.primitive_index = hit.primitive_index;
        fragment.s = hit.s;
        fragment.t = hit.t;
        GeometrySample sample;  // the normal stays zero where nothing was hit
        mesh.compute_fragment_sample(CtxEval(), fragment, sample);
        std::putchar(int(255 * std::abs(sample.get_shading_normal().z)));
    }
}
