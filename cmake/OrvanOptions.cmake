# Build options shared by every component.

option(ORVAN_WERROR "Treat compiler warnings as errors" OFF)
option(ORVAN_BUILD_TESTS "Build the GoogleTest suites" ON)
option(ORVAN_BUILD_BENCH "Build the Google Benchmark programs" ON)
option(ORVAN_BUILD_GSTREAMER "Build the orvansrc GStreamer plugin when GStreamer is found" ON)
option(ORVAN_BUILD_PYTHON "Build the orvan Python module when Python, NumPy and pybind11 are found" ON)
option(ORVAN_BUILD_FUZZ "Build the libFuzzer targets (clang only)" OFF)
set(ORVAN_SANITIZE "" CACHE STRING "Sanitizers to build with: address,undefined or thread")

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
endif()

find_program(ORVAN_CCACHE ccache)
if(ORVAN_CCACHE)
    set(CMAKE_C_COMPILER_LAUNCHER "${ORVAN_CCACHE}")
    set(CMAKE_CXX_COMPILER_LAUNCHER "${ORVAN_CCACHE}")
endif()

add_compile_options(-Wall -Wextra)
if(ORVAN_WERROR)
    add_compile_options(-Werror)
endif()

if(ORVAN_SANITIZE)
    if(ORVAN_SANITIZE STREQUAL "thread")
        set(_orvan_san_flags -fsanitize=thread)
    elseif(ORVAN_SANITIZE MATCHES "^(address|undefined|address,undefined|undefined,address)$")
        set(_orvan_san_flags -fsanitize=${ORVAN_SANITIZE} -fno-sanitize-recover=all)
    else()
        message(FATAL_ERROR "ORVAN_SANITIZE must be address,undefined or thread, not '${ORVAN_SANITIZE}'")
    endif()
    add_compile_options(${_orvan_san_flags} -fno-omit-frame-pointer -g)
    add_link_options(${_orvan_san_flags})
endif()

# Libraries install next to their executables' RPATH so the tools run from the install tree.
include(GNUInstallDirs)
set(CMAKE_INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
set(CMAKE_CXX_VISIBILITY_PRESET default)
