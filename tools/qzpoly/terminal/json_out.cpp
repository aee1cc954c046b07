#include <tools/qzpoly/terminal/json_out.h>

#include <cstdio>

namespace {

ToolJson make_json(GMathVec3<double> const& v) { return ToolJson::array({v.x, v.y, v.z}); }

}  // namespace

ToolJson make_json(GMathBbox3<double> const& box) {
    if (box.is_empty()) {
        return nullptr;
    }
    return {{"minimum", make_json(box.minimum)}, {"maximum", make_json(box.maximum)}};
}

void print_json(ToolJson const& json) {
    std::string const text = json.dump(2, ' ', false, ToolJson::error_handler_t::replace);
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fputc('\n', stdout);
}
