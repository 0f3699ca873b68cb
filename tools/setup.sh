#!/usr/bin/env bash
# Installs what a bare Debian 12 lacks to build Quillon. Safe to run again: it only does what is missing, and says so.
# Runs as root or through sudo. The sources of SQLite, libxlsxwriter, utf8proc, regular-table and Chart.js go to .deps/
# in the checkout.
#
#   tools/setup.sh demo   what ./demo.sh takes: the compiler for Win32, Wine, the libraries of the program
#   tools/setup.sh test   that, and what ./test.sh takes: the compiler for Linux, what the tests use and pack with
#   tools/setup.sh all    that, and what checks code, memory and coverage (the default)
set -euo pipefail
cd "$(dirname "$0")/.."
. tools/debian-mirror.sh

sqlite_package=better-sqlite3@11.10.0 # carries SQLite's amalgamation in deps/sqlite3
sqlite_sha256=e80215754ac6cfaefe272342efd581b6dbefdbdc21f96bd83fcb698bee9d36a5
regular_table_package=regular-table@0.9.2 # the grid of the desk's pages: one module and its licence
regular_table_sha256=fd0a4112947c59e3ed3f7ebbe4ee932e4d36bdc9dd2b1b442ad45b4602ef83dc
chart_package=chart.js@4.5.0 # draws the charts of the desk's pages: one script and its licence
chart_sha256=e383a54911233cd8d5f9365a7407cb4b936507316d7e2977ebb126f266d6b47d
chart_holds='Chart.js holds @kurkle/color: Copyright (c) 2018-2024 Jukka Kurkela, under the same terms.'
xlsxwriter_source=libxlsxwriter=1.1.4-2 # Debian's source packages
xlsxwriter_sha256=b379eb35fdd9c653ebe72485b9c992f612c7ea66f732784457997d6e782f619b
utf8proc_source=utf8proc=2.8.0-1
utf8proc_sha256=a0a60a79fe6f6d54e7d411facbfcc867a6e198608f2cd992490e46f04b1bcecc
deps=.deps

say() { printf 'setup: %s\n' "$*" >&2; }
fail() {
  say "error: $*"
  exit 1
}
as_root() {
  if [ "$(id -u)" -eq 0 ]; then
    "$@"
  elif command -v sudo >/dev/null 2>&1; then
    sudo "$@"
  else
    fail "packages have to be installed: run this as root, or install sudo"
  fi
}

demo_packages=(
  cmake ninja-build ccache git ca-certificates
  g++-mingw-w64-i686-posix mingw-w64-tools faketime
  googletest nlohmann-json3-dev libcli11-dev libboost1.81-dev libz-mingw-w64-dev
)
test_packages=(
  g++ zlib1g-dev libedit-dev unixodbc-dev tdsodbc freetds-bin # freetds-bin: tsql and bsqldb
  python3 mono-mcs libmono-microsoft-csharp4.0-cil
  nsis dpkg-dev file zip unzip # file: cpack reads with it what a Debian package depends on
)
all_packages=(
  clang clang-format clang-tidy libclang-rt-14-dev
  valgrind libc6-dbg gcovr libbenchmark-dev
)
wine_packages=(wine wine32:i386 libwine:i386 libwine-dev)

# Wine comes in one go from Debian's main suite alone: the security suite's i386 index is at times out of step
# with its amd64 one, and then nothing of i386 can be resolved at all, and both architectures of a library must be of
# one version.
main_suite_state=$PWD/$deps/apt
main_suite_options=(
  -o "Dir::Etc::sourcelist=$main_suite_state/main.list"
  -o Dir::Etc::sourceparts=/dev/null
  -o "Dir::State::Lists=$main_suite_state/lists"
)

missing_of() {
  local package
  for package in "$@"; do
    dpkg-query -W -f='${Status}\n' "$package" 2>/dev/null | grep -q '^install ok installed' || printf '%s\n' "$package"
  done
}

install_packages() { # PACKAGE...
  local missing
  mapfile -t missing < <(missing_of "$@")
  if ! command -v npm >/dev/null 2>&1 &&
    ! { [ -f "$deps/sqlite3/sqlite3.c" ] && [ -f "$deps/regular-table/LICENSE" ] && [ -f "$deps/chart/LICENSE" ]; }; then
    missing+=(npm)
  fi
  [ "${#missing[@]}" -gt 0 ] || return 0
  say "installing ${missing[*]}"
  as_root apt-get update -qq || say "apt-get update reported an error; trying with the lists at hand"
  DEBIAN_FRONTEND=noninteractive as_root apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null ||
    fail "apt-get could not install ${missing[*]}"
}

install_wine_packages() {
  local missing mirror
  mapfile -t missing < <(missing_of "${wine_packages[@]}")
  [ "${#missing[@]}" -gt 0 ] || return 0
  say "installing ${missing[*]} from the main suite"
  dpkg --print-foreign-architectures | grep -qx i386 || as_root dpkg --add-architecture i386
  mirror=$(debian_mirror)
  [ -n "$mirror" ] || fail "no Debian mirror found in /etc/apt; add one and run this again"
  mkdir -p "$main_suite_state/lists/partial"
  printf 'deb %s bookworm main\n' "$mirror" >"$main_suite_state/main.list"
  as_root apt-get "${main_suite_options[@]}" update -qq || fail "the package lists of $mirror could not be read"
  DEBIAN_FRONTEND=noninteractive as_root apt-get "${main_suite_options[@]}" install -y -qq --no-install-recommends \
    --allow-downgrades "${missing[@]}" >/dev/null || fail "apt-get could not install ${missing[*]}"
  rm -rf "$main_suite_state"
}

