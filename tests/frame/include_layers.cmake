# Checks that no include points up: each folder includes itself and what its row lists, and the
# inside of a platform library is known to that library, its tests and fuzzers alone.
# cmake -D root=<project> -P include_layers.cmake

# folder: the folders whose headers it may include
set(layers
    "platform/qz_core:"
    "platform/qz_gmath: platform/qz_core"
    "platform/qz_(sys|event|app_base|ctx): platform/qz_(core|gmath)"
    "platform/qz_resource: platform/qz_(core|gmath|sys|event|app_base|ctx)"
    "platform/qz_geometry: platform/qz_(core|gmath|sys|event|app_base|ctx|resource)"
    "platform/qz_(module|obj|lwo): platform/qz_(core|gmath|sys|event|app_base|ctx|resource|geometry)"
    "poly:"
    "poly/topology: poly platform/.*"
    "poly/mesh: poly poly/topology platform/.*"
    "poly/maps: poly poly/(topology|mesh) platform/.*"
    "poly/render: poly poly/(topology|mesh|maps) platform/.*"
    "poly/property: poly poly/(topology|mesh|maps|render) platform/.*"
    "poly/smoothed: poly poly/(topology|mesh|maps|render) platform/.*"
    "poly/module: poly poly/.* platform/.*"
    "tools/qzpoly/terminal: platform/.*"
    "tools/qzpoly/models: tools/qzpoly/terminal poly poly/.* platform/.*"
    "tools/qzpoly/pictures: tools/qzpoly/(terminal|models) poly poly/.* platform/.*"
    "tools/qzpoly/(check|verify): tools/qzpoly/(terminal|models|pictures) poly poly/.* platform/.*"
    "tools/qzpoly(/commands)?: tools/.* poly poly/.* platform/.*"
    "python: python tools/qzpoly/models poly poly/(mesh|module) platform/.*"
    "examples(/own_platform.*)?: poly poly/(mesh|smoothed|property|module) platform/.*"
    "(tests|bench|fuzz).*: .*"
)

set(code_folders poly platform tools python examples tests bench fuzz)
list(JOIN code_folders "|" code_folders_pattern)

# The folder in the table that a file belongs to; an umbrella header belongs to its library.
function(get_folder file folder)
    if(file MATCHES "^(platform/[a-z_]+)[./]")
        set(${folder} ${CMAKE_MATCH_1} PARENT_SCOPE)
    else()
        cmake_path(GET file PARENT_PATH parent)
        set(${folder} ${parent} PARENT_SCOPE)
    endif()
endfunction()

function(is_allowed from to result)
    set(${result} FALSE PARENT_SCOPE)
    foreach(row IN LISTS layers)
        string(REGEX MATCH "^(.*): *(.*)$" row "${row}")
        string(REPLACE " " "|" allowed "${CMAKE_MATCH_2}")
        if(from MATCHES "^(${CMAKE_MATCH_1})$" AND (to STREQUAL from OR to MATCHES "^(${allowed})$"))
            set(${result} TRUE PARENT_SCOPE)
        endif()
    endforeach()
endfunction()

set(faults)
set(include_count 0)
foreach(code_folder IN LISTS code_folders)
    file(GLOB_RECURSE files RELATIVE ${root} ${root}/${code_folder}/*.h ${root}/${code_folder}/*.cpp)
    foreach(file IN LISTS files)
        get_folder(${file} from)
        file(STRINGS ${root}/${file} lines REGEX "^[ \t]*#[ \t]*include")
        foreach(line IN LISTS lines)
            if(NOT line MATCHES "<([^>]+)>")
                list(APPEND faults "${file}: ${line}: write it from the root, in angle brackets")
                continue()
            endif()
            set(header ${CMAKE_MATCH_1})
            if(NOT header MATCHES "^(${code_folders_pattern})/")
                continue()
            endif()
            math(EXPR include_count "${include_count} + 1")
            get_folder(${header} to)
            is_allowed(${from} ${to} allowed)
            if(NOT allowed)
                list(APPEND faults "${file}: ${line}: points up")
            elseif(header MATCHES "^platform/[a-z_]+/" AND NOT from STREQUAL to
                AND NOT from MATCHES "^(tests/platform|fuzz)$")
                list(APPEND faults "${file}: ${line}: is the inside of another library")
            elseif(header MATCHES "^platform/[a-z_]+\\.h" AND from STREQUAL to)
                list(APPEND faults "${file}: ${line}: is the umbrella over this file")
            endif()
        endforeach()
    endforeach()
endforeach()

if(faults OR include_count EQUAL 0)
    list(JOIN faults "\n  " faults)
    message(FATAL_ERROR "${include_count} includes of the project's own headers\n  ${faults}")
endif()
