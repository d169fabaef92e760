# Every outside library, found once. All come from the packages listed in packages.txt.
find_package(Threads REQUIRED)
find_package(Boost 1.74 REQUIRED COMPONENTS filesystem system)
find_package(fmt REQUIRED)
find_package(CLI11 REQUIRED)
find_package(nlohmann_json REQUIRED)
find_package(TBB REQUIRED)
find_package(embree 3 REQUIRED)
find_package(PkgConfig REQUIRED)
# OpenImageIO's own CMake package names files that Debian does not ship; its pkg-config file is right.
pkg_check_modules(OpenImageIO REQUIRED IMPORTED_TARGET OpenImageIO)

if(CORVANTIS_TESTS)
  find_package(GTest REQUIRED)
  include(GoogleTest)
endif()
if(CORVANTIS_BENCH)
  find_package(benchmark REQUIRED)
endif()
