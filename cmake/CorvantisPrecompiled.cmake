# Precompiled headers: one for the product, one for the tests. Half the time of a build went into reading the standard
# library's headers and GoogleTest's again for each source. CMAKE_DISABLE_PRECOMPILE_HEADERS turns both off.

# A target's own definitions and -fPIE against -fPIC would make each want its own: no definition is global, and
# corvantis_options asks for -fPIC everywhere.
function(corvantis_precompile target header)
  add_library(${target} OBJECT ${CMAKE_SOURCE_DIR}/cmake/precompiled.cpp)
  target_link_libraries(${target} PRIVATE corvantis_options ${ARGN})
  target_precompile_headers(${target} PRIVATE ${CMAKE_SOURCE_DIR}/cmake/${header})
endfunction()

corvantis_precompile(precompiled precompiled.h)
if(CORVANTIS_TESTS)
  corvantis_precompile(precompiled_tests precompiled_tests.h GTest::gmock corvantis_test_options)
endif()
