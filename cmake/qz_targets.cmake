# Rules that hold for every target of this project.

# Compiles `target` by the rules of this project. Users of its headers get the ones that change results.
function(qz_set_target_rules target)
    # Fused multiply-add would round inline functions differently wherever they are instantiated,
    # so this setting reaches everyone who includes a header.
    target_compile_options(${target} PUBLIC -ffp-contract=off)
    target_compile_features(${target} PUBLIC cxx_std_20)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wshadow -Wconversion)
    # Nobody replaces single functions of a library at load, so calls within one may be inlined.
    target_compile_options(${target} PRIVATE -fno-semantic-interposition)
    set_target_properties(${target} PROPERTIES
        CXX_EXTENSIONS OFF
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        POSITION_INDEPENDENT_CODE ON
        BUILD_RPATH_USE_ORIGIN ON
        COMPILE_WARNING_AS_ERROR ${qz_poly_IS_TOP_LEVEL}
    )
    if(QZ_POLY_SANITIZERS)
        target_compile_options(${target} PRIVATE
            -fsanitize=${QZ_POLY_SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer)
        target_link_options(${target} PRIVATE -fsanitize=${QZ_POLY_SANITIZERS})
    endif()
endfunction()

# Which branches this target takes guides no search of the fuzzers.
function(qz_guide_no_fuzzer target)
    if(QZ_POLY_SANITIZERS MATCHES fuzzer)
        target_compile_options(${target} PRIVATE
            -fno-sanitize-coverage=inline-8bit-counters,trace-cmp,indirect-calls,pc-table)
    endif()
endfunction()

# The rules above and those of a library: versioned, and complete in what it links.
function(qz_set_library_rules target)
    qz_set_target_rules(${target})
    set_target_properties(${target} PROPERTIES
        VERSION ${qz_poly_VERSION}
        SOVERSION ${qz_poly_VERSION_MAJOR}
        INSTALL_RPATH $ORIGIN
    )
    if(NOT BUILD_SHARED_LIBS)
        # Its export macro is then empty.
        string(TOUPPER ${target} macro)
        target_compile_definitions(${target} PUBLIC ${macro}_STATIC_DEFINE)
    endif()
    # The sanitizers of clang leave their symbols to the executable.
    if(NOT (QZ_POLY_SANITIZERS AND CMAKE_CXX_COMPILER_ID MATCHES Clang))
        target_link_options(${target} PRIVATE LINKER:--no-undefined)
    endif()
endfunction()
