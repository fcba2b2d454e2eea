#!/usr/bin/env bash
# Checks the outline program from outside: what it finds in the phantom, that every kind of PNG gives the same
# result, and that bad input ends with one line on standard error, a failure status and no output.
#
#     test.sh OUTLINE_PROGRAM MAKE_TEST_PNGS_PROGRAM
set -euo pipefail

program=$1
makeTestPngs=$2
source "$(dirname "${BASH_SOURCE[0]}")/../common/checks.sh"
# expectObject NAME CONDITION: exactly one line of the phantom's table fulfils an awk condition, in which the
# columns go by their names.
expectObject() {
    local name=$1 condition=$2 found
    found=$(awk -F, "NR == 1 { for (i = 1; i <= NF; ++i) column[\$i] = i; next }
        function value(key) { return \$column[key] }
        function near(key, expected, percent) {
            return value(key) > expected * (1 - percent / 100) && value(key) < expected * (1 + percent / 100)
        }
        $condition { ++n } END { print n + 0 }" "$work/phantom/measures.csv")
    [ "$found" -eq 1 ] || fail "phantom: $found objects like the $name"
}

"$makeTestPngs" "$work"

# The phantom: its objects have known areas (width of the soft edge aside), and the interpolating curve runs half
# a pixel inside of the edge. The disc has radius 40, so that the curve has radius 39.5.
"$program" --phantom --out "$work/phantom" >"$work/stdout"
for file in overlay.png outlines.svg measures.csv index.html; do
    [ -s "$work/phantom/$file" ] || fail "phantom: no $file"
done
[ "$(wc -l <"$work/phantom/measures.csv")" -eq 8 ] || fail "phantom: not seven objects"
expectObject disc 'near("pixels", 5027, 2) && near("area_interpolated", 4902, 2) &&
    near("length_interpolated", 248.2, 2) && near("length_fitted", 248.2, 2) && value("circularity") > 0.97 &&
    near("centre_x", 80, 1) && near("centre_y", 85, 1) && value("centre_inside") == "yes"'
expectObject ellipse 'near("pixels", 5655, 2) && near("centre_x", 235, 1) && near("centre_y", 85, 1)'
expectObject square 'near("pixels", 5041, 1) && near("area_raw", 4900, 1) && value("circularity") < 0.9 &&
    near("centre_x", 390, 1) && near("centre_y", 85, 1)'
expectObject ring 'near("pixels", 4967, 3) && near("area_fitted", 9331, 2) && value("position") == "around it"'
expectObject "disc in the ring" 'near("pixels", 616, 3) && value("position") == "inside it"'
expectObject crescent 'value("centre_inside") == "no" && value("circularity") < 0.6 && near("centre_y", 245, 1)'
expectObject flower 'near("pixels", 5732, 3) && near("centre_x", 390, 1) && near("centre_y", 245, 1)'

# Every kind of PNG holds the same picture.
"$program" "$work/good_grey8.png" --out "$work/good_grey8" >"$work/stdout"
for picture in "$work"/good_*.png; do
    name=$(basename "$picture" .png)
    "$program" "$picture" --out "$work/$name" >"$work/stdout"
    cmp -s "$work/good_grey8/measures.csv" "$work/$name/measures.csv" || fail "$name: measures differ from good_grey8"
done

# Objects too small for a curve are measured all the same. The smoothing dims the lone pixel and the line.
"$program" "$work/specks.png" --min-area 1 --no-flatten --out "$work/specks" >"$work/stdout" || fail "specks"

# A dark object on a bright ground, and the choice by hand.
"$program" "$work/good_grey8.png" --objects dark --out "$work/dark" >"$work/stdout" || fail "dark objects"
cmp -s "$work/dark/measures.csv" "$work/good_grey8/measures.csv" && fail "--objects dark changes nothing"

for picture in "$work"/bad_*.png "$work"/empty_*.png; do
    expectFailure "$(basename "$picture" .png)" 1 "$picture"
done
expectFailure "missing file" 1 "$work/missing.png"
expectFailure "directory" 1 "$work"
expectFailure "objects too large" 1 "$work/good_grey8.png" --min-area 900000
expectFailure "unknown option" 2 --frobnicate
expectFailure "two pictures" 2 a.png b.png
expectFailure "picture and phantom" 2 a.png --phantom
expectFailure "bad area" 2 --min-area -3
expectFailure "bad choice" 2 --objects grey
expectFailure "option without value" 2 --min-area 5 --objects

expectNoOutputBelowAFile --phantom
finish
