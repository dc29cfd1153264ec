#!/usr/bin/env bash
# install.sh SOURCE_DIRECTORY BUILD_DIRECTORY GENERATION...: the installed tree serves the README's example through
# pkg-config and through CMake, wherever it is moved, and the dynamic loader picks the right generation. The first
# generation is the default one.
source "$(dirname "${BASH_SOURCE[0]}")/checks.sh"
source_directory=$1 build_directory=$2
shift 2
generations=" $* " default=$1
loader=/lib64/ld-linux-x86-64.so.2

# readme_block LANGUAGE: the README's first block of that language.
readme_block() { awk -v start="^\`\`\`$1\$" '/^```$/ && on { exit } on; $0 ~ start { on = 1 }' "$source_directory/README.md"; }
# library_of OUTPUT: the library that the example named on its first line.
library_of() { sed -n '1s/:.*//p' <<<"$1"; }

cmake --install "$build_directory" --prefix "$scratch/installed" >/dev/null
prefix=$scratch/moved
mv "$scratch/installed" "$prefix"
cd "$scratch"
readme_block c >example.c
readme_block text >expected.txt
check_match "length of the README's example in lines" '1[0-9]|20' "$(wc -l <example.c)"

# C99 through pkg-config, the library found through LD_LIBRARY_PATH.
export PKG_CONFIG_PATH=$prefix/lib/pkgconfig
read -ra flags <<<"$(pkg-config --cflags --libs moxvc)"
cc -std=c99 -Wall -Wextra -Werror -pedantic -o example_c example.c "${flags[@]}"
check 'version of the pkg-config file' 6.1 "$(pkg-config --modversion moxvc)"

# C++ through CMake, the library found through the program's own run path.
mkdir consumer
cp "$source_directory/tests/package/consumer/CMakeLists.txt" consumer/
cp example.c consumer/example.cpp
if ! (cmake -G Ninja -S consumer -B consumer/build -D CMAKE_PREFIX_PATH="$prefix" &&
  cmake --build consumer/build) >cmake.log 2>&1; then
  cat cmake.log
  exit 1
fi
example_cpp=consumer/build/example

# The default generation and what the README says that the example prints.
for generation in $generations; do
  output=$(LD_LIBRARY_PATH=$prefix/lib/moxvc/$generation:$prefix/lib ./example_c)
  check "the example with $generation" "$(sed "1s/libmoxvc../libmoxvc$generation/" expected.txt)" "$output"
done

# The loader's choice: v3 on a processor that can run it, else the default.
best=$default
if [[ $generations == *' v3 '* ]] && "$loader" --help | grep -q 'x86-64-v3 (supported'; then best=v3; fi
export LD_LIBRARY_PATH=$prefix/lib
check 'choice of the loader, from LD_LIBRARY_PATH' "libmoxvc$best.so.6.1" "$(library_of "$(./example_c)")"
check 'choice of the loader, from LD_LIBRARY_PATH, without AVX2' "libmoxvc$default.so.6.1" \
  "$(library_of "$(GLIBC_TUNABLES=glibc.cpu.hwcaps=-AVX2 ./example_c)")"
unset LD_LIBRARY_PATH
check 'choice of the loader, from the run path' "libmoxvc$best.so.6.1" "$(library_of "$($example_cpp)")"
check 'choice of the loader, from the run path, without v3' "libmoxvc$default.so.6.1" \
  "$(library_of "$("$loader" --glibc-hwcaps-mask x86-64-v2 $example_cpp)")"

# ldconfig keeps the default the default: it would take the last of several files with one name.
links=$(cd "$prefix/lib" && find . -type l -printf '%P -> %l\n' | sort)
PATH=$PATH:/sbin:/usr/sbin ldconfig -n "$prefix/lib" "$prefix/lib/glibc-hwcaps/x86-64-v3"
check 'links after ldconfig' "$links" "$(cd "$prefix/lib" && find . -type l -printf '%P -> %l\n' | sort)"

check 'files that name the place of the build' '' "$(grep -rlF -e "$source_directory" -e "$build_directory" \
  -e "$scratch" "$prefix" || true)"
