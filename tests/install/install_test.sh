#!/bin/sh
# Installs into a folder and runs what is there; makes the Debian package and the receiver's archive and
# looks into them. Arguments: cmake, cpack, the build folder.
set -eu

place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT
fail()
{
	echo "$1"
	exit 1
}

"$1" --install "$3" --prefix "$place/usr" >"$place/log" 2>&1 || { cat "$place/log"; exit 1; }
cp -R "$place/usr/share/deskhost/samples/receiver" "$place/receiver"
said=$("$place/usr/bin/deskhost" --screen none --root "$place/receiver" --lang de --keys "ok exit 4" \
	--dump "$place/dump" --pictures "$place/pictures" 2>&1) || fail "the installed deskhost fails: $said"
grep -q '"class":"ePsDialog"' "$place/dump" || fail "the installed plugin shows no processes"
grep -q '"title":"Vexlo service menu"' "$place/dump" && fail "the installed catalogues are not found"
grep -q '/dev/root' "$place/dump" || fail "the installed sample has no commands"
[ -s "$place/pictures/02-exit.png" ] || fail "the installed skin draws nothing"
version=$("$place/usr/bin/deskhost" --version)
head -n 1 "$place/usr/share/man/man1/deskhost.1" | grep -q " \"20[0-9-]*\" \"$version\" " ||
	fail "the manual page is of another version than $version, or has no date"

"$2" --config "$3/CPackConfig.cmake" -B "$place/packages" >"$place/log" 2>&1 || { cat "$place/log"; exit 1; }
package=$(echo "$place"/packages/*.deb)
dpkg-deb --contents "$package" >"$place/contents"
for file in ./usr/bin/deskhost vexlomenu/vexlomenu.so.0 ./usr/share/deskhost/skins/default.toml \
	./usr/share/locale/ar/LC_MESSAGES/vexlomenu.mo ./usr/share/man/man1/deskhost.1 \
	./usr/share/doc/deskhost/copyright ./usr/share/deskhost/samples/receiver/bin/ps; do
	grep -q "$file" "$place/contents" || fail "the package lacks $file"
done
dpkg-deb --field "$package" Depends | grep -q 'fonts-dejavu-core' || fail "the package needs no font"
dpkg-deb --field "$package" Depends | grep -q 'libsdl2' || fail "the package does not name its libraries"

"$1" --build "$3" --target receiver-archive >"$place/log" 2>&1 || { cat "$place/log"; exit 1; }
tar tzf "$(tail -n 1 "$place/log" | grep -o '/.*tar.gz' || ls "$3"/vexlomenu-*.tar.gz)" >"$place/contents"
grep -qx vexlomenu.so.0 "$place/contents" || fail "the archive lacks the plugin"
[ "$(grep -c '^locale/[a-z]*/LC_MESSAGES/vexlomenu.mo$' "$place/contents")" -eq 9 ] || fail "the archive lacks catalogues"
[ "$(grep -vc '/$' "$place/contents")" -eq 12 ] || fail "the archive has more than the plugin, its catalogues and papers"
echo "installed, packaged, archived"
