#!/bin/bash
# Builds and tests the example plugins outside of the tree, with nothing but the installed packages; then checks that
# the tests can fail. Arguments: the source folder, the folder with the packages.
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

cp -R "$1/examples/favourites" "$place/favourites"
step cmake -S "$place/favourites" -B "$place/favourites/build" -G Ninja \
	-DCMAKE_CXX_FLAGS='-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror'
step cmake --build "$place/favourites/build"
step ctest --test-dir "$place/favourites/build" --output-on-failure --no-tests=error

readelf --notes "$place/build/network.so.0" | grep -q Vexlo || { echo "the example has no note of its contract"; exit 1; }
strip "$place/build/network.so.0"
size=$(stat -c %s "$place/build/network.so.0")
((size <= 40000)) || { echo "the example has grown to $size bytes"; exit 1; }
exported=$(nm -D --defined-only "$place/build/network.so.0" | awk '{ print $3 }')
[[ $exported == plugin_exec ]] || { echo "the example exports $exported"; exit 1; }

# deskhost-new makes a plugin whose test passes.
(
	cd "$place"
	step deskhost-new hello
	step cmake -S hello -B hello/build -G Ninja -DCMAKE_CXX_FLAGS='-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror'
	step cmake --build hello/build
	step ctest --test-dir hello/build --output-on-failure --no-tests=error
	deskhost --plugin hello/build/hello.so.0 --catalogue hello:hello/build/locale --lang de --screen none --keys green \
		--dump hello/dump >"$place/log" 2>&1
	grep -q 'Guten Abend!' hello/dump || { echo "the new plugin does not speak German"; exit 1; }
	for name in Hello 1st two-words hello ''; do
		deskhost-new "$name" 2>"$place/log" && { echo "deskhost-new makes '$name'"; exit 1; }
		[[ $(wc -l <"$place/log") == 1 ]] || { cat "$place/log"; exit 1; }
	done
	# The build refuses a plugin that the host would refuse, even where warnings are no errors.
	cp -R hello wrong
	sed -i 's/hello.cpp/wrong.cpp/; /^vexlo_add_cat/d' wrong/CMakeLists.txt
	rm -r wrong/build
	touch wrong/wrong.cpp
	step cmake -S wrong -B wrong/build -G Ninja
	for change in 's/^extern "C" int/int/' 's/^extern "C" int/static int/' 's/int plugin_exec/int plugin_exce/' \
		's/^extern "C" int/extern "C" __attribute__((visibility("hidden"))) int/'; do
		sed "$change" hello/hello.cpp >wrong/wrong.cpp
		cmake --build wrong/build >"$place/log" 2>&1 && { echo "it is built after $change"; exit 1; }
		grep -q 'exports no plugin_exec' "$place/log" || { cat "$place/log"; exit 1; }
	done
	# It also refuses a slot that does not fit its signal, and a format that does not fit its values.
	sed 's/void greet();/void greet(int);/; s/::greet()/::greet(int)/' hello/hello.cpp >wrong/wrong.cpp
	cmake --build wrong/build --target hello >"$place/log" 2>&1 && { echo 'it is built with a wrong slot'; exit 1; }
	[[ $(grep -c 'error:' "$place/log") == 1 ]] && grep -q 'does not take what the signal passes' "$place/log" ||
		{ cat "$place/log"; exit 1; }
	sed 's/^void MainWindow::greet()$/&\n{ eString text; text.sprintf(const_cast<char *>("%d"), "one"); }\nvoid other()/' \
		hello/hello.cpp | sed 's/^\tgreeting->setText(translated("Good.*//' >wrong/wrong.cpp
	cmake --build wrong/build --target hello >"$place/log" 2>&1 && { echo 'it is built with a wrong format'; exit 1; }
	grep -q 'error: format' "$place/log" || { cat "$place/log"; exit 1; }
	# Only with STRICT, it refuses what no receiver's compiler or signal library accepts.
	printf '#include <string_view>\nstd::string_view newer;\n' | cat - hello/hello.cpp >wrong/wrong.cpp
	step cmake --build wrong/build --target hello
	cmake --build wrong/build --target hello_strict >"$place/log" 2>&1 && { echo 'STRICT takes C++17'; exit 1; }
	sed -i 's/ STRICT)/ STRICT CXX98)/' wrong/CMakeLists.txt
	cp hello/hello.cpp wrong/wrong.cpp
	cmake --build wrong/build --target hello_strict hello_cxx98 >"$place/log" 2>&1 && { echo 'CXX98 takes C++11'; exit 1; }
	grep -q "error: 'nullptr' is incompatible with C++98" "$place/log" || { cat "$place/log"; exit 1; }
	sed -i 's/nullptr/0/g' wrong/wrong.cpp
	step cmake --build wrong/build --target hello_strict hello_cxx98
	sed 's/void greet();/int greet();/; s/^void MainWindow::greet()/int MainWindow::greet()/; s/Good evening!"));/&\nreturn 0;/' \
		hello/hello.cpp >wrong/wrong.cpp
	cmake --build wrong/build --target hello >"$place/log" 2>&1 && { echo 'it is built with a slot that returns something'; exit 1; }
	[[ $(grep -c 'error:' "$place/log") == 1 ]] && grep -q 'does not return what the signal wants' "$place/log" ||
		{ cat "$place/log"; exit 1; }
	cp -R favourites strict
	rm -rf strict/build
	sed -i 's/moved(Entry \*entry) { current = entry; }/moved(eListBoxEntry *entry) { current = static_cast<Entry *>(entry); }/' \
		strict/favourites.cpp
	step cmake -S strict -B strict/build -G Ninja
	step cmake --build strict/build --target favourites
	cmake --build strict/build --target favourites_strict >"$place/log" 2>&1 && { echo 'STRICT takes any slot'; exit 1; }
	# It lists untranslated texts, and adds them to the catalogue.
	sed -i 's/translated("greet")/translated("say hello")/' hello/hello.cpp
	cmake --build hello/build >"$place/log" 2>&1
	grep -q 'hello/po/de.po: not translated: "say hello"$' "$place/log" || { cat "$place/log"; exit 1; }
	[[ $(grep -c 'not translated' "$place/log") == 1 ]] || { cat "$place/log"; exit 1; }
	cp hello/hello.cpp wrong/hello.cpp
	sed -i 's/translated("say hello")/translated("say\\nhello")/' hello/hello.cpp
	cmake --build hello/build >"$place/log" 2>&1
	grep -qF 'hello/po/de.po: not translated: "say\nhello"' "$place/log" || { cat "$place/log"; exit 1; }
	cp wrong/hello.cpp hello/hello.cpp
	step cmake --build hello/build --target hello_update_po
	grep -A 1 'msgid "say hello"' hello/po/de.po | grep -q 'msgstr ""' || { cat hello/po/de.po; exit 1; }
	sed -i 's/translated("say hello")/translated("greet")/' hello/hello.cpp
	step cmake --build hello/build --target hello_update_po
	# Catalogues become UTF-8 from any character set; formats that do not fit are errors.
	iconv -f UTF-8 -t ISO-8859-1 hello/po/de.po | sed 's/charset=UTF-8/charset=ISO-8859-1/' >hello/po/latin.po
	mv hello/po/latin.po hello/po/de.po
	step cmake --build hello/build
	deskhost --plugin hello/build/hello.so.0 --catalogue hello:hello/build/locale --lang de --screen none --dump hello/dump \
		>"$place/log" 2>&1
	grep -q 'Bitte die gr\\u00fcne Taste' hello/dump || { cat "$place/log" hello/dump; exit 1; }
)

