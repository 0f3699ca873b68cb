#!/usr/bin/env bash
# What the first ./demo.sh and the first ./test.sh take: in a clone of HEAD, with nothing built, fetched or cached, and
# no Wine prefix. Prints wall and processor time of each, and how many processors the machine has.
#
#   tools/cold-times.sh                demo.sh, and test.sh after it, with the packages that are installed
#   tools/cold-times.sh --tidy         also clang-tidy of everything, with an empty cache
#   tools/cold-times.sh --bare         on a bare Debian 12 (debootstrap, as root), so that packages are counted too
#
# Keeps the folder and names it when something fails. The processor time leaves out what Wine's server used.
set -euo pipefail
cd "$(dirname "$0")/.."
. tools/debian-mirror.sh

bare=false
tidy=false
for argument in "$@"; do
  case $argument in
    --bare) bare=true ;;
    --tidy) tidy=true ;;
    -h | --help)
      sed -n '2,/^set /{s/^# \{0,1\}//p}' "$0"
      exit 0
      ;;
    *)
      echo "cold-times.sh: there is no option \"$argument\"; see tools/cold-times.sh --help" >&2
      exit 2
      ;;
  esac
done

work=$(mktemp -d)
root=
here=$work/checkout
if $bare; then
  [ "$(id -u)" -eq 0 ] || {
    echo "cold-times.sh: --bare makes a system of its own and has to run as root" >&2
    exit 1
  }
  command -v debootstrap >/dev/null || {
    echo "cold-times.sh: --bare takes debootstrap; install it first" >&2
    exit 1
  }
  root=$work/root
  here=$root/checkout
  debootstrap --variant=minbase bookworm "$root" "$(debian_mirror)" >"$work/debootstrap.log"
  mount --bind /proc "$root/proc"
  mount --bind /dev "$root/dev"
  trap 'umount "$root/proc" "$root/dev"' EXIT
  # How this machine reaches the network.
  cp /etc/resolv.conf "$root/etc/"
  cp -r /etc/apt/apt.conf.d/. "$root/etc/apt/apt.conf.d/"
  cp -r /etc/ssl/. "$root/etc/ssl/" 2>/dev/null || true
  if command -v npm >/dev/null; then npm config list --json 2>/dev/null | sed -n 's/^ *"registry": "\(.*\)",*/registry=\1/p' >"$root/root/.npmrc"; fi
fi
git clone --quiet . "$here"
[ -z "$(git status --porcelain)" ] || echo "cold-times.sh: what is not committed is left out" >&2

if $bare; then packages="packages included"; else packages="packages were there"; fi
printf '%s processors, %s, commit %s\n' "$(nproc)" "$packages" "$(git rev-parse --short HEAD)"

run() { # COMMAND...: in the clone, without caches
  local off=(CCACHE_DISABLE=1 "PATH=$PATH" LANG=C.UTF-8)
  if $bare; then
    # shellcheck disable=SC2016
    chroot "$root" env -i "${off[@]}" HOME=/root sh -c 'cd /checkout && exec "$@"' sh "$@"
  else
    (cd "$here" && env "${off[@]}" XDG_CACHE_HOME="$work/cache" "$@")
  fi
}
measure() { # COMMAND...
  local TIMEFORMAT='%R %U %S' failed=false figures
  # Only what `time` says goes into the figures.
  figures=$({ time run "$@" >"$work/log" 2>&1; } 2>&1) || failed=true
  awk -v what="$*" '{ printf "%-16s %5.1f min wall, %5.1f min of processor time\n", what, $1 / 60, ($2 + $3) / 60 }' <<<"$figures"
  if $failed; then
    tail -n 30 "$work/log"
    echo "cold-times.sh: $* failed; see $work"
    exit 1
  fi
}
measure ./demo.sh
measure ./test.sh
if $tidy; then
  ! $bare || measure tools/setup.sh all
  measure tools/clang_tidy.py
fi
$bare || rm -rf "$work"
if $bare; then
  umount "$root/proc" "$root/dev"
  trap - EXIT
  rm -rf --one-file-system "$work"
fi
