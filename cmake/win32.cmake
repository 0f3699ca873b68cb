# mingw-w64 for 32-bit Windows, the -posix thread variant, everything linked statically.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR i686)
# Debian has both thread variants and ends their names by them; elsewhere there is one, which must be the -posix one.
find_program(QUILLON_MINGW_C NAMES i686-w64-mingw32-gcc-posix i686-w64-mingw32-gcc REQUIRED)
find_program(QUILLON_MINGW_CXX NAMES i686-w64-mingw32-g++-posix i686-w64-mingw32-g++ REQUIRED)
set(QUILLON_MINGW_ROOT /usr/i686-w64-mingw32 CACHE PATH "Where mingw-w64's headers and libraries lie")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES QUILLON_MINGW_C QUILLON_MINGW_CXX QUILLON_MINGW_ROOT)
set(CMAKE_C_COMPILER ${QUILLON_MINGW_C})
set(CMAKE_CXX_COMPILER ${QUILLON_MINGW_CXX})
set(CMAKE_RC_COMPILER i686-w64-mingw32-windres)
# Doubles are 64 bits wide everywhere: the old floating-point unit would keep 80 and give other sums than a native build.
add_compile_options(-msse2 -mfpmath=sse)
# Functions stay in one piece: an exception thrown in the unlikely part that GCC 12 sets apart from its function does not
# always find its handler here, and then ends the program.
add_compile_options(-fno-reorder-blocks-and-partition)
set(CMAKE_FIND_ROOT_PATH ${QUILLON_MINGW_ROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static")
# Tests that CMake runs while building start under Wine.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../tools/wine.sh)
