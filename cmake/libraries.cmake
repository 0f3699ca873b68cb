# The libraries of the workbench and of the tests. None of them goes into Quillon.dll.

# SQLite, from the amalgamation that tools/setup.sh fetches: the same version natively and for Win32.
set(QUILLON_SQLITE_DIR ${CMAKE_SOURCE_DIR}/.deps/sqlite3)
if(NOT EXISTS ${QUILLON_SQLITE_DIR}/sqlite3.c)
  message(FATAL_ERROR "SQLite's source is missing: run tools/setup.sh first")
endif()
add_library(sqlite3 STATIC EXCLUDE_FROM_ALL ${QUILLON_SQLITE_DIR}/sqlite3.c)
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
target_compile_options(xlsxwriter PRIVATE -w)
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

# Header-only libraries, through a folder of links: a cross compiler must not see the rest of /usr/include.
set(QUILLON_HEADERS ${CMAKE_BINARY_DIR}/headers)
file(MAKE_DIRECTORY ${QUILLON_HEADERS})
foreach(library nlohmann CLI)
  file(CREATE_LINK /usr/include/${library} ${QUILLON_HEADERS}/${library} SYMBOLIC)
endforeach()
add_library(header_libraries INTERFACE)
target_include_directories(header_libraries SYSTEM INTERFACE ${QUILLON_HEADERS})

# GoogleTest, from Debian's source package, natively and for Win32 alike.
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
foreach(target gtest gtest_main gmock gmock_main)
  target_compile_options(${target} PRIVATE -w ${QUILLON_TEST_FLAGS})
  get_target_property(includes ${target} INTERFACE_INCLUDE_DIRECTORIES)
  set_target_properties(${target} PROPERTIES INTERFACE_SYSTEM_INCLUDE_DIRECTORIES "${includes}")
endforeach()
