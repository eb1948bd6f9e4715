#!/bin/sh
# Builds the plugin without the desk host, as a receiver's vendor does. Arguments: cmake, the source folder, a C++
# compiler, and one of these checks:
#     signals    our contract on a 1.2 signal library: the plugin needs nothing of 3.0 and is small
#     toolkit    a vendor's toolkit.h without src/toolkit; further argument: his front end
#     desk       the desk host on a 1.2 signal library; further arguments: that library, and the usual desk
#                host, which must record the same for the same keys
#     mistakes   configuring fails with one clear message for wrong options; further argument: a 1.2 library
set -eu
cmake=$1 sources=$2 compiler=$3 what=$4
build=$(mktemp -d)
trap 'rm -rf "$build"' EXIT

signals=$sources/tests/vendor/sigc1
sigc="$signals/include/sigc++-1.2;$signals/lib/sigc++-1.2/include"
configure()
{
	"$cmake" -S "$sources" -B "$build" -G Ninja -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_BUILD_TYPE=Release \
		-DBUILD_TESTING=OFF "$@" >"$build.log" 2>&1
}
build()
{
	configure -DVEXLO_DESK=OFF "$@" && "$cmake" --build "$build" --target vexlomenu >"$build.log" 2>&1 ||
		{ cat "$build.log"; exit 1; }
	plugin=$(find "$build" -name vexlomenu.so.0)
	if readelf -d "$plugin" | grep -i sigc || nm -DC "$plugin" | grep sigc::; then
		echo "the plugin needs libsigc++ 3.0"
		exit 1
	fi
	nm -DC --undefined-only "$plugin" | grep -q 'SigC::ObjectBase::reference() const' ||
		{ echo "the plugin does not take SigC from its host"; exit 1; }
}
press() # DESKHOST, KEYS, FILE for the dump and the trace
{
	root=$(mktemp -d -p "$build")
	cp -R "$sources/samples/receiver/." "$root"
	"$1" --screen none --root "$root" --keys "$2" --dump "$3" --trace "$3.trace" >"$3.out"
	cat "$3.trace" "$3.out" >>"$3"
}
refuses() # WORDS, then options
{
	words=$1
	shift
	if configure -U 'VEXLO_*' "$@"; then # keeps cached checks of the compiler
		echo "configuring says nothing of: $words"
		exit 1
	fi
	tr -s ' \n' ' ' <"$build.log" | grep -qF -- "$words" || { echo "no: $words"; cat "$build.log"; exit 1; }
}

case $what in
signals)
	build "-DVEXLO_SIGC1_INCLUDE=$sigc"
	[ $# -lt 5 ] || "$sources/tests/size/size_test.sh" "$plugin" strip size 43520 34000
	;;
toolkit)
	# toolkit.h is in one folder, and what it includes in another.
	mkdir "$build/widgets" "$build/own"
	cp -R "$sources/tests/vendor/include/gui" "$build/widgets"
	cp "$sources/tests/vendor/include/toolkit.h" "$build/own"
	build "-DVEXLO_TOOLKIT_INCLUDE=$build/widgets;$build/own" "-DVEXLO_SIGC1_INCLUDE=$sigc"
	if ninja -C "$build" -t deps | grep 'src/toolkit/'; then
		echo "src/toolkit is used"
		exit 1
	fi
	for symbol in $(nm -D --undefined-only "$plugin" | awk '$2 ~ /^_Z(N?K?[0-9]+e[A-Z]|TI|TV|[0-9]+eDebug)/ { print $2 }'); do
		nm -D --defined-only "$5" | grep -q " $symbol\$" || case $symbol in
		*SigC*|_ZTVN10__cxx*) ;;
		*) echo "the vendor's front end lacks $symbol"; exit 1 ;;
		esac
	done
	;;
