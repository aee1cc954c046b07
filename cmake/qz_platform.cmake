# The libraries of the platform. An application puts its own in place by defining a target of that
# name before it adds this project; ours is then left out, its headers too.

# In the order of their dependencies.
set(qz_platform_libraries
    qz_core
    qz_gmath
    qz_sys
    qz_event
    qz_app_base
    qz_ctx
    qz_resource
    qz_geometry
    qz_module
    qz_obj
    qz_lwo
)

set(qz_own_libraries)
foreach(library IN LISTS qz_platform_libraries)
    if(NOT TARGET ${library})
        list(APPEND qz_own_libraries ${library})
    endif()
endforeach()

# The folder that <platform/...> and <poly/...> are found in: this project's, or a view of it without
# the headers of replaced libraries. Putting the application's folders first would not do, since
# those of an imported target are searched last whatever the order.
set(qz_include_root ${qz_poly_SOURCE_DIR})
if(NOT qz_own_libraries STREQUAL qz_platform_libraries)
    set(qz_include_root ${qz_poly_BINARY_DIR}/include)
    file(REMOVE_RECURSE ${qz_include_root})
    file(MAKE_DIRECTORY ${qz_include_root}/platform)
    file(CREATE_LINK ${qz_poly_SOURCE_DIR}/poly ${qz_include_root}/poly SYMBOLIC)
    foreach(library IN LISTS qz_own_libraries)
        foreach(entry ${library} ${library}.h)
            file(CREATE_LINK ${qz_poly_SOURCE_DIR}/platform/${entry}
                ${qz_include_root}/platform/${entry} SYMBOLIC)
        endforeach()
    endforeach()
endif()

# qz_platform_library(<name> [SOURCES <file>...] HEADERS <file>... [DEPENDS <library>...])
# A library of these sources, which lie beside the caller, or a library of headers only. HEADERS are
# those that users reach through the umbrella header.
function(qz_platform_library name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;HEADERS;DEPENDS")
    if(arg_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "qz_platform_library(${name}): unknown ${arg_UNPARSED_ARGUMENTS}")
    endif()
    if(arg_SOURCES)
        set(users PUBLIC)
        add_library(${name} ${arg_SOURCES})
        qz_set_library_rules(${name})
    else()
        set(users INTERFACE)
        add_library(${name} INTERFACE)
        target_compile_options(${name} INTERFACE -ffp-contract=off)
        target_compile_features(${name} INTERFACE cxx_std_20)
    endif()
    target_include_directories(${name} ${users} $<BUILD_INTERFACE:${qz_include_root}>)
    target_link_libraries(${name} ${users} ${arg_DEPENDS})
    qz_install_headers(platform ../${name}.h)
    qz_install_headers(platform/${name} ${arg_HEADERS})
    qz_install_library(${name})
endfunction()
