# One warning level for all of the project's own code; other people's code is compiled as it comes.
add_library(quillon_options INTERFACE)
target_include_directories(quillon_options INTERFACE ${CMAKE_SOURCE_DIR})
target_compile_options(quillon_options INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wnon-virtual-dtor)
option(QUILLON_WARNINGS_AS_ERRORS "End the build at a warning in the project's own code" ON)
if(QUILLON_WARNINGS_AS_ERRORS)
  target_compile_options(quillon_options INTERFACE -Werror)
endif()
if(WIN32)
  # GCC 12 takes "literal" + std::string for overlapping memory when it optimises hard (its bug 105651). The native
  # build does not, and clang-tidy, which reads its options, does not know the warning.
  target_compile_options(quillon_options INTERFACE -Wno-restrict)
  target_compile_definitions(quillon_options INTERFACE UNICODE _UNICODE WINVER=0x0601 _WIN32_WINNT=0x0601 NOMINMAX
                                                       WIN32_LEAN_AND_MEAN)
  # The entry points of a COM server are stdcall and exported without that calling convention's "@n"; and the same sources
  # give the same file, without the time of day in it.
  target_link_options(quillon_options INTERFACE -Wl,--enable-stdcall-fixup -Wl,--no-insert-timestamp)
endif()

if((QUILLON_SANITIZE OR QUILLON_THREAD_SANITIZE) AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # What the sanitizers add to the code makes GCC 12 take the storage of std::variant and std::optional for
  # uninitialised; the native build keeps that warning.
  target_compile_options(quillon_options INTERFACE -Wno-maybe-uninitialized)
endif()

if(QUILLON_SANITIZE)
  # Applied to everything, SQLite and GoogleTest included, so that memory is tracked across the seams.
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()

if(QUILLON_THREAD_SANITIZE)
  # Applied to everything, too, so that a race in SQLite is seen as well.
  add_compile_options(-fsanitize=thread)
  add_link_options(-fsanitize=thread)
endif()

if(QUILLON_COVERAGE)
  # The project's own code only: what the libraries do is counted nowhere.
  target_compile_options(quillon_options INTERFACE --coverage -fprofile-update=atomic)
  target_link_options(quillon_options INTERFACE --coverage)
endif()

option(QUILLON_FUZZ "Build the fuzzers of tests/fuzz, with clang's libFuzzer" OFF)
if(QUILLON_FUZZ)
  # All of the code tells the fuzzer which way an input took through it; the fuzzers themselves add libFuzzer's main.
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

# Tests are compiled anew more often than they run, so their own sources are not optimised; what they test is.
set(QUILLON_TEST_FLAGS -O0 -g1 CACHE STRING "Optimisation and debugging information of the tests' own sources")
