#include <tools/qzpoly/pictures/camera.h>

#include <tools/qzpoly/terminal/numbers.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr double degree = std::numbers::pi / 180.0;
constexpr double margin = 1.12;  // room around a fitted geometry
// From this share of its area facing one way to the side, a surface is taken for an open one, to be
// seen from there: a mask, or a room without its front wall.
constexpr double open_share = 0.1;

GMathVec3<double> to_vector(std::vector<double> const& v) { return {v[0], v[1], v[2]}; }

// Some unit vector at right angles to the vertical: the front of a model that is not open. Models
// that stand along y look to +z, others to -y.
GMathVec3<double> get_usual_front(GMathVec3<double> const& vertical) {
    GMathVec3<double> const wish =
        std::abs(vertical.y) > 0.7 ? GMathVec3<double>(0, 0, 1) : GMathVec3<double>(0, -1, 0);
    GMathVec3<double> const front = gmath_unit(wish - vertical * gmath_dot(wish, vertical));
    return gmath_length(front) > 0.5 ? front : GMathVec3<double>(1, 0, 0);
}

// A view by its name: where the eye is around the vertical from the front, and how far up.
struct NamedView {
    char const* name;
    double azimuth_degrees;
    double elevation_degrees;
};
constexpr NamedView named_views[] = {
    {"front", 0, 0}, {"back", 180, 0},   {"left", -90, 0},          {"right", 90, 0},
    {"top", 0, 90},  {"bottom", 0, -90}, {"three-quarter", 45, 25},
};

NamedView const* find_view(std::string const& name) {
    for (NamedView const& view : named_views) {
        if (view.name == name) {
            return &view;
        }
    }
    return nullptr;
}

// From the target to the eye. `upwards`, of the picture, is left alone where the vertical will do.
GMathVec3<double> get_direction(NamedView const& view, GMathVec3<double> const& vertical,
                                double const& turn_degrees, GMathVec3<double>& upwards) {
    GMathVec3<double> const front = get_usual_front(vertical);
    double const azimuth = (view.azimuth_degrees + turn_degrees) * degree;
    GMathVec3<double> const level =
        front * std::cos(azimuth) + gmath_cross(vertical, front) * std::sin(azimuth);
    if (std::fabs(view.elevation_degrees) == 90) {
        upwards = view.elevation_degrees > 0 ? -level : level;
        return view.elevation_degrees > 0 ? vertical : -vertical;
    }
    double const elevation = view.elevation_degrees * degree;
    return level * std::cos(elevation) + vertical * std::sin(elevation);
}

// From the target to the eye.
GMathVec3<double> choose_direction(ToolExtent const& extent, GMathVec3<double> const& vertical,
                                   double const& turn_degrees) {
    GMathVec3<double> front = get_usual_front(vertical);
    double azimuth = 32 * degree;
    double elevation = 20 * degree;
    GMathVec3<double> const facing =
        extent.area_vector - vertical * gmath_dot(extent.area_vector, vertical);
    double const share = extent.area > 0 ? gmath_length(facing) / extent.area : 0.0;
    if (share > open_share) {
        front = gmath_unit(facing);
        azimuth = 8 * degree * (1 - share);
        elevation = 6 * degree * (1 - share);
    }
    azimuth += turn_degrees * degree;
    GMathVec3<double> const side = gmath_cross(vertical, front);
    return (front * std::cos(azimuth) + side * std::sin(azimuth)) * std::cos(elevation) +
           vertical * std::sin(elevation);
}

// The part of the picture that the geometry takes, and how far back the eye must go for it.
struct Fit {
    double left = 1e300;
    double right = -1e300;
    double bottom = 1e300;
    double top = -1e300;
    double retreat = -1e300;  // of the eye along -forward, so that all lies in the picture
};

