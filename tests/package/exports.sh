#!/usr/bin/env bash
# exports.sh LIBRARY LIST: the library defines exactly the functions of the list.
source "$(dirname "${BASH_SOURCE[0]}")/checks.sh"
library=$1 list=$2

check "exports of $(basename "$library")" "$(grep -v -e '^#' -e '^$' "$list" | sort)" \
  "$(nm -D --defined-only "$library" | awk '{ print $2, $3 }' | sed 's/^T //' | sort)"
