#!/bin/sh
# Compiles the plugin's screens against toolkits that differ in what the contract leaves open. Each must compile
# unchanged, or with the change that docs/porting.md gives. Arguments: a C++ compiler, the source folder.
set -eu
cd "$2"
compiler=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fails=0
try() # WHAT, then pairs of the place of a change (gui, toolkit or src) and a sed expression
{
	what=$1
	shift
	rm -rf "$work/include" "$work/src"
	cp -r tests/vendor/include src "$work"
	while [ $# -gt 1 ]; do
		case $1 in
		gui) file=$work/include/gui/gui.h ;;
		toolkit) file=$work/include/toolkit.h ;;
		*) file=$work/$1 ;;
		esac
		cp "$file" "$work/before"
		sed -i "$2" "$file"
		! cmp -s "$file" "$work/before" || { echo "$what: nothing changed in $1"; fails=1; }
		shift 2
	done
	for source in "$work"/src/*.cpp; do
		echo "#include \"$source\""
	done >"$work/all.cpp"
	"$compiler" -std=c++98 -pedantic-errors -Wno-long-long -Wall -Wextra -Werror -fsyntax-only -I"$work/src" \
		-I"$work/src/readers" -I"$work/src/translation" -isystem "$work/include" \
		-isystem tests/vendor/sigc1/include/sigc++-1.2 -isystem tests/vendor/sigc1/lib/sigc++-1.2/include "$work/all.cpp" \
		2>"$work/said" || { echo "$what does not compile:"; head -n 20 "$work/said"; fails=1; }
}

# The document's class for a protected key.
awk '/^ +struct OurKey/ { inside = 1 } inside && /^$/ { exit } inside' docs/porting.md >"$work/key"
grep -q '#define VEXLO_ENTRY_KEY' "$work/key" || { echo 'docs/porting.md has no key of its own'; fails=1; }

accept='^	void accept();'
try 'an accept that is one of several' gui "s/$accept/	void accept();\n	int accept(int);/"
try 'a protected accept' gui "s/$accept/protected:\n	void accept();\npublic:/"
try 'an accept with a result' gui "s/$accept/	int accept();/" \
	src/sysinf.cpp 's/static_cast<void (eWidget::\*)()>(&eSysInfDialog::accept)/\&eSysInfDialog::exit/'
try 'a reject with a result' gui 's/^	void reject();/	int reject();/'
try 'a sprintf that returns a copy' gui 's/eString &sprintf(/eString sprintf(/'
try 'a sprintf that returns what is constant' gui 's/eString &sprintf(/const eString \&sprintf(/'
try 'a sprintf of a constant format' gui 's/sprintf(char \*/sprintf(const char */'
try 'a skin by reference' gui 's/static eSkin \*getActive/static eSkin \&getActive/'
try 'a constant skin' gui 's/static eSkin \*getActive/static const eSkin *getActive/'
try 'an eString that is only made on purpose' gui 's/eString(const char \*text)/explicit eString(const char *text)/'
try 'a key that is protected' gui '/const void \*data() const/d' \
	toolkit "/^#define VEXLO_ENTRY_KEY/{
		r $work/key
		d
	}"
try 'a help that must be given' gui 's/const char \*label = 0, void \*key = 0,/const char *label, void *key,/' \
	gui 's/^	                  const eString &help = eString())/	                  const eString \&help)/' \
	src/widgets.cpp 's/new eString(key))/new eString(key), eString())/'

# The document contains these changes.
for words in '&eSysInfDialog::exit' 'new eString(key), eString()'; do
	grep -qF -- "$words" docs/porting.md || { echo "docs/porting.md has no: $words"; fails=1; }
done
exit $fails
