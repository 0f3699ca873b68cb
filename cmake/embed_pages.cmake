# Makes a source of the desk's pages, so that the program needs no file beside it and no network.
#
#   cmake -DPAGES=FOLDER -DMODULES=NAME=FILE,... -DLICENCES=NAME|LICENCE|FILE,... -DOUTPUT=FILE -P embed_pages.cmake
#
# Every file of the folder, and every module, is served as /assets/HASH/NAME, where HASH is of all of them together; so
# modules find each other by `import './grid.js'`, and a browser may keep them for ever. index.html is served as "/". Two
# things are written anew: a module's bare name in an import, because a page that allows no inline script can have no
# table of such names, and the names of files in index.html. What would not be found, and what the pages' own
# Content-Security-Policy forbids, ends the build here and not in a browser.

cmake_minimum_required(VERSION 3.25)

set(types_js "text/javascript")
set(types_css "text/css")
set(types_html "text/html")
set(types_svg "image/svg+xml")
set(types_json "application/json")

string(REPLACE "," ";" modules "${MODULES}")
string(REPLACE "," ";" licences "${LICENCES}")

file(GLOB files LIST_DIRECTORIES false ${PAGES}/*)
list(SORT files)
set(names "")
foreach(file ${files})
  get_filename_component(name ${file} NAME)
  list(APPEND names ${name})
  set(file_of_${name} ${file})
endforeach()
set(module_names "")
foreach(module ${modules})
  string(REGEX MATCH "^([^=]+)=(.+)$" matched ${module})
  list(APPEND module_names ${CMAKE_MATCH_1})
  list(APPEND names ${CMAKE_MATCH_1}.js)
  set(file_of_${CMAKE_MATCH_1}.js ${CMAKE_MATCH_2})
endforeach()

set(digests "")
foreach(name ${names})
  file(SHA256 ${file_of_${name}} digest)
  string(APPEND digests "${name} ${digest}\n")
endforeach()
string(SHA256 hash "${digests}")
string(SUBSTRING ${hash} 0 16 hash)

# A text as a literal; the delimiter occurs in no page.
function(add_literal text)
  string(FIND "${text}" ")pages~\"" at)
  if(NOT at EQUAL -1)
    message(FATAL_ERROR "a page holds the delimiter of its literal: )pages~\"")
  endif()
  file(APPEND ${OUTPUT}.new "R\"pages~(${text})pages~\"sv")
endfunction()

function(check_imports name text)
  string(REGEX MATCHALL "(from +|import *[(]? *)['\"][^'\"]*['\"]" imports "${text}")
  foreach(import ${imports})
    string(REGEX REPLACE "^[^'\"]*['\"]([^'\"]*)['\"]$" "\\1" wanted "${import}")
    string(REGEX REPLACE "^\\./" "" file "${wanted}")
    if(NOT file IN_LIST names OR file STREQUAL wanted)
      message(FATAL_ERROR "${name} imports ${wanted}, which is no page (\"./NAME.js\") and none of: ${module_names}")
    endif()
  endforeach()
endfunction()

function(check_html name text)
  if("${text}" MATCHES "<style|<script[^>]*>[^<]|[ \n]style=|[ \n]on[a-z]+=")
    message(FATAL_ERROR "${name} has an inline script or style, which its Content-Security-Policy forbids: ${CMAKE_MATCH_0}")
  endif()
  if("${text}" MATCHES "(src|href)=\"([^/#\"][^\"]*)\"")
    message(FATAL_ERROR "${name} names ${CMAKE_MATCH_2}, which is no page")
  endif()
endfunction()

file(WRITE ${OUTPUT}.new "// Made by cmake/embed_pages.cmake.
#include \"workbench/desk/embedded_pages.h\"

namespace quillon::workbench::desk {

using namespace std::string_view_literals;

std::span<const EmbeddedPage> embeddedPages() {
  static constexpr EmbeddedPage pages[] = {
")
foreach(name ${names})
  file(READ ${file_of_${name}} text)
  string(REGEX REPLACE "^.*\\.([^.]*)$" "\\1" kind ${name})
  if(NOT DEFINED types_${kind})
    message(FATAL_ERROR "${name}: no type is known for .${kind}")
  endif()
  set(path /assets/${hash}/${name})
  string(REGEX REPLACE "\\.js$" "" module ${name})
  if(kind STREQUAL js AND NOT module IN_LIST module_names)
    foreach(module ${module_names})
      string(REGEX REPLACE "(from +|import *[(]? *)(['\"])${module}(['\"])" "\\1\\2./${module}.js\\3" text "${text}")
    endforeach()
    check_imports(${name} "${text}")
  elseif(kind STREQUAL html)
    foreach(other ${names})
      string(REPLACE "." "\\." pattern ${other})
      string(REGEX REPLACE "(src|href)=\"(\\./)?${pattern}\"" "\\1=\"/assets/${hash}/${other}\"" text "${text}")
    endforeach()
    check_html(${name} "${text}")
    if(name STREQUAL index.html)
      set(path /)
    endif()
  endif()
  file(APPEND ${OUTPUT}.new "      {\"${path}\"sv, \"${types_${kind}}\"sv,\n       ")
  add_literal("${text}")
  file(APPEND ${OUTPUT}.new "},\n")
endforeach()
file(APPEND ${OUTPUT}.new "  };
  return pages;
}

std::span<const PageLicence> embeddedLicences() {
  static constexpr PageLicence licences[] = {
")
foreach(entry ${licences})
  string(REGEX MATCH "^([^|]+)\\|([^|]+)\\|(.+)$" matched ${entry})
  set(name ${CMAKE_MATCH_1})
  set(licence ${CMAKE_MATCH_2})
  file(READ ${CMAKE_MATCH_3} text)
  file(APPEND ${OUTPUT}.new "      {\"${name}\"sv, \"${licence}\"sv,\n       ")
  add_literal("${text}")
  file(APPEND ${OUTPUT}.new "},\n")
endforeach()
file(APPEND ${OUTPUT}.new "  };
  return licences;
}

}  // namespace quillon::workbench::desk
")
file(RENAME ${OUTPUT}.new ${OUTPUT})
