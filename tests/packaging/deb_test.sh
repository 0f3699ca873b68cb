#!/usr/bin/env bash
# The Debian package: made of what is built, installed with dpkg into a folder that stands for the file system, run from
# there, removed again; after it the folder is as it was. dpkg's own records are in that folder too, and say that this
# machine's packages are installed, so that dpkg checks what the package depends on against them. Nothing of the machine is
# touched, and no rights are needed. Usage: deb_test.sh BUILD_FOLDER VERSION
set -euo pipefail
build=$1
version=$2
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
umask 022
fail() {
  printf 'failed: %s\n' "$*" >&2
  exit 1
}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

export SOURCE_DATE_EPOCH=1700000000
"$root/packaging/pack_deb.sh" "$build" "$work/packages"
package=$work/packages/quillon_${version}_amd64.deb
(umask 077 && TZ=Asia/Shanghai "$root/packaging/pack_deb.sh" "$build" "$work/again")
cmp "$package" "$work/again/$(basename "$package")" || fail "packing twice gives two packages"
field() { dpkg-deb --field "$package" "$1"; }
[ "$(field Version)" = "$version" ] || fail "the package is of version $(field Version)"
# The libraries that the program asks the system for, by the packages that they are in.
[ "$(field Depends | sed 's/ ([^)]*)//g')" = "libc6, libedit2, libgcc-s1, libodbc2, libstdc++6, zlib1g" ] ||
  fail "the package depends on: $(field Depends)"

target=$work/target
mkdir -p "$target/usr/bin" "$target/usr/share/doc" "$work/dpkg/info" "$work/dpkg/updates"
for other in usr/bin/another usr/share/doc/another; do echo "another package's" >"$target/$other"; done
dpkg-query --status {libc6,libedit2,libgcc-s1,libodbc2,libstdc++6,zlib1g}:amd64 >"$work/dpkg/status"
contents() { (cd "$target" && find . -printf '%M %p %s\n' | LC_ALL=C sort); }
# Packages that are recorded only have no lists of files, and dpkg says so.
deb() {
  PATH=$PATH:/usr/sbin:/sbin dpkg --admindir="$work/dpkg" --instdir="$target" --log="$work/dpkg/log" --force-not-root \
    "$@" >"$work/log" 2>&1 || {
    cat "$work/log"
    fail "dpkg $* ended with an error"
  }
}

contents >"$work/before"
deb --install "$package"
[ "$(dpkg-query --admindir="$work/dpkg" -W -f '${Status}' quillon)" = "install ok installed" ] || fail "it is not installed"
(cd "$target" && find . ! -type d ! -path './usr/share/doc/quillon/docs/*' -printf '%P\n' | LC_ALL=C sort) \
  >"$work/files"
[ -z "$(find "$target" ! -perm -u=r,g=r,o=r)" ] || fail "not everyone may read $(find "$target" ! -perm -u=r,g=r,o=r)"
[ -f "$target/usr/share/doc/quillon/docs/filter-file.schema.json" ] || fail "the schema of filter files is missing"
diff -u - "$work/files" <<'END' || fail "the package does not hold the files that it should"
usr/bin/another
usr/bin/quillon
usr/share/doc/another
usr/share/doc/quillon/CHANGELOG.md
usr/share/doc/quillon/README.md
usr/share/doc/quillon/SECURITY.md
usr/share/doc/quillon/copyright
usr/share/doc/quillon/licenses/boost.txt
usr/share/doc/quillon/licenses/chart.js.txt
usr/share/doc/quillon/licenses/cli11.txt
usr/share/doc/quillon/licenses/libxlsxwriter.txt
usr/share/doc/quillon/licenses/mpl-2.0.txt
usr/share/doc/quillon/licenses/nlohmann-json.txt
usr/share/doc/quillon/licenses/regular-table.txt
usr/share/doc/quillon/licenses/sqlite.txt
usr/share/doc/quillon/licenses/utf8proc.txt
usr/share/man/man1/quillon.1.gz
END
program=$target/usr/bin/quillon
[ "$("$program" --version)" = "quillon $version" ] || fail "the installed program prints: $("$program" --version)"
"$program" account new "$work/sample.account" --rows 2000 --seed 7 >"$work/log"
"$program" report sfc-item --account "$work/sample.account" --set cModal=1 --format csv >"$work/report"
# The heading, and a line a cost item at least.
[ "$(wc -l <"$work/report")" -gt 10 ] || fail "the installed program's report has $(wc -l <"$work/report") lines"
! readelf --sections --wide "$program" | grep -q debug_info || fail "the installed program carries debugging information"

deb --purge quillon
contents >"$work/after"
diff -u "$work/before" "$work/after" || fail "removing the package leaves something behind"
echo "the package installs, works and goes without a trace"