# An example's tests notice a renamed interface.
sed -i 's/^2: eth0/2: lan0/' "$place/network/tests/receiver/bin/ip"
if ctest --test-dir "$place/build" >"$place/log" 2>&1; then
	echo "the example's tests pass whatever the receiver prints"
	exit 1
fi

# golden-test shows differences widget by widget, and compares written files and standard error as well.
echo 'said before' >"$place/favourites/tests/receiver/said"
differs() # WHAT COMMAND...: changes a copy of the test; golden-test must then print a line with WHAT
{
	local what=$1
	shift
	rm -rf "$place/changed" "$place/results"
	mkdir "$place/changed"
	cp -R "$place/favourites/tests/edits" "$place/favourites/tests/receiver" "$place/changed"
	(cd "$place/changed" && "$@")
	golden-test --results "$place/results" "$place/changed/edits" --plugin "$place/favourites/build/favourites.so.0" \
		--serve /var/favourites --serve /var/favourites.new >"$place/log" 2>&1 && { echo "golden-test takes: $*"; exit 1; }
	grep -qF -- "$what" "$place/log" || { cat "$place/log"; echo "golden-test does not show: $what"; exit 1; }
}
differs '-    {"class":"eButton","rect":[450,250,135,40],"text":"keep"' sed -i 's/"text":"save"/"text":"keep"/' edits/dump
[[ $(grep -c '^+ ' "$place/log") == "$(wc -w < <(sed 's/#.*//' "$place/changed/edits/keys"))" ]] ||
	{ cat "$place/log"; echo 'golden-test shows widgets that are as expected'; exit 1; }
differs '-Theatres' sed -i 's/Theatre/Theatres/' edits/written/var/favourites
differs '-said before' cp receiver/said edits/errors
differs "+++ $place/results/written/var/another" cp receiver/var/favourites edits/written/var/another
