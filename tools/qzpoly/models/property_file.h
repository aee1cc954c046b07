#pragma once

#include <tools/qzpoly/terminal/messages.h>

#include <poly/property/poly_mesh_property.h>

#include <memory>
#include <string>

// Reads a property of `mesh` from a JSON file, an object with the members
// - name: a text;
// - kind: "vertex", "polygon" or "constant";
// - value_type: "int8", "uint8", "int16", "uint16", "int32", "uint32", "int64", "uint64", "half",
//   "float", "double", "bool" or "choice";
// - extent: numbers an item, 1 when left out, with several times at most
//   GeometryProperty::largest_blend_count;
// - values: the numbers of all items, one after another; with several times, one such list a time;
// - indices: optional, of a vertex property: the item of every polygon corner;
// - times: optional, ascending: when each list of values holds.
// Null after the reason has been shown.
std::unique_ptr<PolyMeshProperty> load_property(std::string const& file, PolyMesh const& mesh,
                                                ToolMessages& messages);