Fit compute_fit(ToolExtent const& extent, ToolCamera const& camera) {
    Fit fit;
    for (GMathBbox3<double> const& box : extent.primitive_boxes) {
        for (unsigned int corner = 0; corner < 8; ++corner) {
            GMathVec3<double> const point((corner & 1) != 0 ? box.maximum.x : box.minimum.x,
                                          (corner & 2) != 0 ? box.maximum.y : box.minimum.y,
                                          (corner & 4) != 0 ? box.maximum.z : box.minimum.z);
            GMathVec3<double> const d = point - camera.eye;
            double const depth = gmath_dot(d, camera.forward);
            double const x = gmath_dot(d, camera.right) / camera.half_width;
            double const y = gmath_dot(d, camera.up) / camera.half_height;
            fit.retreat = std::max(fit.retreat, std::max(std::abs(x), std::abs(y)) - depth);
            if (depth > 0) {
                fit.left = std::min(fit.left, x / depth);
                fit.right = std::max(fit.right, x / depth);
                fit.bottom = std::min(fit.bottom, y / depth);
                fit.top = std::max(fit.top, y / depth);
            }
        }
    }
    return fit;
}

// Moves the eye along the picture and along its line of sight until the geometry fills the middle.
void fit_eye(ToolExtent const& extent, double const& radius, ToolCamera& camera) {
    camera.eye = camera.eye - camera.forward * (radius * 4 / camera.half_height);
    for (int round = 0; round < 6; ++round) {
        Fit const fit = compute_fit(extent, camera);
        GMathVec3<double> const center = (extent.bbox.minimum + extent.bbox.maximum) * 0.5;
        double const depth = gmath_dot(center - camera.eye, camera.forward);
        double const x = (fit.left + fit.right) * 0.5 * camera.half_width * depth;
        double const y = (fit.bottom + fit.top) * 0.5 * camera.half_height * depth;
        camera.eye += camera.right * x + camera.up * y;
        camera.eye = camera.eye - camera.forward * compute_fit(extent, camera).retreat;
    }
    double const depth =
        gmath_dot((extent.bbox.minimum + extent.bbox.maximum) * 0.5 - camera.eye, camera.forward);
    camera.eye = camera.eye - camera.forward * (depth * (margin - 1));
}

bool orient(GMathVec3<double> const& forward, GMathVec3<double> const& upwards,
            ToolCamera& camera) {
    camera.forward = gmath_unit(forward);
    camera.right = gmath_unit(gmath_cross(camera.forward, upwards));
    camera.up = gmath_cross(camera.right, camera.forward);
    // False where forward is 0, along what is upwards, or no number.
    return gmath_length(gmath_cross(camera.forward, upwards)) > 1e-9;
}

}  // namespace

GMathBasicRay ToolCamera::make_ray(double const& x, double const& y) const {
    double const across = (2 * x / width - 1) * half_width;
    double const upwards = (1 - 2 * y / height) * half_height;
    return {eye, gmath_unit(forward + right * across + up * upwards)};
}

void ToolCamera::project(GMathVec3<double> const& point, double& x, double& y,
                         double& depth) const {
    GMathVec3<double> const d = point - eye;
    depth = gmath_dot(d, forward);
    x = (gmath_dot(d, right) / (depth * half_width) + 1) * 0.5 * width;
    y = (1 - gmath_dot(d, up) / (depth * half_height)) * 0.5 * height;
}

void add_camera_options(CLI::App& command, ToolCameraOptions& options) {
    std::string const group = "Camera";
    CLI::Option* const eye = command.add_option("--eye", options.eye, "Where the camera stands");
    eye->type_name("X Y Z")->expected(3)->check(check_finite)->group(group);
    CLI::Option* const view = command.add_option("--camera", options.view);
    std::string names;
    for (NamedView const& named : named_views) {
        names += make_text(names.empty() ? "" : ", ", named.name);
    }
    view->type_name("NAME")->description("From where it looks: " + names)->excludes(eye);
    view->group(group)->check([names](std::string const& name) {
        return find_view(name) != nullptr ? std::string()
                                          : "no such view: " + name + "; there are " + names;
    });
    command.add_option("--turn", options.turn_degrees, "Walks around it, in degrees")
        ->check(check_finite)
        ->excludes(eye)
        ->group(group);
    CLI::Option* const target = command.add_option("--target", options.target, "What it looks at");
    target->type_name("X Y Z")->expected(3)->check(check_finite)->group(group);
    CLI::Option* const up = command.add_option("--up", options.up, "Away from the ground");
    up->type_name("X Y Z")->expected(3)->check(check_finite)->group(group)->capture_default_str();
    command.add_option("--fov", options.fov_degrees, "Height of the view in degrees")
        ->check(CLI::Range(1.0, 170.0))
        ->check(check_finite)
        ->group(group)
        ->capture_default_str();
    command.add_option("--size", options.size, "Picture in pixels")
        ->type_name("W H")
        ->expected(2)
        ->check(CLI::Range(1u, 16384u))
        ->group(group)
        ->capture_default_str();
}

