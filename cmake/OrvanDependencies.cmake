# Third-party libraries, all from Debian packages installed by scripts/setup.

find_package(Threads REQUIRED)
find_package(Boost 1.74 REQUIRED)
find_package(nlohmann_json 3 REQUIRED)
find_package(pugixml REQUIRED)
find_package(PkgConfig REQUIRED)
pkg_check_modules(LIBZIP REQUIRED IMPORTED_TARGET libzip)
pkg_check_modules(ISAL REQUIRED IMPORTED_TARGET libisal)
# Portable SIMD for the image conversion kernels.
find_package(hwy REQUIRED)
# The AF_XDP receive path; without the libraries the path is simply unavailable.
option(ORVAN_WITH_XDP "Build the AF_XDP receive path (libxdp, libbpf)" ON)
if(ORVAN_WITH_XDP)
    pkg_check_modules(LIBXDP IMPORTED_TARGET libxdp libbpf)
endif()

if(ORVAN_BUILD_TESTS)
    find_package(GTest REQUIRED)
endif()
if(ORVAN_BUILD_BENCH)
    find_package(benchmark REQUIRED)
endif()
