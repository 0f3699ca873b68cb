# What keeps builds short. It does not change what a program does: without precompiled headers everything compiles as
# well. clang-tidy reads the project's own sources one by one and without them, and so notices a source whose own includes
# do not suffice; tests it reads in batches.
#
#   -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON   without precompiled headers
#   -DQUILLON_TEST_FLAGS=-O2                tests' own sources compiled otherwise

# The headers that nearly every test includes, read once. Headers of which a few tests have need are left out: each costs
# every source that uses the set.
set(source ${CMAKE_BINARY_DIR}/precompiled/test_headers.cpp)
if(NOT EXISTS ${source})
  file(WRITE ${source} "")
endif()
add_library(quillon_test_headers STATIC EXCLUDE_FROM_ALL ${source})
target_link_libraries(quillon_test_headers PRIVATE quillon_options GTest::gmock)
target_precompile_headers(quillon_test_headers PRIVATE
  <algorithm> <array> <charconv> <filesystem> <fstream> <functional> <iostream> <iterator> <map> <memory> <optional>
  <set> <sstream> <stdexcept> <string> <string_view> <utility> <variant> <vector> <gmock/gmock.h> <gtest/gtest.h>)

function(quillon_compile_as_test target)
  target_compile_options(${target} PRIVATE ${QUILLON_TEST_FLAGS})
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND NOT CMAKE_DISABLE_PRECOMPILE_HEADERS)
    # A mark of the precompiled headers stays in the preprocessed text, without which ccache does not see them.
    target_compile_options(${target} PRIVATE -fpch-preprocess)
  endif()
  if(NOT target STREQUAL "quillon_test_headers")
    target_precompile_headers(${target} REUSE_FROM quillon_test_headers)
  endif()
endfunction()
quillon_compile_as_test(quillon_test_headers)

# The presets for work compile a folder's sources together (CMAKE_UNITY_BUILD), which spares reading the same headers and
# making the same templates for each of them. Names inside `namespace {` then must differ within a folder; a source whose
# names are another's as well is listed here and compiled on its own.
function(quillon_compile_alone)
  set_source_files_properties(${ARGN} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
endfunction()
if(CMAKE_UNITY_BUILD)
  # What one source calls its own another may use as a local name. And the more GCC 12 sees at once, the more often it
  # takes the storage of std::optional for uninitialised. The presets that compile singly keep both warnings.
  target_compile_options(quillon_options INTERFACE -Wno-shadow -Wno-maybe-uninitialized)
endif()
