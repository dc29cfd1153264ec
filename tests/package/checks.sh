# What the package tests share: checks that count their failures, and a folder of the test's own.
# shellcheck shell=bash
set -euo pipefail
shopt -s inherit_errexit
export LC_ALL=C

failures=0
scratch=$(mktemp -d)
finish() {
  local status=$?
  rm -rf "$scratch"
  ((status == 0)) || exit "$status"
  ((failures == 0)) || printf '%d of the checks above failed\n' "$failures"
  exit $((failures > 0))
}
trap finish EXIT

# check WHAT EXPECTED ACTUAL: the texts are equal, line by line.
check() {
  [[ $2 != "$3" ]] || return 0
  printf 'FAILED: %s (< expected, > actual)\n' "$1"
  diff <(printf '%s\n' "$2") <(printf '%s\n' "$3") || true
  failures=$((failures + 1))
}

# check_match WHAT PATTERN TEXT: the whole text matches the extended regular expression.
check_match() {
  [[ ! $3 =~ ^($2)$ ]] || return 0
  printf 'FAILED: %s: "%s" does not match %s\n' "$1" "$3" "$2"
  failures=$((failures + 1))
}
