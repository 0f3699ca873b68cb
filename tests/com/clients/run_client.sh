#!/usr/bin/env bash
# Runs a client on an account and compares every line that it prints, and its exit status, with the session that all
# clients have. Usage: run_client.sh CLIENT ACCOUNT (a script, or a program)
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
. "$here/../common.sh"
expect_output "$here/session.expected" "$1" "$2"
