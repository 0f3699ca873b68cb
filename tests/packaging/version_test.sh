#!/usr/bin/env bash
# The newest entry of CHANGELOG.md is the version's, and the program prints that version.
# Usage: version_test.sh CHANGELOG VERSION PROGRAM
set -euo pipefail
changelog=$1
version=$2
shift 2
newest=$(grep -m 1 '^## ' "$changelog")
[[ $newest =~ ^"## $version ("[0-9]{4}-[0-9]{2}-[0-9]{2}")"$ ]] || {
  echo "CHANGELOG.md begins with \"$newest\", not with \"## $version (DATE)\": write down what is new, or see project(VERSION)"
  exit 1
}
printed=$("$@" --version)
[ "$printed" = "quillon $version" ] || {
  echo "the program prints \"$printed\", not \"quillon $version\""
  exit 1
}
