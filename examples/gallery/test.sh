#!/usr/bin/env bash
# Checks the gallery program from outside: that it writes its pictures and the page, the same bits every time, with a
# photograph too, and that bad input ends with one line on standard error, a failure status and no output.
#
#     test.sh GALLERY_PROGRAM [PICTURE...]
#
# Pictures of the caller's own are shown too.
set -euo pipefail

program=$1
shift
source "$(dirname "${BASH_SOURCE[0]}")/../common/checks.sh"
outputOption=()

# Every picture by name and size: columns and rows times zoom, and one more for the last grid line.
cat >"$work/expected" <<'END'
lines.png 657 657
there_and_back.png 657 273
clipped_pixels.png 657 465
clipped_segments.png 657 465
arrows.png 657 657
ellipses_in_rectangles.png 869 617
ellipses_around_origin.png 883 575
tilted_ellipses.png 925 617
directions.png 889 453
fitted_lines.png 855 575
mean_directions.png 925 493
fitted_plane.png 855 631
repairs.png 925 617
split.png 897 421
decomposition.png 869 421
reduction.png 931 311
convex_hulls.png 897 449
polynomials.png 855 575
correlation.png 925 613
zero_crossings.png 949 421
smoothing.png 939 582
windows.png 939 659
mean_envelope.png 939 561
deconvolution.png 939 561
intensity_curves.png 939 540
stretched_image.png 903 705
perimeters.png 911 601
zooms.png 921 849
limits.png 949 403
volumes.png 935 705
discs.png 913 541
peaks.png 977 625
triangulation.png 929 491
surfaces.png 957 463
vertices_in_rectangle.png 941 361
voronoi_maps.png 943 449
END
# expectGallery NAME FOLDER: a page with every picture, in order and by size, none in the place of another one.
expectGallery() {
    local name=$1 folder=$2 picture
    grep -o 'src="[^"]*"' "$folder/index.html" | sed 's/src="//; s/"//' >"$work/pictures"
    while read -r picture; do
        [ "$(head -c 4 "$folder/$picture" | tail -c 3)" = PNG ] || fail "$name: $picture is not a PNG"
        echo "$picture $(pictureSize "$folder/$picture")"
    done <"$work/pictures" >"$work/found"
    diff "$work/expected" "$work/found" || fail "$name: names, order or sizes of the pictures"
    [ "$(find "$folder" -type f | wc -l)" -eq "$(($(wc -l <"$work/pictures") + 1))" ] ||
        fail "$name: other files than these"
    [ -z "$(cksum "$folder"/*.png | cut -d ' ' -f 1,2 | sort | uniq -d)" ] || fail "$name: two pictures are the same"
}

# expectPhotograph NAME FOLDER: the drawn gallery but for the two pictures of a photograph, and their texts tell.
expectPhotograph() {
    local name=$1 folder=$2 picture
    expectGallery "$name" "$folder"
    while read -r picture _; do
        case $picture in
            zooms.png | limits.png)
                ! cmp -s "$work/first/$picture" "$folder/$picture" || fail "$name: $picture shows the drawn scene"
                ;;
            *) cmp "$work/first/$picture" "$folder/$picture" || fail "$name: $picture shows something else" ;;
        esac
    done <"$work/expected"
    [ "$(grep -c 'figcaption>.* photograph' "$folder/index.html")" -eq 2 ] || fail "$name: texts of the photograph"
}

"$program" "$work/first"
expectGallery "drawn scene" "$work/first"
! grep -q photograph "$work/first/index.html" || fail "the drawn scene is called a photograph"
"$program" "$work/second"
diff -r "$work/first" "$work/second" || fail "two runs differ"

