#!/usr/bin/env bash
# Checks the gallery program from outside: that it writes its pictures and the page, the same bits every time,
# and that bad input ends with one line and a failure status.
#
#     test.sh GALLERY_PROGRAM
set -euo pipefail

gallery=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail() {
    echo "FAILED: $*" >&2
    exit 1
}

"$gallery" "$work/first"
"$gallery" "$work/second"
diff -r "$work/first" "$work/second" || fail "two runs differ"
[ -s "$work/first/index.html" ] || fail "no page"
grep -o 'src="[^"]*"' "$work/first/index.html" | sed 's/src="//; s/"//' >"$work/pictures"
[ "$(wc -l <"$work/pictures")" -eq "$(find "$work/first" -name '*.png' | wc -l)" ] || fail "pictures and page differ"
while read -r picture; do
    [ "$(head -c 4 "$work/first/$picture" | tail -c 3)" = PNG ] || fail "$picture is not a PNG"
done <"$work/pictures"

touch "$work/file"
status=0
"$gallery" "$work/file/below" 2>"$work/stderr" || status=$?
[ "$status" -eq 1 ] || fail "output below a file: status $status"
[ "$(wc -l <"$work/stderr")" -eq 1 ] || fail "output below a file: not one line"
status=0
"$gallery" a b 2>"$work/stderr" || status=$?
[ "$status" -eq 2 ] || fail "two directories: status $status"
echo "all checks passed"
