// Which of many points of the plane is the nearest one: a tree of halved boxes that grows point by point
// (J. L. Bentley, Multidimensional binary search trees used for associative searching, 1975; boxes are halved
// instead of points ranked, so that sorted input does not degrade it).
//
// The answer is that of a walk over all points in the order of their numbers that keeps a strictly smaller squared
// distance: the first of equal points wins. Rounding does not matter to that: subtraction, square and sum are
// monotonic, so the squared distance to a plane, rounded, never exceeds that to a point behind it.
#ifndef VELQUAD_TRIANGULATION_NEAREST_INDEX_H
#define VELQUAD_TRIANGULATION_NEAREST_INDEX_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "velquad/types.h"

namespace velquad::triangulation {

class NearestIndex {
  public:
    static constexpr std::uint32_t kNone = 0xFFFFFFFF;

    struct Found {
        double distanceSquared;  ///< The limit of the search when nothing was found.
        std::uint32_t point;     ///< kNone when nothing was found.
    };

    /// @param box  where most points will lie. Points outside are found as well.
    explicit NearestIndex(const tagMAT_RECT2D& box) : box_(box) {}

    /// Makes room for a point at a place, so that adding it cannot fail.
    void prepare(double x, double y);

    /// Adds a point right behind `prepare` for its place.
    void add(double x, double y, std::uint32_t point);

    /// Finds the nearest point with `accepts(point)` whose squared distance is less than `limit`; the first one
    /// by number among equals.
    template <class Accepts>
    Found nearest(double x, double y, double limit, const Accepts& accepts) const {
        Search<Accepts> search{*this, x, y, {limit, kNone}, accepts};
        if (!nodes_.empty()) search.visit(0, 0.0, 0.0);
        return search.best;
    }

    Found nearest(double x, double y, double limit) const {
        return nearest(x, y, limit, [](std::uint32_t) { return true; });
    }

  private:
    static constexpr std::uint32_t kBucketSize = 8;
    static constexpr std::uint8_t kAxisX = 0;
    static constexpr std::uint8_t kAxisY = 1;
    static constexpr std::uint8_t kLeaf = 2;

    /// Either a halved box, whose halves are nodes `child` and `child + 1`, or a leaf with a bucket.
    struct Node {
        double split;         ///< Coordinates below it belong to the first half.
        std::uint32_t child;  ///< First half, or the bucket of a leaf.
        std::uint8_t kind;
    };

    struct Entry {
        double x;
        double y;
        std::uint32_t point;
    };

    struct Bucket {
        std::uint32_t count = 0;
        std::uint32_t next = kNone;  ///< More of the same leaf, when its box cannot be halved any more.
        Entry entries[kBucketSize];
    };

    template <class Accepts>
    struct Search {
        const NearestIndex& index;
        double x;
        double y;
        Found best;
        const Accepts& accepts;

        /// @param offX, offY  the least distances of the node's points along the axes.
        void visit(std::uint32_t number, double offX, double offY) {
            for (;;) {
                const Node& node = index.nodes_[number];
                if (node.kind == kLeaf) {
                    look(node.child);
                    return;
                }
                const double beyond = (node.kind == kAxisX ? x : y) - node.split;
                const std::uint32_t other = beyond < 0.0 ? 1 : 0;
                visit(node.child + 1 - other, offX, offY);
                (node.kind == kAxisX ? offX : offY) = beyond;
                if (offX * offX + offY * offY > best.distanceSquared) return;
                number = node.child + other;
            }
        }

        void look(std::uint32_t bucketNumber) {
            while (bucketNumber != kNone) {
                const Bucket& bucket = index.buckets_[bucketNumber];
                for (std::uint32_t i = 0; i < bucket.count; ++i) {
                    const Entry& entry = bucket.entries[i];
                    const double dx = x - entry.x;
                    const double dy = y - entry.y;
                    const double squared = dx * dx + dy * dy;
                    const bool isBetter =
                        squared < best.distanceSquared ||
                        (squared == best.distanceSquared && best.point != kNone && entry.point < best.point);
                    if (isBetter && accepts(entry.point)) best = {squared, entry.point};
                }
                bucketNumber = bucket.next;
            }
        }
    };

    struct Leaf {
        std::uint32_t node;
        tagMAT_RECT2D box;
    };

    Leaf leafAt(double x, double y) const;
    /// Halves a full leaf, or gives it one more bucket when its box is too small for that.
    void relieve(const Leaf& leaf);
    void halve(const Leaf& leaf, std::uint8_t axis, double split);

    tagMAT_RECT2D box_;
    std::vector<Node> nodes_;
    std::vector<Bucket> buckets_;
    std::uint32_t prepared_ = kNone;  ///< The bucket that `prepare` found room in.
};

}  // namespace velquad::triangulation

#endif  // VELQUAD_TRIANGULATION_NEAREST_INDEX_H
