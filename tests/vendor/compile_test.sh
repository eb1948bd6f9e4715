#!/bin/sh
# Compiles each source and header of the plugin alone against a vendor's toolkit, as C++98; all together as each newer
# C++ that the compiler knows; and each header of our contract alone, as C++11, with only its own folder and the
# signal library on the include path. Arguments: a C++ compiler, the source folder.
set -eu
cd "$2"

compiler=$1
alone=$(mktemp)
trap 'rm -rf "$alone" "$alone.1.0"' EXIT

count=0
compile() # STANDARD, FILE, then options
{
	standard=$1 file=$2
	shift 2
	"$compiler" "-std=$standard" -pedantic-errors -Wno-long-long -Wno-variadic-macros -Wall -Wextra -Wconversion \
		-Wshadow -Werror -fsyntax-only $sigc "$@" -x c++ "$file" || { echo "$file is no $standard"; exit 1; }
	count=$((count + 1))
}
knows() { "$compiler" "-std=$1" -fsyntax-only -x c++ /dev/null 2>/dev/null; }
include() # FILE...: prints a source that includes them
{
	for file in "$@"; do
		echo "#include \"$PWD/$file\""
	done >"$alone"
}

sigc='-isystem tests/vendor/sigc1/include/sigc++-1.2 -isystem tests/vendor/sigc1/lib/sigc++-1.2/include'
vendor='-Isrc -Isrc/readers -Isrc/translation -isystem tests/vendor/include'
for file in src/*.cpp src/readers/*.cpp; do
	compile c++98 "$file" $vendor
done
for file in src/*.h src/readers/*.h src/translation/*.h; do
	include "$file"
	compile c++98 "$alone" $vendor
done

newest=
for year in 11 14 17 20 23:2b; do
	for standard in "c++${year%:*}" "c++${year#*:}"; do
		if knows "$standard"; then
			newest=$standard
			include src/*.cpp
			compile "$standard" "$alone" $vendor
			break
		fi
	done
done
[ -n "$newest" ] || { echo "$compiler knows nothing newer than C++98"; exit 1; }
for file in src/readers/*.cpp; do
	compile "$newest" "$file" $vendor
done

for file in src/toolkit/*.h; do
	include "$file"
	compile c++11 "$alone" -Isrc/toolkit -DVEXLO_SIGC1=2
done
# 1.0 has the same headers under another name.
mkdir "$alone.1.0" "$alone.1.0/sigc++"
printf '#include <sigc++/object_slot.h>\n#include <sigc++/signal.h>\n' >"$alone.1.0/sigc++/signal_system.h"
include src/toolkit/toolkit.h
compile c++11 "$alone" -Isrc/toolkit -isystem "$alone.1.0" -DVEXLO_SIGC1=0
[ "$count" -gt 45 ] || { echo "only $count files"; exit 1; }
echo "$count times, up to $newest"
