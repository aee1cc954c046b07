#pragma once

#include <tests/platform/lwo_builder.h>

namespace lwo_building {

inline Bytes const quad = faces({4, 0, 1, 2, 3});
inline Bytes const names = chunk("TAGS", s0("Sky") + s0("") + s0("Ink"));

// Objects that are refused.
struct Refusal {
    char const* what;
    Bytes bytes;
    char const* expected;  // a part of the message
    char const* item_name = "";
};

// More maps of one value each than lists of all corners may be kept for.
inline Bytes build_many_maps() {
    Bytes polygons = "FACE";
    Bytes maps;
    for (unsigned int i = 0; i < 5000; ++i) {
        polygons += u2({4, 0, 1, 2, 3});
        maps += chunk("VMAP", uv_head(std::to_string(i)) + u2({0}) + f4({0, 0}));
    }
    return object(chunk("POLS", polygons) + maps);
}

inline std::vector<Refusal> list_refusals() {
    auto const old_object = [](Numbers const& polygons) {
        return form("LWOB", square + chunk("POLS", u2(polygons)));
    };
    return {
        {"short", "FORM", "fewer than 12 bytes"},
        {"other format", form("LXOB", square), "another format"},
        {"form past the file", object("").substr(0, 60), ", chunk FORM at byte 0, byte 4: "},
        {"form one byte past the file", "FORM" + big_endian(61, 4) + object("").substr(8),
         "the form reaches past"},
        {"chunk past the form", object("PNTS" + big_endian(~0u, 4)),
         ", chunk PNTS at byte 68, byte 68: the chunk reaches past"},
        {"half a chunk", object("PNTS"), "byte 68: the chunk reaches past"},
        {"size of points", form("LWO2", chunk("PNTS", "12345")), "byte 16: the size is no mul"},
        {"no points", form("LWO2", chunk("PNTS", "")), "there are no points"},
        {"no points before polygons", object(layer("A") + quad), "without points"},
        {"point", object(faces({3, 0, 1, 4})), ", byte 86: point 4 is out of range, there are 4"},
        {"long point", object(faces({3, 0, 1, 0xFF01, 4})), "point 65540 is"},
        {"corners", object(faces({1023, 0})), "corners of a polygon"},
        {"half an index", object(faces({3, 0, 1, 0xFF00})), "corners of a polygon"},
        {"tagged polygon", object(names + quad + tags({1, 0})), "polygon 1 is out of range"},
        {"tag", object(names + quad + tags({0, 3})), "tag 3 is out of range"},
        {"tag of another layer", object(names + quad + layer("") + tags({0, 0})), "there are 0"},
        {"half a tag", object(names + quad + tags({0})), "inside a tag"},
        {"name without end", object(chunk("TAGS", "Sky")), "inside a name"},
        {"point of a map", object(quad + uv({4}, {0, 0})), "point 4 is"},
        {"half a value", object(quad + uv({0}, {0})), "inside a value"},
        {"map name without end", object(chunk("VMAP", "TXUV" + u2({2}) + "U")), "head of the map"},
        {"point of a corner", object(quad + uv({4, 0}, {0, 0})), "point 4 is"},
        {"polygon of a corner", object(quad + uv({0, 1}, {0, 0})), "polygon 1 is"},
        {"surface", old_object({3, 0, 1, 2, 1}), "surface (from 1) 1 is"},
        {"lowest surface", old_object({3, 0, 1, 2, 0x8000, 0}), "32768"},
        {"no surface", old_object({3, 0, 1, 2}), "inside the surface"},
        {"layer", object(chunk("LAYR", Bytes(16, '\0'))), "description of a layer"},
        {"item", object(layer("A\n") + layer("") + layer("B") + layer("B")),
         "no layer 'C', there are 'A?', 'B'.", "C"},
        {"maps", build_many_maps(), "too many maps"},
    };
}

}  // namespace lwo_building
