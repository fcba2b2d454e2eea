#include "trace.h"

#include <array>

namespace examples::outline {
namespace {

struct Step {
    int dx;
    int dy;
};

constexpr int kDirections = 8;
/// Clockwise on the screen, from the left.
constexpr std::array<Step, kDirections> kRing{
    {{-1, 0}, {-1, -1}, {0, -1}, {1, -1}, {1, 0}, {1, 1}, {0, 1}, {-1, 1}}};
constexpr int kLeft = 0;
constexpr int kNone = -1;

struct Walker {
    int x;
    int y;
    int behind;  ///< Direction of the ground pixel that was looked at last.
};

/// The direction of the next pixel of the object, or kNone for a lone pixel.
int nextDirection(const Objects& objects, std::int32_t label, const Walker& walker) {
    for (int turn = 1; turn <= kDirections; ++turn) {
        const int direction = (walker.behind + turn) % kDirections;
        const Step step = kRing[static_cast<std::size_t>(direction)];
        const int x = walker.x + step.dx;
        const int y = walker.y + step.dy;
        if (objects.labels.contains(x, y) && objects.labels.at(x, y) == label) return direction;
    }
    return kNone;
}

/// Goes one step. The ground pixel looked at just before lies next to the new place too; its direction from
/// there depends on the step alone: two eighths of a turn back for a step over a side, three for a corner.
void advance(Walker& walker, int direction) {
    const Step step = kRing[static_cast<std::size_t>(direction)];
    walker.x += step.dx;
    walker.y += step.dy;
    const bool isOverSide = step.dx == 0 || step.dy == 0;
    walker.behind = (direction + kDirections - (isOverSide ? 2 : 3)) % kDirections;
}

tagPOINT placeOf(const Walker& walker) {
    tagPOINT point;
    point.x = walker.x;
    point.y = walker.y;
    return point;
}

}  // namespace

std::vector<tagPOINT> traceOutline(const Objects& objects, const Region& region) {
    // The first pixel in reading order has ground to its left.
    Walker walker{region.firstX, region.firstY, kLeft};
    std::vector<tagPOINT> outline{placeOf(walker)};
    const int firstDirection = nextDirection(objects, region.label, walker);
    if (firstDirection == kNone) return outline;

    int direction = firstDirection;
    do {
        advance(walker, direction);
        outline.push_back(placeOf(walker));
        direction = nextDirection(objects, region.label, walker);
    } while (!(walker.x == region.firstX && walker.y == region.firstY && direction == firstDirection));
    return outline;
}

}  // namespace examples::outline
