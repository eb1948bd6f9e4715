#!/bin/sh
# Compiles every source and every header of the plugin alone, as strict C++11: against the contract, with
# nothing but its own folder and a 1.x signal library on the include path, and the sources against a
# vendor's toolkit as well. Arguments: a C++ compiler, the sources' root.
set -eu
cd "$2"

sigc='-isystem tests/vendor/sigc1/include -isystem tests/vendor/sigc1/lib/include'
header='-DVEXLO_SIGC1_HEADER="sigc++/signal_system.h"'
count=0
compile() # FILE, then options
{
	file=$1
	shift
	"$compiler" -std=c++11 -pedantic-errors -Wall -Wextra -Wconversion -Wshadow -Werror -fsyntax-only \
		-x c++ $sigc "$header" "$@" "$file"
	count=$((count + 1))
}
compiler=$1
alone=$(mktemp)
trap 'rm -f "$alone"' EXIT

for file in src/toolkit/*.h; do
	echo "#include \"${file##*/}\"" >"$alone"
	compile "$alone" -Isrc/toolkit
done
for file in src/readers/*.h; do
	echo "#include \"${file##*/}\"" >"$alone"
	compile "$alone" -Isrc/readers
done
for file in src/readers/*.cpp; do
	compile "$file" -Isrc/translation
done
for file in src/*.h src/*.cpp src/translation/*.h; do
	echo "#include \"$PWD/$file\"" >"$alone"
	compile "$alone" -Isrc -Isrc/readers -Isrc/translation -Isrc/toolkit
done
for file in src/*.cpp; do
	compile "$file" -Isrc -Isrc/readers -Isrc/translation -isystem tests/vendor/include
done
[ "$count" -gt 40 ] || { echo "only $count files"; exit 1; }
echo "$count files"
