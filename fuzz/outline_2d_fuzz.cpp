// Feeds arbitrary outlines of doubles to the polygon functions and compares the answers with the plain steps.
#include <cmath>
#include <vector>

#include "fuzz/input.h"
#include "tests/support/polygon2d_reference.h"
#include "velquad/polygon.h"

namespace {

namespace reference = velquad::test::reference2d;
using reference::Outline;
using velquad::fuzz::Input;
using velquad::fuzz::require;

DWORD countOf(const Outline& outline) {
    return static_cast<DWORD>(outline.size());
}

bool isSame(double a, double b) {
    return a == b || (std::isnan(a) && std::isnan(b));
}

void comparePoints(const Outline& a, const Outline& b) {
    require(a.size() == b.size());
    for (std::size_t i = 0; i < a.size(); ++i)
        require(isSame(a[i].x, b[i].x) && isSame(a[i].y, b[i].y));
}

void query(const Outline& outline, const Outline& other, Input& input) {
    const int closed = input.take<std::uint8_t>() & 1;
    const tagPOINT2D test{input.takeNearGrid(), input.takeNearGrid()};
    require(poly2dIsPointInside(outline.data(), countOf(outline), &test) ==
            reference::isPointInside(outline, test));
    const double distance =
        poly2dCalcDistance(outline.data(), countOf(outline), closed, &test, 1, nullptr, nullptr, nullptr);
    require(isSame(distance, reference::distance(outline, closed != 0, test, true).distance));
    require(poly2dGetRelativePosition(outline.data(), countOf(outline), closed, other.data(), countOf(other),
                                      1) == reference::relativePosition(outline, closed != 0, other, true));
    const int direction = poly2dIsCCW(outline.data(), countOf(outline));
    require(direction == 1 || direction == 0 || direction == -1);
    const reference::Fault fault = reference::firstFault(outline, closed != 0);
    DWORD first = 0;
    DWORD second = 0;
    const int isSimple = poly2dIsSimple(outline.data(), countOf(outline), closed, &first, &second);
    require(isSimple == (fault.isFound ? 0 : 1) && first == fault.first && second == fault.second);
}

void repair(const Outline& outline, Input& input) {
    const double limit = input.takeNearGrid() * 4.0;
    Outline closed = outline;
    const reference::Repair expected = reference::makeSimple(outline, limit);
    require(poly2dMakeSimple(closed.data(), countOf(closed), limit) == expected.count);
    comparePoints(closed, expected.points);
    Outline chain = outline;
    const reference::Repair expectedChain = reference::makeChainSimple(outline, limit);
    require(poly2dMakeSimpleEx(chain.data(), countOf(chain), 0, limit) == expectedChain.count);
    comparePoints(chain, expectedChain.points);
    Outline thinned = outline;
    require(poly2dRemoveDoublePoints(thinned.data(), countOf(thinned)) <= countOf(thinned));
    require(poly2dMakeCCW(thinned.data(), countOf(thinned), 1) == 1);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const Outline outline = input.takeOutline2D(70);
    const Outline other = input.takeOutline2D(12);
    if (outline.empty() || other.empty()) return 0;
    query(outline, other, input);
    repair(outline, input);
    return 0;
}
