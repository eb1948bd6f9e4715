#!/bin/sh
# Compiles each source and header of the plugin alone against a vendor's toolkit, as C++98; all together as each newer
# C++ up to 23; each header of our contract alone, as C++11, with only its own folder and the signal library on the
# include path; and the plugin's screens with our contract on the signal library 1.0. Arguments: a C++ compiler, the
# source folder.
set -eu
cd "$2"

compiler=$1
alone=$(mktemp)
trap 'rm -rf "$alone" "$alone.1.0"' EXIT

count=0
compile() # STANDARD, FILE, then options and more files
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

# Two readers have a function of one name, so one of them is compiled beside the others.
include src/*.cpp src/readers/[!m]*.cpp src/readers/m[!t]*.cpp
for year in 11 14 17 20 23:2b; do # 23 had another name before it was final
	standard=c++${year%:*}
	knows "$standard" || standard=c++${year#*:}
	compile "$standard" "$alone" $vendor src/readers/mtd_columns.cpp
done

for file in src/toolkit/*.h; do
	include "$file"
	compile c++11 "$alone" -Isrc/toolkit -DVEXLO_SIGC1=2
done
# 1.0 has no ObjectBase, and one header with another name.
mkdir "$alone.1.0" "$alone.1.0/sigc++"
(cd tests/vendor/sigc1/include/sigc++-1.2/sigc++ && cat object_slot.h signal.h) |
	sed 's/ObjectBase/Base/g; /^#include </d; /^#if SIGC/,/^#endif/d' >"$alone.1.0/sigc++/signal_system.h"
sigc="-isystem $alone.1.0"
include src/*.cpp
compile c++11 "$alone" -Isrc -Isrc/readers -Isrc/translation -Isrc/toolkit -DVEXLO_SIGC1=0
[ "$count" -gt 40 ] || { echo "only $count files"; exit 1; }
echo "$count times, as C++98 to 23"
