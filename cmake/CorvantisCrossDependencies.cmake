# What the plug-in and its tests need of outside libraries where Debian has no packages for the target: header-only
# parts of Boost and utfcpp, taken from the packages of this machine, and GoogleTest, built from its source package.
find_package(Threads REQUIRED)

# A folder with nothing but links to those headers: the rest of /usr/include belongs to another system.
set(borrowed ${CMAKE_BINARY_DIR}/include/borrowed)
file(MAKE_DIRECTORY ${borrowed})
foreach(name boost utf8 utf8.h utf8cpp)
  if(EXISTS /usr/include/${name} AND NOT EXISTS ${borrowed}/${name})
    file(CREATE_LINK /usr/include/${name} ${borrowed}/${name} SYMBOLIC)
  endif()
endforeach()
if(NOT EXISTS ${borrowed}/boost/version.hpp)
  message(FATAL_ERROR "Boost's headers are not there: install the package libboost-dev")
endif()
include_directories(SYSTEM ${borrowed})

add_library(Boost::headers INTERFACE IMPORTED)
target_compile_definitions(Boost::headers INTERFACE BOOST_DLL_USE_STD_FS BOOST_ERROR_CODE_HEADER_ONLY)
target_link_libraries(Boost::headers INTERFACE ws2_32 mswsock)

if(CORVANTIS_TESTS)
  set(INSTALL_GTEST OFF)
  set(BUILD_SHARED_LIBS OFF)
  add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
  if(NOT TARGET GTest::gmock)
    add_library(GTest::gmock ALIAS gmock)
    add_library(GTest::gtest_main ALIAS gtest_main)
  endif()
  include(GoogleTest)
endif()
