# ccache, where it is installed, set so that a clone in another folder finds what this one has compiled: paths below the
# clone count relative to it, and the folder that the compiler runs in does not count.
find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
  # The last three are what precompiled headers ask for. Sources that tell the time of their compilation go past the
  # cache: corvantis_library(... UNCACHED ...).
  set(CMAKE_CXX_COMPILER_LAUNCHER
      ${CMAKE_COMMAND} -E env CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} CCACHE_NOHASHDIR=1
      CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime ${CCACHE_PROGRAM})
endif()
# Files are named the same in messages and debug information of every clone.
add_compile_options(-ffile-prefix-map=${CMAKE_SOURCE_DIR}/=)
