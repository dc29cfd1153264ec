#!/usr/bin/env bash
# binary.sh LIBRARY SOURCE_DIRECTORY BUILD_DIRECTORY: what a library needs, imports and holds.
source "$(dirname "${BASH_SOURCE[0]}")/checks.sh"
library=$1 source_directory=$2 build_directory=$3

dynamic=$(readelf -dW "$library")
sections=$(readelf -SW "$library" | sed 's/^ *\[ *[0-9]*\] *//')

# dynamic TAG: the values of a tag of the dynamic section.
dynamic() { sed -n "s/^ *0x[0-9a-f]* ($1) *//p" <<<"$dynamic"; }
# size_of SECTION: in bytes, 0 if there is no such section.
size_of() { awk -v name="$1" '$1 == name { size = $5 } END { print "0x0" size }' <<<"$sections"; }

# The OpenMP runtime is that of the compiler, clang's or GCC's.
check 'needed libraries' $'Shared library: [OpenMP]\nShared library: [libc.so.6]\nShared library: [libmoxcore.so.6]' \
  "$(dynamic NEEDED | sed -E 's/lib(omp\.so\.5|gomp\.so\.1)/OpenMP/' | sort)"
check 'name' 'Library soname: [libmoxvc.so.6]' "$(dynamic SONAME)"
# shellcheck disable=SC2016
check_match 'places of the core library' 'Library runpath: \[\$ORIGIN[^:]*(:\$ORIGIN[^:]*)*\]' "$(dynamic RUNPATH)"
check 'old-style places, which LD_LIBRARY_PATH cannot override' '' "$(dynamic RPATH)"
check_match 'all symbols bound at start' '.*BIND_NOW.*' "$(dynamic FLAGS)"
check 'relocations in code' '' "$(dynamic TEXTREL)"
check 'tables of pointers made read-only' 1 "$(readelf -lW "$library" | grep -c GNU_RELRO)"
check 'stack without the right to execute' 'RW' "$(readelf -lW "$library" | awk '$1 == "GNU_STACK" { print $7 }')"

check 'foreign imports' '' "$(nm -D --undefined-only "$library" | awk '$1 == "U" { sub(/@.*/, "", $2); print $2 }' |
  grep -vxE 'moxMalloc|moxFree|moxGetMaxCacheSizeB|ownGetNumThreads|memcpy|memmove|memset|omp_get_(num_threads|thread_num)|__kmpc_.*|GOMP_parallel' ||
  true)"
check 'imports of the loader' '' "$(nm -D --undefined-only "$library" | awk '$1 != "U" { sub(/@.*/, "", $2); print $2 }' |
  grep -vxE '_ITM_(de)?registerTMCloneTable|__cxa_finalize|__gmon_start__' || true)"

# The compiler's start files bring one initialiser, one pointer in .data and one flag in .bss; a static constructor or a
# variable of ours would add to them.
check 'initialisers, in bytes' 8 $(($(size_of .init_array)))
check 'writable data, in bytes' 8 $(($(size_of .data)))
check 'writable zeroed data, in bytes' 8 $(($(size_of .bss)))
check 'data of a thread, in bytes' 0 $(($(size_of .tdata) + $(size_of .tbss)))

for directory in "$source_directory" "$build_directory"; do
  check "places where the library names $directory" 0 "$(grep -acF "$directory" "$library" || true)"
done
