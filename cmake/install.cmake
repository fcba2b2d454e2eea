# Installed form: headers, module, CMake package and pkg-config file. The package is relocatable.
include(CMakePackageConfigHelpers)

install(TARGETS VELQUAD EXPORT VELQUADTargets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY include/velquad DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/velquad)

set(velquadPackageDir ${CMAKE_INSTALL_LIBDIR}/cmake/VELQUAD)
install(EXPORT VELQUADTargets NAMESPACE VELQUAD:: DESTINATION ${velquadPackageDir})
configure_package_config_file(cmake/VELQUADConfig.cmake.in VELQUADConfig.cmake
    INSTALL_DESTINATION ${velquadPackageDir})
write_basic_package_version_file(VELQUADConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/VELQUADConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/VELQUADConfigVersion.cmake
    DESTINATION ${velquadPackageDir})

configure_file(cmake/velquad.pc.in velquad.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/velquad.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
if(WIN32)
    # Run-time libraries of the compiler and Eigen are inside the DLL; their notices come with it, as Debian words them.
    foreach(package gcc-mingw-w64-base mingw-w64-x86-64-dev libeigen3-dev)
        install(FILES /usr/share/doc/${package}/copyright DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/velquad/third-party
            RENAME ${package}.txt OPTIONAL)
    endforeach()
endif()

# The same as an archive: cpack -G ZIP, or --preset windows.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY ${PROJECT_DESCRIPTION})
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_STRIP_FILES ON)
set(CPACK_GENERATOR ZIP)
include(CPack)