# A coloured picture, wider than a scene's shape; and one that is as high as it is wide.
"$program" "$work/zooms" --picture "$work/first/limits.png"
expectPhotograph "picture from a file" "$work/zooms"
"$program" --picture "$work/first/lines.png" "$work/lines"
expectPhotograph "square picture" "$work/lines"
cmp -s "$work/zooms/zooms.png" "$work/lines/zooms.png" && fail "two photographs look the same"
"$program" "$work/again" --picture "$work/first/lines.png"
diff -r "$work/lines" "$work/again" || fail "two runs with a photograph differ"

for picture in "$@"; do
    "$program" "$work/own" --picture "$picture"
    expectPhotograph "$(basename "$picture")" "$work/own"
done

# Each picture is explained by the function that it shows.
for name in matGetBresenhamLine CMatBresenhamLine matClipLine2L matClipLine2D matComputeArrow matCalcEllipse \
    matSavitzkyGolay matMeanValue matFFTSmooth matFFT matWindowFFT matMapFFTData matMeanEnvelope \
    matDeconvolution matInterpolateIntensityCurve matHorzStretchImage miniCalcInnerPerimeter \
    miniCalcOuterPerimeter \
    matGetEllipse polyGetRotatedEllipse polyGetArbitraryEllipse CMatNormalEncoder CMatRegressionLine \
    CMatRobustLineFit CMatMomentOfAnglesEvaluator matRegressionPlane polyMakeSimple polyRemoveStings \
    polySeperateTouchingSegments polySplit polyDecompose polyReducePointsEx polyConvexHull matPolynomFit \
    matPolynomEval fnrInitCorrelation fnrDoCorrelation fnrFindZeroPoint matZoomArray2v matZoomArrayROI2v \
    matTransformArray2v matGetRangeOfArray2v matClampArray2v matMapArrayToROI2v matAffinTransformArray3v \
    matGaussianBlurFilter3v matAllocCircularShape2w matFindGlobalPeak2w matExtentDelaunay2D matDrawDelaunay2D \
    matFindPositionInDelaunay2DEx matEnumDelaunayPositionsInRect matFindPositionInDelaunay2D \
    matComputeVoronoiMap2D matGetIDFromNeighborInVoronoiMap2D; do
    grep -q "figcaption>.*$name" "$work/first/index.html" || fail "the page does not name $name"
done

picture=$work/first/lines.png
expectFailure "missing file" 1 --picture "$work/missing.png"
expectFailure "not a PNG" 1 --picture "$work/first/index.html"
head -c 3000 "$picture" >"$work/cut.png"
expectFailure "file cut short" 1 --picture "$work/cut.png"
# White squares of 8 x 8 and of 400 x 400 pixels.
base64 -d >"$work/small.png" <<'END'
iVBORw0KGgoAAAANSUhEUgAAAAgAAAAIAQAAAADsdIMmAAAADElEQVR42mP4z4ACAT/QB/lnLUmhAAAAAElFTkSuQmCC
END
expectFailure "small picture" 1 --picture "$work/small.png"
base64 -d >"$work/blank.png" <<'END'
iVBORw0KGgoAAAANSUhEUgAAAZAAAAGQAQAAAACoxAthAAAAVklEQVR42u3LMQ0AAAwDoPo33WrYu8BPehZFURRFURRFURRFURRFURRFURRFURRFURRFURRFURRFURRFURRFURRFURRFURRFURRFURRFURRFURRF+V4GPNjWZIcwu64AAAAASUVORK5CYII=
END
expectFailure "nothing to see" 1 --picture "$work/blank.png"
expectFailure "unknown option" 2 --frobnicate
expectFailure "option without value" 2 --picture
expectFailure "two pictures" 2 --picture "$picture" --picture "$picture"
expectFailure "two directories" 2 b
expectFailure "empty name of a picture" 2 --picture ""
touch "$work/plain"
status=0
"$program" "$work/plain/below" 2>"$work/stderr" || status=$?
[ "$status" -eq 1 ] || fail "output below a file: status $status"
[ "$(wc -l <"$work/stderr")" -eq 1 ] || fail "output below a file: not one line"
finish