fetch_sqlite() {
  [ -f "$deps/sqlite3/sqlite3.c" ] && [ "$(cat "$deps/sqlite3/.version" 2>/dev/null)" = "$sqlite_package" ] && return 0
  say "fetching SQLite's amalgamation ($sqlite_package)"
  local work archive
  work=$(mktemp -d)
  archive=$(cd "$work" && npm pack --loglevel=error "$sqlite_package" | tail -n 1) || fail "npm could not fetch $sqlite_package"
  tar -xzf "$work/$archive" -C "$work" package/deps/sqlite3
  printf '%s  %s\n' "$sqlite_sha256" "$work/package/deps/sqlite3/sqlite3.c" | sha256sum --check --quiet ||
    fail "what npm fetched is not the SQLite source that $sqlite_package is known for"
  rm -rf "$deps/sqlite3"
  mkdir -p "$deps"
  mv "$work/package/deps/sqlite3" "$deps/sqlite3"
  printf '%s' "$sqlite_package" >"$deps/sqlite3/.version"
  rm -rf "$work"
}

# Fetches a script that the desk's pages use: its folder, the package with the version, the digest of the archive, which
# file of it is NAME.js, which holds its terms, and what else these are to say.
fetch_page_script() {
  local name=$1 package=$2 digest=$3 script=$4 licence=$5 more=${6:-} work archive
  [ "$(cat "$deps/$name/.version" 2>/dev/null)" = "$package" ] && return 0
  say "fetching $package"
  work=$(mktemp -d)
  archive=$(cd "$work" && npm pack --loglevel=error "$package" | tail -n 1) || fail "npm could not fetch $package"
  printf '%s  %s\n' "$digest" "$work/$archive" | sha256sum --check --quiet ||
    fail "what npm fetched is not what $package is known for"
  tar -xzf "$work/$archive" -C "$work" "package/$script" "package/$licence"
  rm -rf "${deps:?}/$name"
  mkdir -p "$deps/$name"
  mv "$work/package/$script" "$deps/$name/$name.js"
  mv "$work/package/$licence" "$deps/$name/LICENSE"
  [ -z "$more" ] || printf '\n%s\n' "$more" >>"$deps/$name/LICENSE"
  printf '%s' "$package" >"$deps/$name/.version"
  rm -rf "$work"
}

# Fetches the source of a library that Debian has for Linux alone, so that the Win32 program has it too: its name, Debian's
# source package with the version, the digest of the archive, and what of it is needed.
fetch_debian_source() {
  local name=$1 source=$2 digest=$3 work mirror member
  local -a options
  shift 3
  [ "$(cat "$deps/$name/.version" 2>/dev/null)" = "$source" ] && return 0
  say "fetching the source of $name ($source)"
  work=$(mktemp -d)
  mirror=$(debian_mirror)
  [ -n "$mirror" ] || fail "no Debian mirror found in /etc/apt; add one and run this again"
  mkdir -p "$work/lists/partial"
  printf 'deb-src %s bookworm main\n' "$mirror" >"$work/source.list"
  # apt's own lesser user cannot write to the folder.
  options=(
    -qq -o APT::Sandbox::User=root
    -o "Dir::Etc::sourcelist=$work/source.list"
    -o Dir::Etc::sourceparts=/dev/null
    -o "Dir::State::Lists=$work/lists"
  )
  as_root apt-get "${options[@]}" update || fail "the source lists of $mirror could not be read"
  (cd "$work" && as_root apt-get "${options[@]}" source --download-only "$source" >/dev/null) ||
    fail "apt-get could not fetch the source of $source"
  printf '%s  %s\n' "$digest" "$(echo "$work"/*.orig.tar.gz)" | sha256sum --check --quiet ||
    fail "what apt-get fetched is not the source that $source is known for"
  mkdir "$work/source"
  tar -xzf "$work"/*.orig.tar.gz -C "$work/source" --strip-components=1
  rm -rf "${deps:?}/$name"
  mkdir -p "$deps/$name"
  for member in "$@"; do
    mv "$work/source/$member" "$deps/$name/"
  done
  printf '%s' "$source" >"$deps/$name/.version"
  as_root rm -rf "$work"
}

case ${1:-all} in
  demo) packages=("${demo_packages[@]}") ;;
  test) packages=("${demo_packages[@]}" "${test_packages[@]}") ;;
  all) packages=("${demo_packages[@]}" "${test_packages[@]}" "${all_packages[@]}") ;;
  *)
    say "error: there is no part \"$1\"; the parts are demo, test and all"
    exit 2
    ;;
esac
[ -f /etc/debian_version ] || fail "this script knows Debian 12 only; see its package lists for what to install elsewhere"
install_packages "${packages[@]}"
install_wine_packages
fetch_sqlite
fetch_page_script regular-table "$regular_table_package" "$regular_table_sha256" dist/esm/regular-table.js LICENSE
fetch_page_script chart "$chart_package" "$chart_sha256" dist/chart.umd.js LICENSE.md "$chart_holds"
fetch_debian_source xlsxwriter "$xlsxwriter_source" "$xlsxwriter_sha256" include src third_party License.txt
fetch_debian_source utf8proc "$utf8proc_source" "$utf8proc_sha256" utf8proc.c utf8proc.h utf8proc_data.c LICENSE.md
