#!/bin/sh
# Takes one name after another out of a vendor's toolkit: each must give one error, which names it
# and the document that explains it. Arguments: a C++ compiler, the sources' root.
set -eu
cd "$2"
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

grep -q '^## The names$' docs/porting.md || { echo 'docs/porting.md has no "The names"'; exit 1; }

compile()
{
	"$1" -std=c++11 -Wall -Wextra -Wfatal-errors -fsyntax-only -Isrc -Isrc/readers -Isrc/translation \
		-isystem tests/vendor/sigc1/include -isystem tests/vendor/sigc1/lib/include \
		-isystem "$folder/include" src/meminfo.cpp
}
fails=0
without() # NAME in the message, sed expression that takes it out
{
	rm -rf "$folder/include"
	cp -r tests/vendor/include "$folder"
	sed -i "$2" "$folder"/include/toolkit.h "$folder"/include/gui/gui.h
	if LC_ALL=C compile "$compiler" 2>"$folder/said"; then
		echo "nothing is said of $1"
	elif [ "$(grep -c 'error:' "$folder/said")" -ne 1 ] || ! grep 'error:' "$folder/said" | grep -qF -- "$1 " ||
		! grep 'error:' "$folder/said" | grep -qF 'docs/porting.md'; then
		echo "of $1 it is said:"
		cat "$folder/said"
	else
		return 0
	fi
	fails=$((fails + 1))
}
compiler=$1
compile_whole=$(cp -r tests/vendor/include "$folder" && compile "$compiler" 2>&1) || { echo "$compile_whole"; exit 1; }

for class in eSetupWindow eMessageBox eSkin eButton eListBoxEntryMenu; do
	without "$class" "s/\b$class\b/other_$class/g"
done
for operation in eWidget::setText eWidget::cmove eWidget::cresize eWidget::move eWidget::resize eWidget::show \
	eWidget::hide eWidget::exec eWidget::accept eWidget::reject eWidget::setFocus eWidget::setShortcut \
	eLabel::setShortcutPixmap eDecoWidget::loadDeco eListBoxBase::setFlags \
	eListBoxEntryText::getEntryHeight eSkin::getActive eSkin::queryValue eString::sprintf; do
	without "$operation" "s/\b${operation#*::}\b/other/g"
done
without eButton::selected 's/\bselected\b/other/g'
for name in VEXLO_CLIENT_HEIGHT VEXLO_MENU_LIST VEXLO_ENTRY_KEY; do
	without "$name" "/define $name/d"
done
[ "$fails" -eq 0 ]
