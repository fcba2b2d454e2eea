// How the tree of halved boxes grows. A failed allocation leaves a valid tree.
#include "triangulation/nearest_index.h"

#include "triangulation/growing_array.h"

namespace velquad::triangulation {

namespace {

/// A value in the middle, between `low` and `high`; `low` when there is none.
double middleOf(double low, double high) {
    const double middle = low * 0.5 + high * 0.5;
    return low < middle && middle < high ? middle : low;
}

}  // namespace

void NearestIndex::prepare(double x, double y) {
    if (nodes_.empty()) {
        reserveMore(buckets_, 1);
        reserveMore(nodes_, 1);
        buckets_.emplace_back();
        nodes_.push_back({0.0, 0, kLeaf});
    }
    for (;;) {
        const Leaf leaf = leafAt(x, y);
        prepared_ = nodes_[leaf.node].child;
        if (buckets_[prepared_].count < kBucketSize) return;
        relieve(leaf);
    }
}

void NearestIndex::add(double x, double y, std::uint32_t point) {
    Bucket& bucket = buckets_[prepared_];
    bucket.entries[bucket.count++] = {x, y, point};
}

NearestIndex::Leaf NearestIndex::leafAt(double x, double y) const {
    Leaf leaf{0, box_};
    while (nodes_[leaf.node].kind != kLeaf) {
        const Node& node = nodes_[leaf.node];
        if (node.kind == kAxisX) {
            (x < node.split ? leaf.box.right : leaf.box.left) = node.split;
            leaf.node = node.child + (x < node.split ? 0 : 1);
        } else {
            (y < node.split ? leaf.box.bottom : leaf.box.top) = node.split;
            leaf.node = node.child + (y < node.split ? 0 : 1);
        }
    }
    return leaf;
}

void NearestIndex::relieve(const Leaf& leaf) {
    const tagMAT_RECT2D& box = leaf.box;
    const double middleX = middleOf(box.left, box.right);
    const double middleY = middleOf(box.top, box.bottom);
    const bool canHalveX = middleX > box.left;
    const bool canHalveY = middleY > box.top;
    if (canHalveX && (!canHalveY || box.right - box.left >= box.bottom - box.top)) {
        halve(leaf, kAxisX, middleX);
    } else if (canHalveY) {
        halve(leaf, kAxisY, middleY);
    } else {
        reserveMore(buckets_, 1);
        const std::uint32_t full = nodes_[leaf.node].child;
        nodes_[leaf.node].child = static_cast<std::uint32_t>(buckets_.size());
        buckets_.emplace_back();
        buckets_.back().next = full;
    }
}

void NearestIndex::halve(const Leaf& leaf, std::uint8_t axis, double split) {
    reserveMore(nodes_, 2);
    reserveMore(buckets_, 1);
    const std::uint32_t first = nodes_[leaf.node].child;
    const auto second = static_cast<std::uint32_t>(buckets_.size());
    buckets_.emplace_back();
    // A full leaf of a box that can be halved has one bucket.
    Bucket& below = buckets_[first];
    Bucket& above = buckets_[second];
    const std::uint32_t count = below.count;
    below.count = 0;
    for (std::uint32_t i = 0; i < count; ++i) {
        const Entry entry = below.entries[i];
        Bucket& half = (axis == kAxisX ? entry.x : entry.y) < split ? below : above;
        half.entries[half.count++] = entry;
    }
    const auto child = static_cast<std::uint32_t>(nodes_.size());
    nodes_.push_back({0.0, first, kLeaf});
    nodes_.push_back({0.0, second, kLeaf});
    nodes_[leaf.node] = {split, child, axis};
}

}  // namespace velquad::triangulation
