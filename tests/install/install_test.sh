#!/bin/bash
# Installs into a folder and runs the programs there; checks the receiver's archive. Arguments: cmake, the build
# folder.
set -euo pipefail

place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT
fail()
{
	echo "$1"
	exit 1
}

"$1" --install "$2" --prefix "$place/usr" >"$place/log" 2>&1 || { cat "$place/log"; exit 1; }
cp -R "$place/usr/share/deskhost/samples/receiver" "$place/receiver"
said=$("$place/usr/bin/deskhost" --screen none --root "$place/receiver" --lang de --keys "ok exit 4" \
	--dump "$place/dump" --pictures "$place/pictures" 2>&1) || fail "the installed deskhost fails: $said"
grep -q '"class":"ePsDialog"' "$place/dump" || fail "the installed plugin shows no processes"
grep -q '"title":"Vexlo service menu"' "$place/dump" && fail "the installed catalogues are not found"
grep -q '/dev/root' "$place/dump" || fail "the installed sample has no commands"
[[ -s $place/pictures/02-exit.png ]] || fail "the installed skin draws nothing"
version=$("$place/usr/bin/deskhost" --version)
# The manual and the manual page list exactly the program's options.
options=$("$place/usr/bin/deskhost" --help | grep -o '^ *\(-h,\)\?--[a-z-]*' | grep -o -- '--.*')
in_manual=$(grep '^| `--' "$place/usr/share/doc/deskhost/deskhost.md" | cut -d '|' -f 2 | grep -o '`--[a-z-]*' | tr -d '`')
[[ $(sort <<<"$options") == "$(sort <<<"$in_manual"$'\n--help\n--version')" ]] ||
	fail "the manual has these options: $in_manual; the program has these: $options"
zcat "$place/usr/share/man/man1/deskhost.1.gz" >"$place/page"
head -n 3 "$place/page" | grep -q "^.TH DESKHOST \"1\" \"[A-Z][a-z]* 20[0-9]*\" \"$version\" " ||
	fail "the manual page is of another version than $version, or has no date"
sed -i 's/\\-/-/g; s/\\f[BIR]//g' "$place/page"
for option in $options; do
	grep -q -- "^\(-h,\)\?$option" "$place/page" || fail "the manual page lacks $option"
done

find "$place/usr/share/doc" -name '*.md' | while IFS= read -r page; do
	{ grep -o '](\([^)#]*\)' "$page" || :; } | sed 's/^](//' | { grep -v '^http' || :; } | while IFS= read -r link; do
		[[ -e ${page%/*}/$link ]] || fail "${page##*/} leads to $link, which is not installed"
	done
done

# Documents that name files of the source tree must say so.
find "$place/usr/share/doc" -name '*.md' | while IFS= read -r page; do
	! grep -qE '\./(run|test|bench)\b|`(tools|tests|desk|src|samples|cmake|receiver)/' "$page" ||
		grep -qiE 'those of the source tree|in a source tree' "$page" || fail "${page##*/} names what is not installed"
done
[[ $("$place/usr/bin/check-host" --help) != *tools/* ]] || fail 'check-host names what is not installed'

# completed WORD...: completes the last word as bash does.
completed()
{
	bash -c '. "$0"; COMP_WORDS=("$@") COMP_CWORD=$(($# - 1)); _deskhost; printf "%s\n" "${COMPREPLY[@]}"' \
		"$place/usr/share/bash-completion/completions/deskhost" "$place/usr/bin/deskhost" "$@"
}
[[ $(completed --d | xargs) == '--dump --debug' ]] || fail "completion of --d: $(completed --d)"
for option in $options; do
	completed "$option" | grep -qxF -- "$option" || fail "completion does not know $option"
done
[[ $(completed --screen t) == terminal && $(completed --lang f) == fr ]] || fail 'completion knows no values'
languages=$(completed --lang '' | sort | xargs)
[[ $languages == "$("$place/usr/bin/deskhost" --screen none --lang tlh 2>&1 | sed 's/.*--lang knows: \([^;]*\);.*/\1/')" ]] ||
	fail "completion knows the languages $languages"
grep -qx 'Icon=deskhost' "$place/usr/share/applications/deskhost.desktop" &&
	[[ -s $place/usr/share/icons/hicolor/scalable/apps/deskhost.svg ]] || fail 'the desktop has no entry, or no icon'
grep -q 'plugin_exec' "$place/usr/share/doc/libvexlo-toolkit-dev/html/index.html" &&
	grep -q 'href="../docs/plugins.md"' "$place/usr/share/doc/libvexlo-toolkit-dev/html/index.html" ||
	fail 'the reference has no start page'

mkdir "$place/test"
echo exit >"$place/test/keys"
said=$("$place/usr/bin/golden-test" --approve "$place/test" 2>&1) && fail "any plugin is approved"
[[ $said == *'name the plugin to test with --plugin' ]] || fail "golden-test does not ask for the plugin: $said"

for command in check-host deskhost-new golden-test; do
	"$place/usr/bin/$command" --help | grep "^Usage: $command" >/dev/null || fail "$command is not on the PATH"
	[[ -s $place/usr/share/man/man1/$command.1.gz ]] || fail "$command has no manual page"
done
offered() # COMMAND WORD
{
	bash -c '. "$0"; _vexlo_toolkit "$@"; echo "${COMPREPLY[*]}"' "$place/usr/share/bash-completion/completions/$1" \
		"$place/usr/bin/$1" "$2"
}
[[ $(offered golden-test --a) == --approve && $(offered check-host --t) == --tables ]] || fail 'completion knows no commands'

"$1" --build "$2" --target receiver-archive >"$place/log" 2>&1 || { cat "$place/log"; exit 1; }
tar tzf "$(tail -n 1 "$place/log" | grep -o '/.*tar.gz' || ls "$2"/vexlomenu-*.tar.gz)" >"$place/contents"
grep -qx vexlomenu.so.0 "$place/contents" || fail "the archive lacks the plugin"
[[ $(grep -c '^locale/[a-z]*/LC_MESSAGES/vexlomenu.mo$' "$place/contents") == 9 ]] || fail "the archive lacks catalogues"
[[ $(grep -vc '/$' "$place/contents") == 12 ]] || fail "the archive has more than the plugin, its catalogues and papers"
echo "installed, archived"
