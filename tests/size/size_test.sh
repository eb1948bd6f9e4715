#!/bin/sh
# Checks the size of a receiver's plugin. Arguments: the plugin, strip, size, the limits of the stripped file and of
# its text, in bytes.
set -eu

stripped=$(mktemp)
trap 'rm -f "$stripped"' EXIT
"$2" -o "$stripped" "$1"
bytes=$(wc -c <"$stripped")
text=$("$3" "$stripped" | awk 'NR == 2 { print $1 }')

status=0
check()
{
	echo "$1: $2 bytes, limit $3"
	[ "$2" -le "$3" ] || { echo "$1 is too large; ./bench spent tells what its bytes are"; status=1; }
}
check 'the stripped file' "$bytes" "$4"
# All loaded, read-only bytes, including the loader's tables.
check 'its text' "$text" "$5"
exit $status
