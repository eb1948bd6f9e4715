#!/bin/sh
# Builds the plugin against a 1.x signal library in place of the layer over 3.0, and sees that it needs
# nothing of 3.0. Arguments: cmake, the sources, a C++ compiler.
set -eu

build=$(mktemp -d)
trap 'rm -rf "$build"' EXIT
"$1" -S "$2" -B "$build" -G Ninja -DCMAKE_CXX_COMPILER="$3" -DCMAKE_BUILD_TYPE=Release -DVEXLO_DESK=OFF \
	-DBUILD_TESTING=OFF -DVEXLO_SIGC1_INCLUDE="$2/tests/plugin/sigc1" >"$build/log" 2>&1 || { cat "$build/log"; exit 1; }
"$1" --build "$build" --target vexlomenu >"$build/log" 2>&1 || { cat "$build/log"; exit 1; }

plugin=$(find "$build" -name vexlomenu.so.0)
if readelf -d "$plugin" | grep sigc || nm -DC "$plugin" | grep sigc::; then
	echo "the plugin still needs libsigc++ 3.0"
	exit 1
fi
nm -DC --undefined-only "$plugin" | grep -q 'SigC::ObjectBase::reference() const' ||
	{ echo "the plugin does not take SigC from its host"; exit 1; }
echo "built on a 1.x library"
