# What `cmake --install` copies, and the package that CPack makes of it.

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# qz_install_headers(<folder> <file>...): headers that are found as <folder/file>.
function(qz_install_headers folder)
    if(QZ_POLY_INSTALL)
        install(FILES ${ARGN} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${folder})
    endif()
endfunction()

# Installs a library as qz_poly::<name>, which is its name beside the sources too.
function(qz_install_library name)
    add_library(qz_poly::${name} ALIAS ${name})
    if(QZ_POLY_INSTALL)
        install(TARGETS ${name} EXPORT qz_poly INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
    endif()
endfunction()

# Installs a program, which finds its libraries wherever the tree is moved to.
function(qz_install_program name)
    file(RELATIVE_PATH libraries ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
    set_target_properties(${name} PROPERTIES INSTALL_RPATH $ORIGIN/${libraries})
    if(QZ_POLY_INSTALL)
        install(TARGETS ${name})
    endif()
endfunction()

if(NOT QZ_POLY_INSTALL)
    return()
endif()

set(folder ${CMAKE_INSTALL_LIBDIR}/cmake/qz_poly)
install(EXPORT qz_poly FILE qz_polyConfig.cmake NAMESPACE qz_poly:: DESTINATION ${folder})
write_basic_package_version_file(qz_polyConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/qz_polyConfigVersion.cmake DESTINATION ${folder})

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME qz-poly)
set(CPACK_PACKAGE_CONTACT "The developers of qz_poly")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_STRIP_FILES ON)
include(CPack)
