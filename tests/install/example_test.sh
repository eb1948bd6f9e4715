#!/bin/bash
# Builds the example plugin outside of the tree, against what the packages install and nothing else, and runs
# its tests; then sees that they can fail. Arguments: the source folder, the folder with the packages.
set -euo pipefail

place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT
step()
{
	"$@" >"$place/log" 2>&1 </dev/null || { cat "$place/log"; echo "failed: $*"; exit 1; }
}

for package in "$2"/*.deb; do
	step dpkg-deb --extract "$package" "$place/root"
done
cp -R "$1/examples/network" "$place/network"
export CMAKE_PREFIX_PATH=$place/root/usr PATH=$place/root/usr/bin:$PATH
step cmake -S "$place/network" -B "$place/build" -G Ninja -DCMAKE_BUILD_TYPE=MinSizeRel \
	-DCMAKE_CXX_FLAGS='-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror'
step cmake --build "$place/build"
if grep -rl "$1/" "$place/build" --include=build.ninja; then
	echo "the example is built with what is in the tree"
	exit 1
fi
step ctest --test-dir "$place/build" --output-on-failure --no-tests=error
grep 'tests passed' "$place/log"

readelf --notes "$place/build/network.so.0" | grep -q Vexlo || { echo "the example has no note of its contract"; exit 1; }
strip "$place/build/network.so.0"
size=$(stat -c %s "$place/build/network.so.0")
((size <= 40000)) || { echo "the example has grown to $size bytes"; exit 1; }
exported=$(nm -D --defined-only "$place/build/network.so.0" | awk '{ print $3 }')
[[ $exported == plugin_exec ]] || { echo "the example exports $exported"; exit 1; }

# An interface more is a change that its tests see.
sed -i 's/^2: eth0/2: lan0/' "$place/network/tests/receiver/bin/ip"
if ctest --test-dir "$place/build" >"$place/log" 2>&1; then
	echo "the example's tests pass whatever the receiver prints"
	exit 1
fi
