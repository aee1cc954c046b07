# Checks that the library exports its classes and functions and nothing else.
# cmake -D nm=<nm> -D library=<libqz_poly.so> -P exported_symbols.cmake

# What a program needs first of each exported class and function.
set(needed
    "typeinfo for PolyMeshBase"
    "typeinfo for PolyMesh"
    "typeinfo for PolyMeshSmoothed"
    "typeinfo for PolyMeshProperty"
    "PolyMeshBase::class_info\\(\\)"
    "PolyMesh::class_info\\(\\)"
    "PolyMeshSmoothed::class_info\\(\\)"
    "PolyMeshProperty::class_info\\(\\)"
    "PolyHelpers::create_poly_sphere\\(.*"
    "triangulate_polygon\\(.*"
    "reverse_poly_order\\(.*"
    "compute_triangles_neighbourhood\\(.*"
    "compute_quads_neighbourhood\\(.*"
    "compute_polygons_neighbourhood\\(.*"
)

set(classes "(PolyMesh|PolyMeshBase|PolyMeshSmoothed|PolyMeshProperty|PolyHelpers)")
set(allowed
    "(triangulate_polygon|reverse_poly_order|compute_(triangles|quads|polygons)_neighbourhood)\\(.*"
    "${classes}::.*"
    "(vtable|typeinfo|typeinfo name) for ${classes}(::.*)?"
    "(non-virtual|virtual|covariant return) thunk to ${classes}::.*"
)

execute_process(
    COMMAND ${nm} --dynamic --defined-only --demangle --format=just-symbols ${library}
    OUTPUT_VARIABLE symbols
    COMMAND_ERROR_IS_FATAL ANY
)
string(REPLACE "\n" ";" symbols "${symbols}")

set(faults)
list(JOIN allowed "|" allowed_pattern)
foreach(symbol IN LISTS symbols)
    if(symbol AND NOT symbol MATCHES "^(${allowed_pattern})$")
        list(APPEND faults "exported, and should not be: ${symbol}")
    endif()
endforeach()
foreach(pattern IN LISTS needed)
    if(NOT "${symbols}" MATCHES "(^|;)${pattern}(;|$)")
        list(APPEND faults "not exported: ${pattern}")
    endif()
endforeach()
if(faults)
    list(JOIN faults "\n  " faults)
    message(FATAL_ERROR "${library}\n  ${faults}")
endif()
