// Feeds arbitrary outlines, counts, indices and tolerances to the polygon and curve functions.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "fuzz/input.h"
#include "velquad/velquad.h"

namespace {

using velquad::fuzz::Input;
using velquad::fuzz::require;

void query(const std::vector<tagPOINT>& outline, const std::vector<tagPOINT>& other, Input& input) {
    const auto count = static_cast<DWORD>(outline.size());
    const auto index = input.take<DWORD>();
    const auto fraction = input.take<double>();
    const int closed = input.take<std::uint8_t>() & 1;
    const tagPOINT test{input.take<std::int16_t>() % 16, input.take<std::int16_t>() % 16};
    tagPOINT2D out{};
    double slope = 0.0;
    double intercept = 0.0;
    DWORD edge = 0;
    polyCalcPoint(outline.data(), count, closed, index, fraction, &out);
    const int inside = polyIsPointInside(outline.data(), count, &test);
    require(inside == 0 || inside == 1 || inside == -1);
    polyCalcDistance(outline.data(), count, closed, &test, 0, &out, &edge, &slope);
    require(count == 0 || edge < count);
    polyCalcLocalRegressionLine(outline.data(), count, index, input.take<std::uint8_t>(), index, &slope,
                                &intercept, &edge);
    polyCalcLocalDirection(outline.data(), count, index, input.take<std::int8_t>(), slope, intercept, closed,
                           &out);
    polyIsCCW(outline.data(), count);
    polyCalcCenterOfGravity(outline.data(), count, &out);
    polyCalcAreaExact(outline.data(), count);
    polyCalcLength(outline.data(), count, closed, 0);
    const int position = polyGetRelativePosition(outline.data(), count, closed, other.data(),
                                                 static_cast<DWORD>(other.size()), 1);
    require(position >= 0 && position <= 3);
}

void sortPositions(Input& input) {
    std::vector<tagPOLY_POSITION> positions(input.take<std::uint8_t>() % 24);
    for (tagPOLY_POSITION& position : positions) {
        position.index = input.take<std::uint8_t>() % 4;
        position.fraction = input.take<double>();
    }
    const auto count = static_cast<DWORD>(positions.size());
    require(polySortPositions(positions.data(), count, input.take<std::uint8_t>() & 1) <= count);
}

void drawCurves(const std::vector<tagPOINT>& outline, Input& input) {
    // The coordinates stay small, so that a step of 1 gives few samples.
    std::vector<tagPOINT> points = outline;
    for (tagPOINT& point : points)
        point = {point.x % 64, point.y % 64};
    void* handle = polyCopy(points.data(), static_cast<DWORD>(points.size()), input.take<std::uint8_t>() & 1);
    if (handle == nullptr) return;
    const double cornerFactor = static_cast<double>(input.take<std::uint8_t>()) / 128.0;
    unsigned int error = 99;
    void* through = polyCalcInterpolatingCurve(handle, 1.0, cornerFactor, &error);
    require((through != nullptr) == (error == 0));
    void* near = polyCalcFittingCurve(handle, 1.0, 3 + input.take<std::uint8_t>() % 4, &error);
    require((near != nullptr) == (error == 0));
    handle = polyApplyPointDistance(handle, input.take<std::int8_t>());
    for (void* polygon : {through, near, handle})
        polyFree(polygon);
}

void thin(std::vector<tagPOINT> outline, Input& input) {
    const auto count = static_cast<DWORD>(outline.size());
    const DWORD kept = polyRemoveDoublePoints(outline.data(), count);
    require(kept <= count);
    const DWORD fewer = polyRemoveDoublePointsEx(outline.data(), kept, input.take<double>());
    require(fewer <= kept);
    require(polyElapsePoints(outline.data(), fewer, input.take<DWORD>()) <= fewer);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const std::vector<tagPOINT> outline = input.takeOutline(64);
    const std::vector<tagPOINT> other = input.takeOutline(32);
    query(outline, other, input);
    sortPositions(input);
    thin(outline, input);
    drawCurves(outline, input);
    return 0;
}
