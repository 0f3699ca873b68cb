#!/usr/bin/env bash
# Installs what only the desk's tests in a browser need: Chromium and a Chinese font from Debian, and from npm the library
# that drives the browser and the one that looks for obstacles to people with disabilities; these go to .deps/browser.
# Safe to run again: it only does what is missing. Runs as root or through sudo.
set -euo pipefail
cd "$(dirname "$0")/.."

packages=(chromium fonts-wqy-microhei nodejs npm)
libraries=.deps/browser
# package, digest of what npm packs
modules=(
  "playwright-core@1.65.1 6f5a60be62a4fddfbe7d10c448d8fbd54547da3358f2f8a04211440471ee863e"
  "axe-core@4.14.1 e6b0ce02b84d892e2e33e403485e7f3d6c29e2be6df65daf44d89ba564139745"
)

say() { printf 'setup-browser: %s\n' "$*" >&2; }
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

missing=()
for package in "${packages[@]}"; do
  case $package in
  nodejs) command -v node >/dev/null 2>&1 && continue ;;
  npm) command -v npm >/dev/null 2>&1 && continue ;;
  esac
  dpkg-query -W -f='${Status}\n' "$package" 2>/dev/null | grep -q '^install ok installed' || missing+=("$package")
done
if [ "${#missing[@]}" -gt 0 ]; then
  say "installing ${missing[*]}"
  as_root apt-get update -qq || say "apt-get update reported an error; trying with the lists at hand"
  DEBIAN_FRONTEND=noninteractive as_root apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null ||
    fail "apt-get could not install ${missing[*]}"
fi

for module in "${modules[@]}"; do
  read -r package digest <<<"$module"
  name=${package%@*}
  place=$libraries/node_modules/$name
  [ "$(cat "$place/.version" 2>/dev/null)" = "$package" ] && continue
  say "fetching $package"
  work=$(mktemp -d)
  archive=$(cd "$work" && npm pack --loglevel=error "$package" | tail -n 1) || fail "npm could not fetch $package"
  printf '%s  %s\n' "$digest" "$work/$archive" | sha256sum --check --quiet || fail "what npm fetched is not $package as it is known"
  tar -xzf "$work/$archive" -C "$work"
  rm -rf "$place"
  mkdir -p "$place"
  cp -R "$work/package/." "$place/"
  printf '%s' "$package" >"$place/.version"
  rm -rf "$work"
done
