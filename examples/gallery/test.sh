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
big_endian_32() { # FILE OFFSET
    od -An -tu1 -j "$2" -N 4 "$1" | awk '{ print (($1 * 256 + $2) * 256 + $3) * 256 + $4 }'
}
while read -r picture; do
    echo "$picture $(big_endian_32 "$work/first/$picture" 16) $(big_endian_32 "$work/first/$picture" 20)"
done <"$work/pictures" >"$work/found"
diff "$work/expected" "$work/found" || fail "names, order or sizes of the pictures"
# No picture took the place of another one.
[ -z "$(cksum "$work"/first/*.png | cut -d ' ' -f 1,2 | sort | uniq -d)" ] || fail "two pictures are the same"
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

touch "$work/file"
status=0
"$gallery" "$work/file/below" 2>"$work/stderr" || status=$?
[ "$status" -eq 1 ] || fail "output below a file: status $status"
[ "$(wc -l <"$work/stderr")" -eq 1 ] || fail "output below a file: not one line"
status=0
"$gallery" a b 2>"$work/stderr" || status=$?
[ "$status" -eq 2 ] || fail "two directories: status $status"
echo "all checks passed"
