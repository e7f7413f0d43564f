# Shared-library targets, their install rules and the exported CMake package.

include(CMakePackageConfigHelpers)

set(ORVAN_SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
set(ORVAN_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/Orvan)

# orvan_add_library(<target> EXPORT_NAME <name> INCLUDE_DIR <dir> SOURCES <files...>)
# Builds a versioned shared library whose public headers live in INCLUDE_DIR and are installed
# below include/<target>/, so installed headers of one library never shadow another's.
function(orvan_add_library target)
    cmake_parse_arguments(ARG "" "EXPORT_NAME;INCLUDE_DIR" "SOURCES" ${ARGN})
    add_library(${target} SHARED ${ARG_SOURCES})
    add_library(Orvan::${ARG_EXPORT_NAME} ALIAS ${target})
    set_target_properties(${target} PROPERTIES
        EXPORT_NAME ${ARG_EXPORT_NAME}
        VERSION ${PROJECT_VERSION}
        SOVERSION ${ORVAN_SOVERSION})
    target_include_directories(${target} PUBLIC
        $<BUILD_INTERFACE:${ARG_INCLUDE_DIR}>
        $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/${target}>)
    install(TARGETS ${target} EXPORT OrvanTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    install(DIRECTORY ${ARG_INCLUDE_DIR}/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${target})
endfunction()

function(orvan_install_package)
    install(EXPORT OrvanTargets NAMESPACE Orvan:: DESTINATION ${ORVAN_CMAKE_DIR})
    configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/OrvanConfig.cmake.in
        ${PROJECT_BINARY_DIR}/OrvanConfig.cmake INSTALL_DESTINATION ${ORVAN_CMAKE_DIR})
    write_basic_package_version_file(${PROJECT_BINARY_DIR}/OrvanConfigVersion.cmake
        COMPATIBILITY SameMinorVersion)
    install(FILES ${PROJECT_BINARY_DIR}/OrvanConfig.cmake
        ${PROJECT_BINARY_DIR}/OrvanConfigVersion.cmake DESTINATION ${ORVAN_CMAKE_DIR})
    # The .pc file finds the prefix from its own place, so an installed tree can be moved.
    file(RELATIVE_PATH ORVAN_PC_TO_PREFIX /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
    configure_file(${PROJECT_SOURCE_DIR}/cmake/orvan.pc.in ${PROJECT_BINARY_DIR}/orvan.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/orvan.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endfunction()