desk)
	keys='ok ok exit exit down ok exit down ok red ok ok exit exit down down down ok green exit'
	configure -DCMAKE_BUILD_TYPE=Debug "-DVEXLO_SIGC1_INCLUDE=$sigc" "-DVEXLO_SIGC1_LIBRARY=$5" &&
		"$cmake" --build "$build" --target deskhost >"$build.log" 2>&1 || { cat "$build.log"; exit 1; }
	if ldd "$build/bin/deskhost-plugin" | grep 'libsigc-3'; then
		echo "libsigc++ 3.0 is used"
		exit 1
	fi
	press "$build/bin/deskhost" "$keys" "$build/here"
	press "$6" "$keys" "$build/there"
	[ "$(wc -l <"$build/here")" -gt 100 ] || { echo "hardly anything happened"; exit 1; }
	cmp "$build/here" "$build/there"
	# The installed package names the same signal library.
	"$cmake" --install "$build" --component dev --prefix "$build/usr" >"$build.log"
	flags=$(PKG_CONFIG_PATH=$(dirname "$(find "$build/usr" -name vexlo-toolkit.pc)") pkg-config --cflags vexlo-toolkit)
	"$compiler" -std=c++17 -fPIC -shared $flags "$sources"/examples/network/*.cpp -o "$build/network.so.0"
	"$cmake" -S "$sources/examples/network" -B "$build/network" -G Ninja -DCMAKE_CXX_COMPILER="$compiler" \
		-DCMAKE_PREFIX_PATH="$build/usr" -DBUILD_TESTING=OFF >"$build.log" 2>&1 &&
		"$cmake" --build "$build/network" >>"$build.log" 2>&1 || { cat "$build.log"; exit 1; }
	for example in "$build/network.so.0" "$build/network/network.so.0"; do
		if nm -DC "$example" | grep sigc:: || ! nm -DC "$example" | grep -q 'SigC::ObjectBase::reference() const'; then
			echo "the example does not use the 1.2 library: $example"
			exit 1
		fi
	done
	;;
mistakes)
	refuses 'The desk host needs the 1.2 signal library itself' "-DVEXLO_SIGC1_INCLUDE=$sigc"
	refuses 'none of these folders has sigc++/signal.h' -DVEXLO_DESK=OFF -DVEXLO_SIGC1_INCLUDE=/nowhere
	refuses 'has libsigc++ 2 or 3, not 1.2' -DVEXLO_DESK=OFF \
		"-DVEXLO_SIGC1_INCLUDE=$(pkg-config --variable=includedir sigc++-3.0)/sigc++-3.0"
	mkdir -p "$build/1.0/sigc++"
	touch "$build/1.0/sigc++/signal_system.h"
	refuses 'has libsigc++ 1.0, and the desk host needs 1.2' "-DVEXLO_SIGC1_INCLUDE=$build/1.0"
	echo '!<arch>' >"$build.a"
	refuses 'is no shared library' "-DVEXLO_SIGC1_INCLUDE=$sigc" "-DVEXLO_SIGC1_LIBRARY=$build.a"
	# Relative paths start from the working folder of cmake, not from the build folder.
	cd "$(dirname "$build")"
	refuses "$build.a is no shared library" "-DVEXLO_SIGC1_INCLUDE=$sigc" "-DVEXLO_SIGC1_LIBRARY=${build##*/}.a"
	rm "$build.a"
	refuses 'VEXLO_SIGC1_LIBRARY needs its headers too' "-DVEXLO_SIGC1_LIBRARY=$5"
	refuses 'has nothing of namespace SigC' "-DVEXLO_SIGC1_INCLUDE=$sigc" \
		"-DVEXLO_SIGC1_LIBRARY=$(pkg-config --variable=libdir sigc++-3.0)/libsigc-3.0.so"
	refuses 'there is no toolkit.h in /nowhere' -DVEXLO_DESK=OFF -DVEXLO_TOOLKIT_INCLUDE=/nowhere
	refuses 'with VEXLO_TOOLKIT_INCLUDE, give -DVEXLO_DESK=OFF as well' \
		"-DVEXLO_TOOLKIT_INCLUDE=$sources/tests/vendor/include"
	cd "$sources/tests/vendor"
	refuses 'VEXLO_TOOLKIT_INCLUDE: include is a relative path' -DVEXLO_DESK=OFF -DVEXLO_TOOLKIT_INCLUDE:PATH=include
	configure -U 'VEXLO_*' -DVEXLO_DESK=OFF -DVEXLO_TOOLKIT_INCLUDE=include \
		'-DVEXLO_SIGC1_INCLUDE=sigc1/include/sigc++-1.2;sigc1/lib/sigc++-1.2/include' || { cat "$build.log"; exit 1; }
	grep -qF -- "$PWD/sigc1/lib/sigc++-1.2/include" "$build/build.ninja" && grep -qF -- "$PWD/include" "$build/build.ninja" ||
		{ echo "relative folders are not found"; exit 1; }
	configure -U VEXLO_TOOLKIT_INCLUDE "-DVEXLO_SIGC1_INCLUDE=$build/1.0" && grep -q VEXLO_SIGC1=0 "$build/build.ninja" ||
		{ cat "$build.log"; echo "the plugin is not built for 1.0"; exit 1; }
	;;
esac
rm -f "$build.log"
