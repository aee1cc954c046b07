#include <fuzz/query_property.h>

#include <fuzz/checks.h>

#include <algorithm>
#include <limits>
#include <vector>

namespace {

// With outputs just as large as they must be.
template <typename T, unsigned int max_count>
void evaluate_as(GeometryProperty const& property, GeometryFragment const& fragment) {
    T values[max_count];
    T d_ds[max_count];
    T d_dt[max_count];
    T d_extra[max_count];
    T* const nothing = nullptr;
    CtxEval const ctx;
    unsigned int const count =
        property.evaluate(ctx, fragment, values, d_ds, d_dt, d_extra, max_count);
    require(count <= max_count, "a property gives no more components than there is room for");
    require(property.evaluate(ctx, fragment, nothing, nothing, nothing, nothing, max_count) ==
                count,
            "a property gives as many components when nobody takes them");
}

void evaluate(GeometryProperty const& property, GeometryFragment const& fragment) {
    evaluate_as<long long, 1>(property, fragment);
    evaluate_as<long long, 70>(property, fragment);
    evaluate_as<double, 1>(property, fragment);
    evaluate_as<double, 70>(property, fragment);
}

}  // namespace

void query_property(GeometryObject const& geometry, GeometryProperty const& property) {
    std::vector<double> times = {-1.0, std::numeric_limits<double>::quiet_NaN()};
    GMathTimeSampling const& sampling = property.get_time_sampling();
    for (unsigned int sample = 0; sample < std::min(sampling.get_sample_count(), 3u); ++sample) {
        times.push_back(sampling.get_sample_time(sample) + 0.25 * sample);
    }
    unsigned int const primitive_count = geometry.get_primitive_count();
    for (double const time : times) {
        GeometryFragment fragment;
        fragment.time = time;
        evaluate(property, fragment);
        fragment.point_index = property.get_value_count();
        evaluate(property, fragment);
        fragment.point_index = 0;
        evaluate(property, fragment);
        for (unsigned int primitive = 0; primitive <= std::min(primitive_count, 2u); ++primitive) {
            fragment.primitive_index = primitive;
            fragment.s = 0.25;
            fragment.t = 0.5;
            evaluate(property, fragment);
        }
    }
    static_cast<void>(property.get_memory_size());
}
