#!/usr/bin/env bash
# Makes what is handed on of the commit that is checked out, in dist/:
#
#   quillon-VERSION-win32.zip          Quillon.dll, quillon.exe, QuillonWorkbench.dll, scripts that register them, the type
#                                      library, documents, the terms of what is linked in
#   quillon-VERSION-win32-setup.exe    the same as an installer, also for silent use (/S /D=FOLDER)
#   quillon_VERSION_amd64.deb          the Linux program as a Debian package
#   SHA256SUMS                         their digests
#
# Everything is compiled anew, from the commit's files alone and without ccache. The same commit, compilers and packers give
# the same files, byte for byte, on whatever day and in whatever folder:
#
#   ./release.sh --verify              makes everything a second time, elsewhere and under other settings, and compares
#
# Sets the machine up first; what is there already is kept.
set -euo pipefail
cd "$(dirname "$0")"

say() { printf 'release: %s\n' "$*" >&2; }
fail() {
  say "error: $*"
  exit 1
}

verify=no
case "$*" in
  "") ;;
  --verify) verify=yes ;;
  *) fail "unknown: $*; it takes --verify or nothing" ;;
esac

tools/setup.sh
[ -z "$(git status --porcelain)" ] ||
  fail "there are changes that are not in a commit, and a release is made of a commit: commit them or put them aside"
root=$PWD
commit=$(git rev-parse --short HEAD)
version=$(sed -n 's/^project(Quillon VERSION \([0-9.]*\) .*/\1/p' CMakeLists.txt)
# Files in the packages are of the commit's date.
SOURCE_DATE_EPOCH=$(git log -1 --format=%ct "$commit")
export SOURCE_DATE_EPOCH CCACHE_DISABLE=1

build() { # PRESET TARGET...
  local preset=$1
  shift
  say "building $preset: $*"
  if ! { cmake --preset "$preset" && cmake --build --preset "$preset" --target "$@"; } >"build-$preset.log" 2>&1; then
    tail -n 40 "build-$preset.log" >&2
    fail "the build failed; the whole log is $PWD/build-$preset.log"
  fi
}

# Usage: make_packages SOURCE_FOLDER OUTPUT_FOLDER, both of which are made anew.
make_packages() (
  rm -rf "$1" "$2"
  mkdir -p "$1" "$2"
  output=$(realpath "$2")
  git archive "$commit" | tar -x -C "$1"
  ln -s "$(realpath .deps)" "$1/.deps"
  cd "$1"
  build release quillon
  build release-win32 Quillon QuillonWorkbench quillon
  tests/packaging/version_test.sh CHANGELOG.md "$version" build/release/bin/quillon
  say "packing"
  packaging/pack_deb.sh build/release "$output" >/dev/null
  packaging/pack_win32.sh build/release-win32 "$output" >/dev/null
  cd "$output"
  sha256sum -- * >SHA256SUMS
)

say "Quillon $version of commit $commit"
make_packages "$root/build/release" dist
if [ "$verify" = yes ]; then
  say "making everything again, elsewhere"
  again=$root/build/release-again-in-another-folder
  (
    umask 077
    export TZ=Asia/Shanghai LC_ALL=C
    make_packages "$again" build/dist-again
  )
  for file in dist/*; do
    cmp "$file" "build/dist-again/${file#dist/}" || fail "two builds of commit $commit differ"
  done
  rm -rf "$again" build/dist-again
  say "both times the same, byte for byte"
fi
rm -rf build/release
say "done:"
(cd dist && ls -l -- *)
