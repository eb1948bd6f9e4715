#!/bin/bash
# Makes the Debian packages, checks them, and keeps them for the tests that install them. Arguments: cpack, the source
# folder, the build folder, the folder for the packages.
set -euo pipefail

source=$2 build=$3 packages=$4
fail()
{
	echo "$1"
	exit 1
}

rm -rf "$packages"
mkdir "$packages"
"$1" --config "$build/CPackConfig.cmake" -B "$packages" >"$packages/log" 2>&1 || { cat "$packages/log"; exit 1; }
rm -rf "$packages/_CPack_Packages"

# has PACKAGE FILE...: the package contains these files.
has()
{
	local package=$1 file
	shift
	dpkg-deb --contents "$packages/$package"_*.deb >"$packages/contents" || fail "there is no package $package"
	for file in "$@" "usr/share/doc/$package/copyright" "usr/share/doc/$package/changelog.Debian.gz"; do
		grep -q " \./$file\$" "$packages/contents" || fail "$package lacks $file"
	done
}
lib=usr/lib/$(dpkg-architecture -qDEB_HOST_MULTIARCH)
has vexlomenu "$lib/vexlomenu/vexlomenu.so.0" usr/share/locale/ar/LC_MESSAGES/vexlomenu.mo
has deskhost usr/bin/deskhost usr/libexec/deskhost/deskhost-plugin usr/share/deskhost/skins/default.toml usr/share/man/man1/deskhost.1.gz \
	usr/share/deskhost/samples/receiver/bin/ps
has libvexlo-toolkit-dev usr/include/vexlo-toolkit/toolkit.h "$lib/cmake/VexloToolkit/VexloToolkitConfig.cmake" \
	"$lib/pkgconfig/vexlo-toolkit.pc" usr/bin/golden-test usr/bin/deskhost-new \
	usr/bin/check-host usr/share/man/man1/check-host.1.gz \
	usr/share/doc/libvexlo-toolkit-dev/html/classeWidget.html \
	usr/share/doc/libvexlo-toolkit-dev/docs/plugins.md \
	usr/share/doc/libvexlo-toolkit-dev/examples/favourites/favourites.cpp \
	usr/share/doc/libvexlo-toolkit-dev/examples/network/network.cpp

needs() # PACKAGE WORD...
{
	local package=$1 word
	shift
	for word in "$@"; do
		dpkg-deb --field "$packages/$package"_*.deb Depends | grep -qF "$word" || fail "$package does not need $word"
	done
}
needs deskhost fonts-dejavu-core libsdl2 'vexlomenu (= ' busybox
needs vexlomenu libsigc++-3.0-0
needs libvexlo-toolkit-dev libsigc++-3.0-dev

version=$(dpkg-deb --field "$packages"/vexlomenu_*.deb Version)
newest=$(grep -m 1 '^## [0-9]' "$source/CHANGELOG.md")
[[ $version == "${newest#\#\# }-1" ]] || fail "the packages are $version, the changelog's newest is $newest"

# Version 1.0.0 was one package; the new packages replace it.
place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT
for package in vexlomenu deskhost; do
	dpkg-deb --extract "$packages/$package"_*.deb "$place/old"
done
mkdir -p "$place/old/DEBIAN" "$place/root/var/lib/dpkg"/{info,updates}
printf '%s\n' 'Package: vexlomenu' 'Version: 1.0.0-1' "Architecture: $(dpkg --print-architecture)" \
	'Maintainer: nobody <nobody@vexlomenu.invalid>' 'Description: all in one' >"$place/old/DEBIAN/control"
dpkg-deb --root-owner-group --build "$place/old" "$place/old.deb" >"$place/log"
touch "$place/root/var/lib/dpkg/status"
superuser=()
((EUID == 0)) || superuser=(unshare --map-root-user)
PATH=$PATH:/usr/sbin:/sbin
install() # PACKAGE...: unpacks them as apt does, without dependencies
{
	"${superuser[@]}" dpkg --root="$place/root" --log="$place/dpkg.log" --force-depends --force-script-chrootless \
		--auto-deconfigure --install "$@" >"$place/log" 2>&1 || { cat "$place/log"; exit 1; }
}
install "$place/old.deb"
install "$packages"/*.deb
[[ $(dpkg --root="$place/root" --search /usr/bin/deskhost) == 'deskhost: /usr/bin/deskhost' ]] ||
	fail "the package deskhost does not take over what is its own"

# The packages are not meant for Debian's archive, so they close no bug.
lintian --allow-root --fail-on error,warning --suppress-tags initial-upload-closes-no-bugs "$packages"/*.deb
echo 'three packages without a fault'
