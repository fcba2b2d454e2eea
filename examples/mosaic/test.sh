#!/usr/bin/env bash
# Checks the mosaic program from outside: how exactly it finds the places of the tiles, its pictures and tables, the
# same bits every time, and that bad input ends with one line on standard error, a failure status and no output.
#
#     test.sh MOSAIC_PROGRAM [PICTURE...]
#
# Pictures of the caller's own are aligned too.
set -euo pipefail

program=$1
shift
source "$(dirname "${BASH_SOURCE[0]}")/../common/checks.sh"
# largest FILE COLUMN: the largest number in a column of a table.
largest() {
    awk -F, -v name="$2" 'NR == 1 { for (i = 1; i <= NF; ++i) if ($i == name) column = i; next }
        $column + 0 > most { most = $column + 0 } END { print most + 0 }' "$1"
}

# expectAligned NAME FOLDER LIMIT: whole tables, every tile at most LIMIT pixels off, the stage further than that.
expectAligned() {
    local name=$1 folder=$2 limit=$3 aligned stage
    [ "$(wc -l <"$folder/tiles.csv")" -eq 21 ] || fail "$name: not 20 tiles"
    [ "$(wc -l <"$folder/pairs.csv")" -eq 32 ] || fail "$name: not 31 pairs"
    aligned=$(largest "$folder/tiles.csv" aligned_error)
    stage=$(largest "$folder/tiles.csv" stage_error)
    holds "$aligned < $limit" || fail "$name: a tile is $aligned pixels off"
    holds "$stage > 3" || fail "$name: the stage is only $stage pixels off"
    echo "$name: $stage pixels off by the stage, $aligned aligned"
}

# The drawn picture has details everywhere.
"$program" --out "$work/drawn" >"$work/stdout"
expectAligned "drawn picture" "$work/drawn" 0.1
[ "$(grep -c ',yes$' "$work/drawn/pairs.csv")" -eq 31 ] || fail "drawn picture: not all pairs are measured"
# What is wrong correlates less than what is right.
awk -F, 'NR > 1 && !($7 <= $8 + 0.01 && $8 > 0.9) { exit 1 }' "$work/drawn/pairs.csv" || fail "correlations"
# Residuals are much smaller than the corrections were.
holds "$(largest "$work/drawn/pairs.csv" residual_x) < 0.3" || fail "residuals along x"
holds "$(largest "$work/drawn/pairs.csv" residual_y) < 0.3" || fail "residuals along y"

# The page names every picture and table; pictures have the size of what they show.
for file in tiles.png before.png after.png details.png errors.png residuals.png tiles.csv pairs.csv; do
    [ -s "$work/drawn/$file" ] || fail "no $file"
    grep -q "\"$file\"" "$work/drawn/index.html" || fail "the page does not name $file"
done
[ "$(find "$work/drawn" -type f | wc -l)" -eq 9 ] || fail "other files than these"
after=$(pictureSize "$work/drawn/after.png")
for file in before.png errors.png residuals.png; do
    [ "$(pictureSize "$work/drawn/$file")" = "$after" ] || fail "$file is not as large as after.png"
done
[ "$(pictureSize "$work/drawn/details.png")" = "1260 840" ] || fail "details.png is $(pictureSize "$work/drawn/details.png")"
# Twice the 480 x 360 pixels that the picture has, a little more for what the stage gets wrong.
read -r width height <<<"$after"
holds "$width > 930 && $width < 1000 && $height > 690 && $height < 750" || fail "after.png is $after"
cmp -s "$work/drawn/before.png" "$work/drawn/after.png" && fail "the alignment changes nothing"

"$program" --out "$work/again" >"$work/stdout"
diff -r "$work/drawn" "$work/again" || fail "two runs differ"

# The aligned picture is a picture again. The stage may be quite wrong, or right.
"$program" "$work/drawn/after.png" --stage-error 8 --out "$work/file" >"$work/stdout"
expectAligned "picture from a file" "$work/file" 0.2
"$program" --stage-error 0 --out "$work/right" >"$work/stdout"
holds "$(largest "$work/right/tiles.csv" stage_error) == 0" || fail "a right stage is wrong"
holds "$(largest "$work/right/tiles.csv" aligned_error) < 0.1" || fail "a right stage is not kept"

for picture in "$@"; do
    "$program" "$picture" --out "$work/own" >"$work/stdout"
    expectAligned "$(basename "$picture")" "$work/own" 0.3
done

expectFailure "missing file" 1 "$work/missing.png"
expectFailure "not a PNG" 1 "$work/drawn/tiles.csv"
head -c 5000 "$work/drawn/after.png" >"$work/cut.png"
expectFailure "file cut short" 1 "$work/cut.png"
# White squares of 8 x 8 and of 400 x 400 pixels.
base64 -d >"$work/small.png" <<'END'
iVBORw0KGgoAAAANSUhEUgAAAAgAAAAIAQAAAADsdIMmAAAADElEQVR42mP4z4ACAT/QB/lnLUmhAAAAAElFTkSuQmCC
END
expectFailure "small picture" 1 "$work/small.png"
base64 -d >"$work/blank.png" <<'END'
iVBORw0KGgoAAAANSUhEUgAAAZAAAAGQAQAAAACoxAthAAAAVklEQVR42u3LMQ0AAAwDoPo33WrYu8BPehZFURRFURRFURRFURRFURRFURRFURRFURRFURRFURRFURRFURRFURRFURRFURRFURRFURRFURRFURRF+V4GPNjWZIcwu64AAAAASUVORK5CYII=
END
expectFailure "nothing to see" 1 "$work/blank.png"
expectFailure "unknown option" 2 --frobnicate
expectFailure "two pictures" 2 a.png b.png
expectFailure "bad stage error" 2 --stage-error -3
expectFailure "large stage error" 2 --stage-error 9
expectFailure "empty name" 2 ""
expectFailure "option without value" 2 --stage-error
expectNoOutputBelowAFile
finish
