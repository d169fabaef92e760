# The rules of the house as functions.
#
# One folder below src/ is one target. A target sees its own headers and those of the targets it links, and no
# others: each target's include folder holds nothing but a link to its source folder, so an include that the link
# line does not allow does not compile. Headers are always included by their path below src/ ("plugin/util/text.h").

add_library(corvantis_options INTERFACE)
target_compile_options(corvantis_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast
                       -Woverloaded-virtual -Wno-unused-command-line-argument)
# Crash descriptions walk the chain of frame pointers.
target_compile_options(corvantis_options INTERFACE -fno-omit-frame-pointer)
if(NOT WIN32)
  # Programs too, so that they can share the precompiled headers of libraries.
  target_compile_options(corvantis_options INTERFACE -fPIC)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # GCC 12 warns of overlaps and overflows that are not there wherever a literal is joined with a string; clang-tidy,
  # which reads these options too, does not know the first warning.
  target_compile_options(corvantis_options INTERFACE -Wno-unknown-warning-option -Wno-restrict -Wno-stringop-overflow
                         -Wno-stringop-overread -Wno-array-bounds)
endif()
if(CORVANTIS_WERROR)
  target_compile_options(corvantis_options INTERFACE -Werror)
endif()
if(CORVANTIS_SANITIZE)
  target_compile_definitions(corvantis_options INTERFACE CORVANTIS_SANITIZED)
  target_compile_options(corvantis_options INTERFACE -fsanitize=${CORVANTIS_SANITIZE} -fno-sanitize-recover=all)
  target_link_options(corvantis_options INTERFACE -fsanitize=${CORVANTIS_SANITIZE})
  if(CORVANTIS_SANITIZE STREQUAL "thread" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(corvantis_options INTERFACE -Wno-tsan)  # Boost.Asio fences, which the thread sanitizer does not follow
  endif()
endif()

# Sources of the tests are compiled quickly rather than well.
add_library(corvantis_test_options INTERFACE)
target_compile_options(corvantis_test_options INTERFACE $<$<CONFIG:Release,RelWithDebInfo>:-O1>)
if(CORVANTIS_SANITIZE AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # Beside sanitizers GCC takes members of the standard library's regular expressions for uninitialised.
  target_compile_options(corvantis_test_options INTERFACE -Wno-maybe-uninitialized)
endif()

# Makes the include folder of a target: <build>/include/<target>/<folder> links to src/<folder>.
function(corvantis_expose target folder scope)
  set(root ${CMAKE_BINARY_DIR}/include/${target})
  get_filename_component(parent ${root}/${folder} DIRECTORY)
  file(MAKE_DIRECTORY ${parent})
  if(NOT EXISTS ${root}/${folder})
    file(CREATE_LINK ${CMAKE_SOURCE_DIR}/src/${folder} ${root}/${folder} SYMBOLIC)
  endif()
  target_include_directories(${target} ${scope} ${root})
endfunction()

# The same for a folder below tests/: headers are included as "support/fake_host.h".
function(corvantis_expose_tests target folder)
  set(root ${CMAKE_BINARY_DIR}/include/${target})
  file(MAKE_DIRECTORY ${root})
  if(NOT EXISTS ${root}/${folder})
    file(CREATE_LINK ${CMAKE_SOURCE_DIR}/tests/${folder} ${root}/${folder} SYMBOLIC)
  endif()
  target_include_directories(${target} PUBLIC ${root})
endfunction()

# corvantis_library(NAME FOLDER path-below-src SOURCES ... [UNCACHED ...] [IN_LOTS] [DEPENDS ...] [PRIVATE_DEPENDS ...])
# DEPENDS are passed on to whoever links the target (their headers appear in ours), PRIVATE_DEPENDS are not. UNCACHED
# sources tell when they were compiled: no compiler cache may answer for them. IN_LOTS: the sources read so much of the
# same that several are compiled as one, except where precompiled headers are off.
function(corvantis_library name)
  cmake_parse_arguments(ARG "SHARED;MODULE;OBJECT;IN_LOTS" "FOLDER" "SOURCES;UNCACHED;DEPENDS;PRIVATE_DEPENDS" ${ARGN})
  set(kind STATIC)
  foreach(k SHARED MODULE OBJECT)
    if(ARG_${k})
      set(kind ${k})
    endif()
  endforeach()
  add_library(${name} ${kind} ${ARG_SOURCES})
  target_precompile_headers(${name} REUSE_FROM precompiled)
  if(ARG_IN_LOTS AND NOT CMAKE_DISABLE_PRECOMPILE_HEADERS)
    set_target_properties(${name} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 6)
  endif()
  if(ARG_UNCACHED)
    add_library(${name}_uncached OBJECT ${ARG_UNCACHED})
    set_target_properties(${name}_uncached PROPERTIES CXX_COMPILER_LAUNCHER "")
    corvantis_expose(${name}_uncached ${ARG_FOLDER} PRIVATE)
    target_link_libraries(${name}_uncached PRIVATE corvantis_options ${ARG_DEPENDS})
    target_sources(${name} PRIVATE $<TARGET_OBJECTS:${name}_uncached>)
  endif()
  if(WIN32)
    set_target_properties(${name} PROPERTIES PREFIX "" IMPORT_PREFIX "")
    if(NOT MSVC AND CMAKE_BUILD_TYPE STREQUAL "Release")
      target_link_options(${name} PRIVATE -s)
    endif()
  endif()
  corvantis_expose(${name} ${ARG_FOLDER} PUBLIC)
  target_link_libraries(${name} PUBLIC ${ARG_DEPENDS} PRIVATE corvantis_options ${ARG_PRIVATE_DEPENDS})
endfunction()

# Adds sources that guard against structured exceptions to a Windows target. g++ does not know __try: clang compiles
# them, for the same target and run-time library.
function(corvantis_structured_exceptions target)
  if(MSVC)
    target_sources(${target} PRIVATE ${ARGN})
    return()
  endif()
  find_program(CLANG_PROGRAM NAMES clang++ clang++-14 REQUIRED NO_CMAKE_FIND_ROOT_PATH)
  foreach(source ${ARGN})
    get_filename_component(name ${source} NAME_WE)
    set(object ${CMAKE_CURRENT_BINARY_DIR}/${name}.obj)
    add_custom_command(OUTPUT ${object}
      COMMAND ${CLANG_PROGRAM} --target=x86_64-w64-mingw32 -fms-extensions -std=c++20 -O2 -fno-omit-frame-pointer -Wall -Wextra
              -Werror -Wno-language-extension-token -I${CMAKE_BINARY_DIR}/include/${target} -MD -MF ${object}.d
              -c ${CMAKE_CURRENT_SOURCE_DIR}/${source} -o ${object}
      DEPENDS ${source} DEPFILE ${object}.d VERBATIM)
    set_source_files_properties(${object} PROPERTIES EXTERNAL_OBJECT TRUE GENERATED TRUE)
    target_sources(${target} PRIVATE ${object})
  endforeach()
endfunction()

# What a Windows DLL tells of itself: corvantis_version_resource(TARGET "what it is").
function(corvantis_version_resource target description)
  set(CORVANTIS_FILE_DESCRIPTION "${description}")
  set(resource ${CMAKE_CURRENT_BINARY_DIR}/${target}_version.rc)
  configure_file(${CMAKE_SOURCE_DIR}/cmake/version.rc.in ${resource} @ONLY)
  target_sources(${target} PRIVATE ${resource})
endfunction()

# corvantis_program(NAME FOLDER path-below-src SOURCES ... DEPENDS ...)
function(corvantis_program name)
  cmake_parse_arguments(ARG "" "FOLDER" "SOURCES;DEPENDS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_precompile_headers(${name} REUSE_FROM precompiled)
  corvantis_expose(${name} ${ARG_FOLDER} PRIVATE)
  target_link_libraries(${name} PRIVATE corvantis_options ${ARG_DEPENDS})
endfunction()

# Every test program of code that several threads work at; ./test.sh --concurrent builds it. The ray tracer's is not among
# them: its threads are Embree's and TBB's, which the sanitizer does not see (tsan.supp).
add_custom_target(concurrent_tests)

# corvantis_test(NAME SOURCES ... DEPENDS ... [CONCURRENT] [ENVIRONMENT NAME=value...]): one test program a folder, every
# case a CTest test. CONCURRENT: several threads work at what it tests.
# Every *_test.cpp of the folder and of those below it must be listed, but for those below a folder that has a
# CMakeLists.txt and so programs of its own: a test that is not wired in is an error.
function(corvantis_test name)
  cmake_parse_arguments(ARG "CONCURRENT" "" "SOURCES;DEPENDS;ENVIRONMENT" ${ARGN})
  file(GLOB_RECURSE present RELATIVE ${CMAKE_CURRENT_SOURCE_DIR} CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*_test.cpp)
  if(WIN32)
    list(FILTER present EXCLUDE REGEX "^posix/")
  else()
    list(FILTER present EXCLUDE REGEX "^win32/")
  endif()
  foreach(file ${present})
    get_filename_component(folder "${file}" DIRECTORY)
    if(folder AND EXISTS ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/CMakeLists.txt)
      continue()
    endif()
    if(NOT file IN_LIST ARG_SOURCES)
      message(FATAL_ERROR "${CMAKE_CURRENT_SOURCE_DIR}/${file} is not part of any test program: list it in ${name}")
    endif()
  endforeach()
  add_executable(${name} ${ARG_SOURCES})
  if(NOT WIN32)  # where a program finds its DLLs beside itself only
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  endif()
  target_precompile_headers(${name} REUSE_FROM precompiled_tests)
  target_link_libraries(${name} PRIVATE corvantis_options corvantis_test_options test_support GTest::gmock GTest::gtest_main ${ARG_DEPENDS})
  if(CMAKE_CROSSCOMPILING)  # starting a program costs more than most of its cases
    add_test(NAME ${name} COMMAND ${name} --gtest_brief=1)
    return()
  endif()
  set(properties)
  if(ARG_ENVIRONMENT)
    list(APPEND properties ENVIRONMENT "${ARG_ENVIRONMENT}")
  endif()
  if(ARG_CONCURRENT)
    add_dependencies(concurrent_tests ${name})
    list(APPEND properties LABELS concurrent)
  endif()
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES ${properties})
endfunction()
