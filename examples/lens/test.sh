#!/usr/bin/env bash
# Checks the lens program from outside: what each model leaves, the pictures and tables, the same bits every time, and
# that bad input ends with one line on standard error, a failure status and no output.
#
#     test.sh LENS_PROGRAM
set -euo pipefail

program=$1
source "$(dirname "${BASH_SOURCE[0]}")/../common/checks.sh"
# expectModel MODEL TERMS CONDITION: a line of the table by an awk condition over rms, largest (at the dots),
# rmsBetween and largestBetween.
expectModel() {
    local model=$1 terms=$2 condition=$3
    awk -F, -v model="$model" -v terms="$terms" '$1 == model {
            rms = $3; largest = $4; rmsBetween = $5; largestBetween = $6
            if ($2 == terms && '"$condition"') found = 1
        } END { exit !found }' "$work/first/models.csv" ||
        fail "model $model: $(grep "^$model," "$work/first/models.csv")"
}

"$program" --out "$work/first" >"$work/stdout"
"$program" --out "$work/second" >"$work/stdout"
diff -r "$work/first" "$work/second" || fail "two runs differ"
[ "$(find "$work/first" -type f | wc -l)" -eq 6 ] || fail "not six files"
for file in dots.png residuals.svg boards.png models.csv dots.csv; do
    [ -s "$work/first/$file" ] || fail "no $file"
    grep -q "\"$file\"" "$work/first/index.html" || fail "the page does not name $file"
done

# The lens bends by tens of pixels; powers of the radius alone take little of that away. The third power takes
# most, mixed terms the rest, down to the error of the dots themselves (0.03 pixels; less between them).
[ "$(wc -l <"$work/first/models.csv")" -eq 9 ] || fail "not eight models"
expectModel 2 5 'rms > 5 && rms < 9'
expectModel 3 6 'rms > 5 && rms < 9'
expectModel 4 7 'rms > 5 && rms < 9'
expectModel 5 10 'rms > 0.8 && rms < 1.5'
expectModel 6 9 'rms > 0.8 && rms < 1.5'
expectModel 7 17 'rms > 0.2 && rms < 0.4'
expectModel 8 24 'rms < 0.04 && rmsBetween < 0.025 && largest < 0.2'
expectModel 9 21 'rms < 0.04 && rmsBetween < 0.025 && largest < 0.2'
# More terms never fit worse: those of 2 are among those of 3, those of 3 in 4, of 6 in 5 and in 9.
awk -F, '{ rms[$1] = $3 } END { exit !(rms[3] <= rms[2] && rms[4] <= rms[3] && rms[5] <= rms[6] && rms[9] <= rms[6]) }' \
    "$work/first/models.csv" || fail "more terms fit worse"

# Dots: as many as the page says, found within the picture.
dots=$(($(wc -l <"$work/first/dots.csv") - 1))
grep -q "$dots dots were found" "$work/first/index.html" || fail "number of dots"
[ "$dots" -gt 700 ] || fail "only $dots dots"
awk -F, 'NR > 1 && !($3 > 15 && $3 < 1584 && $4 > 15 && $4 < 1184) { exit 1 }' "$work/first/dots.csv" ||
    fail "dots outside of the picture"

expectSize() { # FILE WIDTH HEIGHT
    local found
    found=$(pictureSize "$work/first/$1")
    [ "$found" = "$2 $3" ] || fail "$1 is $found"
}
expectSize dots.png 1600 1200
expectSize boards.png 1616 600
# A panel for each model, with all dots in it.
[ "$(grep -c '<text' "$work/first/residuals.svg")" -eq 8 ] || fail "not eight panels"
[ "$(grep -o 'h0' "$work/first/residuals.svg" | wc -l)" -eq $((8 * dots)) ] || fail "not all dots in the panels"
grep -qE 'nan|inf' "$work/first/residuals.svg" "$work/first/models.csv" && fail "a number is none"

expectFailure "unknown option" 2 --frobnicate
expectFailure "picture" 2 a.png
expectFailure "option without value" 2 --out
expectNoOutputBelowAFile
"$program" --help >"$work/stdout"
grep -q '^Usage: lens' "$work/stdout" || fail "no help"

finish