// Written so that no NaN passes.
bool is_in_reach(ToolCamera const& camera) {
    auto const is_near = [](GMathVec3<double> const& v, double const& limit) {
        return std::fabs(v.x) <= limit && std::fabs(v.y) <= limit && std::fabs(v.z) <= limit;
    };
    return is_near(camera.eye, 10 * tool_largest_coordinate) && is_near(camera.forward, 2) &&
           is_near(camera.right, 2) && is_near(camera.up, 2) && camera.half_width < 1e9 &&
           camera.half_height > 0;
}

bool make_camera(ToolCameraOptions const& options, ToolExtent const& extent, ToolMessages& messages,
                 ToolCamera& camera) {
    bool const is_empty = extent.primitive_boxes.empty();
    GMathBbox3<double> const bbox =
        is_empty ? GMathBbox3<double>({-1, -1, -1}, {1, 1, 1}) : extent.bbox;
    GMathVec3<double> const center = (bbox.minimum + bbox.maximum) * 0.5;
    double const radius = std::max(gmath_length(bbox.maximum - bbox.minimum) * 0.5, 1e-6);
    camera.width = options.size[0];
    camera.height = options.size[1];
    camera.half_height = std::tan(options.fov_degrees * 0.5 * degree);
    camera.half_width = camera.half_height * camera.width / camera.height;
    camera.vertical = gmath_unit(to_vector(options.up));
    camera.eye = options.eye.empty() ? center : to_vector(options.eye);
    GMathVec3<double> const target = options.target.empty() ? center : to_vector(options.target);
    GMathVec3<double> upwards = camera.vertical;
    NamedView const* const view = find_view(options.view);
    GMathVec3<double> const forward =
        !options.eye.empty() ? target - camera.eye
        : view != nullptr    ? -get_direction(*view, camera.vertical, options.turn_degrees, upwards)
                             : -choose_direction(extent, camera.vertical, options.turn_degrees);
    if (!orient(forward, upwards, camera)) {
        messages.fail("the camera needs an eye apart from its target, and an --up across its view");
        return false;
    }
    if (options.eye.empty() && options.target.empty() && !is_empty) {
        fit_eye(extent, radius, camera);
    } else if (options.eye.empty()) {
        camera.eye = target - camera.forward * (margin * radius /
                                                std::min(camera.half_height, camera.half_width));
    }
    if (!is_in_reach(camera)) {
        messages.fail("the camera is out of reach");
        return false;
    }
    return true;
}

bool make_turning_cameras(ToolCameraOptions const& options, ToolExtent const& extent,
                          unsigned int const& count, ToolMessages& messages,
                          std::vector<ToolCamera>& cameras) {
    ToolCameraOptions turned = options;
    GMathVec3<double> const center = extent.primitive_boxes.empty()
                                         ? GMathVec3<double>(0, 0, 0)
                                         : (extent.bbox.minimum + extent.bbox.maximum) * 0.5;
    if (turned.target.empty()) {
        turned.target = {center.x, center.y, center.z};
    }
    double retreat = extent.primitive_boxes.empty() ? 0.0 : -1e300;
    for (unsigned int i = 0; i < count; ++i) {
        turned.turn_degrees = options.turn_degrees + 360.0 * i / count;
        cameras.emplace_back();
        if (!make_camera(turned, extent, messages, cameras.back())) {
            return false;
        }
        if (!extent.primitive_boxes.empty()) {
            retreat = std::max(retreat, compute_fit(extent, cameras.back()).retreat);
        }
    }
    for (ToolCamera& camera : cameras) {
        double const distance = gmath_length(to_vector(turned.target) - camera.eye) + retreat;
        camera.eye = to_vector(turned.target) - camera.forward * (distance * margin);
    }
    return true;
}
