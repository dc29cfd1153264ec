#!/usr/bin/env bash
# core_swap.sh SOURCE_DIRECTORY BUILD_DIRECTORY: another core library of the same name takes the place of ours. The
# other one has no memory to give, so that building a code table tells which of the two is in use.
source "$(dirname "${BASH_SOURCE[0]}")/checks.sh"
here=$1/tests/package include=$1/include lib=$2/lib

cc -std=c99 -Wall -Wextra -Werror -shared -fPIC -Wl,-soname,libmoxcore.so.6 -o "$scratch/libmoxcore.so.6" \
  "$here/core_without_memory.c"
cc -std=c99 -Wall -Wextra -Werror -I"$include" -o "$scratch/program" "$here/build_table.c" "$lib/libmoxvc.so.6" \
  -Wl,-rpath-link,"$lib"

# 0 is success, 9 (moxStsNoMemory is -9) no memory.
status_with() { LD_LIBRARY_PATH=$1 "$scratch/program" && echo 0 || echo $?; }
check 'building a table with the own core library' 0 "$(status_with "$lib")"
check 'building a table with the core library that has no memory' 9 "$(status_with "$scratch:$lib")"
