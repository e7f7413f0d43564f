# Third-party libraries, all from Debian packages installed by scripts/setup.

find_package(Threads REQUIRED)
find_package(Boost 1.74 REQUIRED)
find_package(nlohmann_json 3 REQUIRED)
find_package(pugixml REQUIRED)
find_package(PkgConfig REQUIRED)
pkg_check_modules(LIBZIP REQUIRED IMPORTED_TARGET libzip)
pkg_check_modules(ISAL REQUIRED IMPORTED_TARGET libisal)

if(ORVAN_BUILD_TESTS)
    find_package(GTest REQUIRED)
endif()
if(ORVAN_BUILD_BENCH)
    find_package(benchmark REQUIRED)
endif()
