# The libraries of the workbench and of the tests. None of them goes into Quillon.dll.

# SQLite, from the amalgamation that tools/setup.sh fetches: the same version natively and for Win32. It is compiled within
# the file that gives its rows as records.
set(QUILLON_SQLITE_DIR ${CMAKE_SOURCE_DIR}/.deps/sqlite3)
if(NOT EXISTS ${QUILLON_SQLITE_DIR}/sqlite3.c)
  message(FATAL_ERROR "SQLite's source is missing: run tools/setup.sh first")
endif()
add_library(sqlite3 STATIC EXCLUDE_FROM_ALL ${CMAKE_SOURCE_DIR}/workbench/tsql/records/sqlite_records.c)
target_include_directories(sqlite3 SYSTEM PUBLIC ${QUILLON_SQLITE_DIR})
target_compile_definitions(sqlite3 PRIVATE SQLITE_THREADSAFE=2 SQLITE_DQS=0 SQLITE_DEFAULT_MEMSTATUS=0
                                           SQLITE_OMIT_LOAD_EXTENSION SQLITE_OMIT_DEPRECATED SQLITE_LIKE_DOESNT_MATCH_BLOBS
                                           SQLITE_MAX_EXPR_DEPTH=10000)
target_compile_options(sqlite3 PRIVATE -O2 -w)
if(QUILLON_SANITIZE AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # GCC 12's check of object sizes mistakes an element of one of two arrays, chosen by a condition, for one past the end.
  target_compile_options(sqlite3 PRIVATE -fno-sanitize=object-size)
endif()
if(NOT WIN32)
  find_package(Threads REQUIRED)
  target_link_libraries(sqlite3 PUBLIC Threads::Threads m)
endif()

# libxlsxwriter, from the source that tools/setup.sh fetches: the same version natively and for Win32. Pictures, the only
# use of MD5, do not occur. Its optional number formatter reads past a table of its own; printf, in the C locale here, does not.
set(QUILLON_XLSXWRITER_DIR ${CMAKE_SOURCE_DIR}/.deps/xlsxwriter)
if(NOT EXISTS ${QUILLON_XLSXWRITER_DIR}/src/workbook.c)
  message(FATAL_ERROR "libxlsxwriter's source is missing: run tools/setup.sh first")
endif()
find_package(ZLIB REQUIRED)
file(GLOB xlsxwriter_sources ${QUILLON_XLSXWRITER_DIR}/src/*.c)
set(minizip ${QUILLON_XLSXWRITER_DIR}/third_party/minizip)
add_library(xlsxwriter STATIC EXCLUDE_FROM_ALL ${xlsxwriter_sources} ${minizip}/ioapi.c ${minizip}/zip.c
                                               ${QUILLON_XLSXWRITER_DIR}/third_party/tmpfileplus/tmpfileplus.c)
target_include_directories(xlsxwriter SYSTEM PUBLIC ${QUILLON_XLSXWRITER_DIR}/include)
target_compile_definitions(xlsxwriter PRIVATE USE_NO_MD5 NOCRYPT NOUNCRYPT)
# What it would print about an error goes to the R.h of this folder, which drops it.
target_compile_definitions(xlsxwriter PRIVATE USE_R_LANG)
target_include_directories(xlsxwriter PRIVATE ${CMAKE_SOURCE_DIR}/cmake/quiet_xlsxwriter)
target_compile_options(xlsxwriter PRIVATE -w)
set_target_properties(xlsxwriter PROPERTIES UNITY_BUILD OFF)
target_link_libraries(xlsxwriter PRIVATE ZLIB::ZLIB)
if(WIN32)
  # File names are UTF-8 here; Windows' own fopen would take them for its code page (workbench/presentation/xlsx_workbook.cpp).
  set_source_files_properties(${minizip}/ioapi.c PROPERTIES COMPILE_DEFINITIONS fopen64=quillon_open_utf8)
endif()
# Its counterpart, with which the tests read what was written.
add_library(minizip_reader STATIC EXCLUDE_FROM_ALL ${minizip}/unzip.c)
target_include_directories(minizip_reader SYSTEM PUBLIC ${minizip})
target_compile_definitions(minizip_reader PRIVATE NOCRYPT NOUNCRYPT)
target_compile_options(minizip_reader PRIVATE -w)
target_link_libraries(minizip_reader PUBLIC xlsxwriter ZLIB::ZLIB)

# utf8proc, from the source that tools/setup.sh fetches: how wide characters are on a terminal.
set(QUILLON_UTF8PROC_DIR ${CMAKE_SOURCE_DIR}/.deps/utf8proc)
if(NOT EXISTS ${QUILLON_UTF8PROC_DIR}/utf8proc.c)
  message(FATAL_ERROR "utf8proc's source is missing: run tools/setup.sh first")
endif()
add_library(utf8proc STATIC EXCLUDE_FROM_ALL ${QUILLON_UTF8PROC_DIR}/utf8proc.c)
target_include_directories(utf8proc SYSTEM PUBLIC ${QUILLON_UTF8PROC_DIR})
target_compile_definitions(utf8proc PUBLIC UTF8PROC_STATIC)
target_compile_options(utf8proc PRIVATE -w)

# ODBC: unixODBC's driver manager natively, Windows' own for Win32 (mingw-w64 has its headers).
add_library(odbc INTERFACE)
if(WIN32)
  target_link_libraries(odbc INTERFACE odbc32)
else()
  find_package(ODBC)
  if(NOT ODBC_FOUND)
    message(FATAL_ERROR "unixODBC is missing: run tools/setup.sh first")
  endif()
  target_link_libraries(odbc INTERFACE ODBC::ODBC)
endif()

# libedit: lines that are typed at a prompt. Windows' console edits them itself.
if(NOT WIN32)
  find_library(QUILLON_LIBEDIT edit)
  find_path(QUILLON_LIBEDIT_HEADERS histedit.h)
  if(NOT QUILLON_LIBEDIT OR NOT QUILLON_LIBEDIT_HEADERS)
    message(FATAL_ERROR "libedit is missing: run tools/setup.sh first")
  endif()
  add_library(line_editing INTERFACE)
  target_link_libraries(line_editing INTERFACE ${QUILLON_LIBEDIT})
endif()

# Header-only libraries, through a folder of links: a cross compiler must not see what lies beside them in /usr/include.
set(QUILLON_HEADER_LIBRARIES_DIR /usr/include CACHE PATH "Where header-only libraries lie that CMake finds no package of")
set(QUILLON_HEADERS ${CMAKE_BINARY_DIR}/headers)
file(MAKE_DIRECTORY ${QUILLON_HEADERS})
function(quillon_header_library folder package target)
  find_package(${package} QUIET)
  set(places ${QUILLON_HEADER_LIBRARIES_DIR})
  if(TARGET ${target})
    get_target_property(packaged ${target} INTERFACE_INCLUDE_DIRECTORIES)
    list(PREPEND places ${packaged})
  endif()
  foreach(place ${places})
    if(EXISTS ${place}/${folder})
      file(CREATE_LINK ${place}/${folder} ${QUILLON_HEADERS}/${folder} SYMBOLIC)
      return()
    endif()
  endforeach()
  message(FATAL_ERROR "The headers ${folder}/ are missing: run tools/setup.sh, or set QUILLON_HEADER_LIBRARIES_DIR")
endfunction()
quillon_header_library(nlohmann nlohmann_json nlohmann_json::nlohmann_json)
quillon_header_library(CLI CLI11 CLI11::CLI11)
add_library(header_libraries INTERFACE)
target_include_directories(header_libraries SYSTEM INTERFACE ${QUILLON_HEADERS})

# Boost.Asio and Boost.Beast, headers as well, for the one room that speaks HTTP.
quillon_header_library(boost Boost Boost::headers)
add_library(boost_headers INTERFACE)
target_link_libraries(boost_headers INTERFACE header_libraries)
if(WIN32)
  target_link_libraries(boost_headers INTERFACE ws2_32 mswsock)
else()
  find_package(Threads REQUIRED)
  target_link_libraries(boost_headers INTERFACE Threads::Threads)
endif()
if(QUILLON_THREAD_SANITIZE AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # Asio has fences, which GCC's thread sanitizer does not see; its locks, which it does, are enough.
  target_compile_options(boost_headers INTERFACE -Wno-tsan)
endif()

# The scripts of others that the desk's pages use, from the packages that tools/setup.sh fetches: regular-table is the grid,
# chart (Chart.js) draws the charts.
foreach(script regular-table chart)
  string(TOUPPER QUILLON_${script} prefix)
  string(REPLACE "-" "_" prefix ${prefix})
  set(${prefix}_DIR ${CMAKE_SOURCE_DIR}/.deps/${script})
  if(NOT EXISTS ${${prefix}_DIR}/${script}.js)
    message(FATAL_ERROR "${script}.js is missing: run tools/setup.sh first")
  endif()
  file(READ ${${prefix}_DIR}/.version ${prefix}_VERSION)
  string(REPLACE "@" " " ${prefix}_VERSION ${${prefix}_VERSION})
endforeach()

# GoogleTest: the installed one, and from its source where there is none (for Win32) or where it has to be compiled with
# what all code is compiled with (the sanitizers).
set(QUILLON_GOOGLETEST_SOURCE /usr/src/googletest CACHE PATH "GoogleTest's source, for builds that need their own")
if(NOT WIN32 AND NOT QUILLON_SANITIZE AND NOT QUILLON_THREAD_SANITIZE)
  find_package(GTest CONFIG QUIET)
endif()
if(TARGET GTest::gmock_main)
  return()
endif()
if(NOT EXISTS ${QUILLON_GOOGLETEST_SOURCE}/CMakeLists.txt)
  message(FATAL_ERROR "GoogleTest's source is missing: run tools/setup.sh, or set QUILLON_GOOGLETEST_SOURCE")
endif()
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
add_subdirectory(${QUILLON_GOOGLETEST_SOURCE} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
foreach(target gtest gtest_main gmock gmock_main)
  target_compile_options(${target} PRIVATE -w ${QUILLON_TEST_FLAGS})
  get_target_property(includes ${target} INTERFACE_INCLUDE_DIRECTORIES)
  set_target_properties(${target} PROPERTIES INTERFACE_SYSTEM_INCLUDE_DIRECTORIES "${includes}")
endforeach()
