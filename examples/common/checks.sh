# Sourced by the tests of the examples, which set `program` to what they test. Gives them a directory `work` and the
# checks below; `finish` ends the test. Where a program takes its output directory without an option, they empty
# `outputOption` afterwards.
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0
outputOption=(--out)
programName=$(basename "$program")

fail() {
    echo "FAILED: $*" >&2
    failures=$((failures + 1))
}

# expectFailure WHAT STATUS ARGUMENTS...: the status, one line on standard error, nothing on standard output,
# no files.
expectFailure() {
    local what=$1 status=$2 actual=0
    shift 2
    "$program" "${outputOption[@]}" "$work/none" "$@" >"$work/stdout" 2>"$work/stderr" || actual=$?
    [ "$actual" -eq "$status" ] || fail "$what: status $actual, expected $status"
    [ "$(wc -l <"$work/stderr")" -eq 1 ] || fail "$what: not one line: $(cat "$work/stderr")"
    grep -q "^$programName: ." "$work/stderr" || fail "$what: says $(cat "$work/stderr")"
    [ ! -s "$work/stdout" ] || fail "$what: writes to standard output"
    [ ! -e "$work/none" ] || fail "$what: leaves files"
    echo "$what: $(sed "s|$work/||" "$work/stderr")"
}

expectNoOutputBelowAFile() {
    touch "$work/plain"
    expectFailure "output below a file" 1 --out "$work/plain/below" "$@"
}

# pictureSize FILE: width and height of a PNG.
pictureSize() {
    od -An -v -tu1 -w4 -j 16 -N 8 "$1" |
        awk '{ size[NR] = (($1 * 256 + $2) * 256 + $3) * 256 + $4 } END { print size[1], size[2] }'
}

# holds CONDITION: whether an awk expression is true.
holds() { awk "BEGIN { exit !($1) }"; }

finish() {
    if [ "$failures" -gt 0 ]; then
        echo "$failures checks failed" >&2
        exit 1
    fi
    echo "all checks passed"
}
