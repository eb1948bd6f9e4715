#!/bin/bash
# Runs every command of docs/plugins.md in order, outside of the tree: with an installation in a folder, or, on a
# system without one, with the packages. Arguments: the source folder, and the build folder or a folder with the
# packages.
set -euo pipefail

source=$(realpath "$1") from=$(realpath "$2")
HOME=$(mktemp -d)
export HOME
trap 'rm -rf "$HOME"' EXIT

awk '/^```sh$/ { inside = 1; next } /^```$/ { inside = 0 } inside' "$source/docs/plugins.md" >"$HOME/commands"
[[ $(wc -l <"$HOME/commands") -gt 50 ]] || { echo "the manual has lost its commands"; exit 1; }
if [[ -e $from/CMakeCache.txt ]]; then
	# The commands name build/release.
	mkdir -p "$HOME/tree/build"
	ln -s "$from" "$HOME/tree/build/release"
	cd "$HOME/tree"
else
	apt-get update
	sed -n 's/^    apt install/apt-get install --yes/p' "$source/docs/plugins.md" | (cd "$from" && bash -euo pipefail -x)
	ln -s /usr "$HOME/vexlo"
	sed -i '/^cmake --install /d; s/ CMAKE_PREFIX_PATH=.*//' "$HOME/commands"
fi

# No person presses keys: run without a screen. --watch needs a real screen, so it gets a terminal and a time limit.
mkdir "$HOME/bin"
cat >"$HOME/bin/deskhost" <<END
#!/bin/bash
export -n DISPLAY WAYLAND_DISPLAY
if [[ " \$* " == *" --watch "* ]]; then
	TERM=xterm script --quiet --return --command "timeout --foreground -s INT 3 $HOME/vexlo/bin/deskhost \$*" /dev/null ||
		[[ \$? == 124 ]]
else
	exec "$HOME/vexlo/bin/deskhost" "\$@"
fi
END
chmod +x "$HOME/bin/deskhost"

sed -i 's#^export PATH="$HOME/vexlo/bin:#export PATH="$HOME/bin:$HOME/vexlo/bin:#' "$HOME/commands"
grep -q 'HOME/bin:' "$HOME/commands" || { echo "the manual no longer sets the PATH as expected"; exit 1; }

# tee shows the output even when ctest ends a test that takes too long.
bash -euo pipefail -x "$HOME/commands" 2>&1 </dev/null | tee "$HOME/output" || {
	echo "a command of docs/plugins.md fails"
	exit 1
}
# The trace has the lines that the manual shows.
grep -A 2 '^    eLabel#1 = ' "$source/docs/plugins.md" | sed -n 's/^    //p' | while read -r line; do
	grep -qxF "$line" "$HOME/hello/trace" || { echo "the trace has no line $line"; exit 1; }
done
# The manual's way to set the time works.
cat >"$HOME/clock.cpp" <<'END'
#include <toolkit.h>
#include <ctime>
extern "C" int plugin_exec()
{
	const time_t now = time(nullptr);
	eDebug("%s", ctime(&now));
	return 0;
}
END
PKG_CONFIG_PATH=$(echo "$HOME"/vexlo/lib*/*/pkgconfig)
export PKG_CONFIG_PATH
read -ra flags < <(pkg-config --cflags vexlo-toolkit)
g++ -std=c++17 -fPIC -shared "${flags[@]}" "$HOME/clock.cpp" -o "$HOME/clock.so.0"
mapfile -t options <"$HOME/hello/tests/greeting/options"
said=$("$HOME/bin/deskhost" --plugin "$HOME/clock.so.0" --screen none "${options[@]}" 2>&1)
[[ $said == *'Jan 31 '*2030* ]] ||
	{ echo 'the recipe for the time shows another time'; exit 1; }
# The manual's ways to find a crash name the line.
cat >"$HOME/twice.cpp" <<'END'
#include <toolkit.h>
extern "C" int plugin_exec()
{
	eWindow *window = new eWindow(1);
	eLabel *label = new eLabel(window, 0, 0, "eLabel");
	delete window;
	delete label;
	return 0;
}
END
asan=$(sed -n 's/^asan="\(.*\)"$/\1/p' "$HOME/commands")
asan=${asan/'$(g++ -print-file-name=libasan.so)'/$(g++ -print-file-name=libasan.so)}
crash() # WHAT OPTIONS [THROUGH]: compiler options and --through; the report has WHAT and the line
{
	g++ -std=c++17 -g -fPIC -shared "${flags[@]}" $2 "$HOME/twice.cpp" -o "$HOME/twice.so.0"
	said=$("$HOME/bin/deskhost" --plugin "$HOME/twice.so.0" --screen none ${3:+--through "$3"} 2>&1) || :
	[[ $said == *$1*twice.cpp:7* || $said == *twice.cpp:7*$1* ]] || { echo "no '$1' in: $said"; exit 1; }
}
crash 'or deleted eLabel#1 after its end' ''
crash heap-use-after-free -fsanitize=address "$asan"
crash 'Invalid read' '' 'valgrind -q'
grep -q '100% tests passed, 0 tests failed out of 1' "$HOME/output" || { echo "the manual's test did not run"; exit 1; }
grep -qi 'guten abend' "$HOME/hello/dump" || { echo "the manual's plugin does not speak German"; exit 1; }
echo 'every command works'
