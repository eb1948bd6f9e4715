#!/bin/bash
# Installs into a folder and runs what is there; makes the receiver's archive and looks into it.
# Arguments: cmake, the build folder.
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
zcat "$place/usr/share/man/man1/deskhost.1.gz" >"$place/page"
head -n 1 "$place/page" | grep -q " \"20[0-9-]*\" \"$version\" " ||
	fail "the manual page is of another version than $version, or has no date"

find "$place/usr/share/doc" -name '*.md' | while IFS= read -r page; do
	{ grep -o '](\([^)#]*\)' "$page" || :; } | sed 's/^](//' | { grep -v '^http' || :; } | while IFS= read -r link; do
		[[ -e ${page%/*}/$link ]] || fail "${page##*/} leads to $link, which is not installed"
	done
done

mkdir "$place/test"
echo exit >"$place/test/keys"
said=$("$place/usr/bin/golden-test" --approve "$place/test" 2>&1) && fail "any plugin is approved"
[[ $said == *'name the plugin to test with --plugin' ]] || fail "golden-test does not ask for the plugin: $said"

for command in check-host deskhost-new golden-test; do
	"$place/usr/bin/$command" --help | grep "^usage: $command" >/dev/null || fail "$command is not on the PATH"
	[[ -s $place/usr/share/man/man1/$command.1.gz ]] || fail "$command has no manual page"
done

"$1" --build "$2" --target receiver-archive >"$place/log" 2>&1 || { cat "$place/log"; exit 1; }
tar tzf "$(tail -n 1 "$place/log" | grep -o '/.*tar.gz' || ls "$2"/vexlomenu-*.tar.gz)" >"$place/contents"
grep -qx vexlomenu.so.0 "$place/contents" || fail "the archive lacks the plugin"
[[ $(grep -c '^locale/[a-z]*/LC_MESSAGES/vexlomenu.mo$' "$place/contents") == 9 ]] || fail "the archive lacks catalogues"
[[ $(grep -vc '/$' "$place/contents") == 12 ]] || fail "the archive has more than the plugin, its catalogues and papers"
echo "installed, archived"
