// The library's triangulation and its plain version side by side.
#ifndef VELQUAD_TESTS_SUPPORT_DELAUNAY_PAIR_H
#define VELQUAD_TESTS_SUPPORT_DELAUNAY_PAIR_H

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "tests/support/delaunay_queries_reference.h"
#include "tests/support/delaunay_reference.h"
#include "triangulation/delaunay.h"
#include "velquad/triangulation.h"

namespace velquad::test {

/// What one triangulation consists of, in numbers that do not depend on where things lie in memory. Doubles are
/// kept as bits.
struct DelaunayRecord {
    std::vector<std::uint64_t> points;  ///< x, y, z, id and helper flag, one point after the other.
    std::vector<std::uint64_t> edges;   ///< The two ends, then the four links, one group after the other.
    std::uint64_t startingEdge = 0;
    std::vector<std::uint64_t> extent;

    bool operator==(const DelaunayRecord&) const = default;
};

inline std::uint64_t bitsOf(double value) {
    return std::bit_cast<std::uint64_t>(value);
}

inline std::vector<std::uint64_t> bitsOf(const tagMAT_RECT2D& rect) {
    return {bitsOf(rect.left), bitsOf(rect.top), bitsOf(rect.right), bitsOf(rect.bottom)};
}

inline DelaunayRecord recordOf(const delaunay::Triangulation& t) {
    DelaunayRecord record;
    std::unordered_map<const delaunay::Point*, std::uint64_t> pointNumbers;
    for (const auto& p : t.points) {
        pointNumbers.emplace(p.get(), pointNumbers.size());
        record.points.insert(record.points.end(),
                             {bitsOf(p->x), bitsOf(p->y), bitsOf(p->z), p->id, std::uint64_t{p->isHelper}});
    }
    std::unordered_map<const delaunay::Edge*, std::uint64_t> edgeNumbers;
    for (const auto& group : t.edges) {
        const std::uint64_t number = edgeNumbers.size();
        for (std::uint64_t i = 0; i < 4; ++i)
            edgeNumbers.emplace(&group->e[i], number + i);
    }
    for (const auto& group : t.edges) {
        record.edges.push_back(pointNumbers.at(group->e[0].data));
        record.edges.push_back(pointNumbers.at(group->e[2].data));
        for (const delaunay::Edge& e : group->e)
            record.edges.push_back(edgeNumbers.at(e.next));
    }
    if (t.startingEdge != nullptr) record.startingEdge = edgeNumbers.at(t.startingEdge);
    record.extent = bitsOf(t.extent);
    return record;
}

inline DelaunayRecord recordOf(const triangulation::CDelaunay2D& t) {
    DelaunayRecord record;
    for (std::uint32_t i = 0; i < t.pointCount(); ++i) {
        const triangulation::Point2d p = t.point(i);
        record.points.insert(record.points.end(),
                             {bitsOf(p.x), bitsOf(p.y), bitsOf(p.z), p.id, std::uint64_t{p.isHelper}});
    }
    std::unordered_map<std::uint64_t, std::uint64_t> groupNumbers;
    t.forEachEdge([&](triangulation::EdgeRef e) { groupNumbers.emplace(e / 4, groupNumbers.size()); });
    const auto numberOf = [&](triangulation::EdgeRef e) { return groupNumbers.at(e / 4) * 4 + e % 4; };
    t.forEachEdge([&](triangulation::EdgeRef e) {
        EXPECT_EQ(e % 4, 0U);
        record.edges.push_back(t.org(e));
        record.edges.push_back(t.dest(e));
        for (triangulation::EdgeRef i = 0; i < 4; ++i)
            record.edges.push_back(numberOf(t.onext(e + i)));
    });
    EXPECT_EQ(t.edgeCount(), groupNumbers.size());
    if (t.hasPoints()) record.startingEdge = numberOf(t.startingEdge());
    record.extent = bitsOf(t.extent());
    return record;
}

/// Both triangulations, changed by the same calls, with the results compared.
class DelaunayPair {
  public:
    explicit DelaunayPair(const tagMAT_RECT2D* extent)
        : handle_(matInitDelaunay2D(extent)), reference_(std::make_unique<delaunay::Triangulation>(extent)) {}
    ~DelaunayPair() { matExitDelaunay2D(handle_); }
    DelaunayPair(const DelaunayPair&) = delete;
    DelaunayPair& operator=(const DelaunayPair&) = delete;

    void* handle() const { return handle_; }
    const triangulation::CDelaunay2D& subject() const {
        return *static_cast<const triangulation::CDelaunay2D*>(handle_);
    }
    const delaunay::Triangulation& reference() const { return *reference_; }

    int extend(const tagPOINT3D& point, double tolerance = delaunay::kDoubleMax,
               std::uint64_t id = delaunay::kNoId) {
        const int result = matExtentWithIdDelaunay2D(&handle_, &point, id, tolerance);
        EXPECT_EQ(result, delaunay::Triangulation::extend(reference_, point, id, tolerance));
        return result;
    }

    /// Extends by a point that is apart from all others and within the extent; the plain version need not look for the
    /// nearest one.
    void extendApart(const tagPOINT3D& point) {
        delaunay::Point added;
        added.x = point.x;
        added.y = point.y;
        added.z = point.z;
        EXPECT_EQ(matExtentDelaunay2D(&handle_, &point, delaunay::kDoubleMax), 1);
        EXPECT_TRUE(reference_->insertSite(added));
    }

    /// Compares where walks to a place end.
    void locate(const tagPOINT2D& place) const {
        const triangulation::EdgeRef found = subject().locate(place);
        delaunay::Point target;
        target.x = place.x;
        target.y = place.y;
        delaunay::Edge* expected = reference_->locate(target);
        ASSERT_EQ(found == triangulation::kNoEdge, expected == nullptr);
        if (expected == nullptr) return;
        const auto expectSamePlace = [](const tagPOINT2D& p, const delaunay::Point& q) {
            EXPECT_EQ(bitsOf(p.x), bitsOf(q.x));
            EXPECT_EQ(bitsOf(p.y), bitsOf(q.y));
        };
        expectSamePlace(subject().orgPosition(found), *expected->data);
        expectSamePlace(subject().destPosition(found), *expected->sym()->data);
    }

    int reduce(const tagPOINT3D& point, double tolerance) {
        const int result = matReduceDelaunay2D(&handle_, &point, tolerance);
        EXPECT_EQ(result, delaunay::Triangulation::reduce(reference_, point, tolerance));
        return result;
    }

    void setZ(const tagPOINT3D& point, double tolerance) {
        std::size_t index = 0;
        const bool isNear = !(reference_->findNearestDistance({point.x, point.y}, index) > tolerance) &&
                            index != delaunay::kNotFound;
        if (isNear) reference_->points[index]->z = point.z;
        EXPECT_EQ(matSetZValueOfDelaunayPosition(handle_, &point, tolerance), isNear ? 1 : 0);
    }

    void setId(std::uint64_t id, const tagPOINT3D& point, double tolerance) {
        std::size_t index = 0;
        const bool isNear = !(reference_->findNearestDistance({point.x, point.y}, index) > tolerance) &&
                            index != delaunay::kNotFound;
        if (isNear) reference_->points[index]->id = id;
        EXPECT_EQ(matSetIDOfDelaunayPosition(handle_, id, &point, tolerance), isNear ? 1 : 0);
    }

    unsigned int find(const tagPOINT3D& place, std::uint64_t id, unsigned int flags, bool filter) const {
        delaunay::Found before;
        before.point = place;
        before.isOutside = 77;
        const delaunay::Found expected = delaunay::find(reference_.get(), before, id, flags, filter);
        delaunay::Found found = before;
        found.count = filter ? matFindPositionByIdInDelaunay2D(handle_, &found.point, id, found.corners,
                                                               found.ids, &found.isOutside, flags)
                             : matFindPositionInDelaunay2DEx(handle_, &found.point, found.corners,
                                                             &found.isOutside, flags);
        EXPECT_EQ(found.count, expected.count);
        EXPECT_EQ(found.isOutside, expected.isOutside);
        EXPECT_EQ(std::memcmp(&found.point, &expected.point, sizeof found.point), 0)
            << found.point.x << ' ' << found.point.y << ' ' << found.point.z << " for " << expected.point.x
            << ' ' << expected.point.y << ' ' << expected.point.z;
        for (unsigned int i = 0; i < expected.count; ++i) {
            EXPECT_EQ(std::memcmp(&found.corners[i], &expected.corners[i], sizeof found.corners[i]), 0);
            if (filter) {
                EXPECT_EQ(found.ids[i], expected.ids[i]);
            }
        }
        return expected.count;
    }

    void draw(unsigned int flags) const {
        std::vector<std::uint64_t> drawn;
        const auto record = [](tagPOINT3D* start, tagPOINT3D* end, void* user1, void*) {
            for (const tagPOINT3D* p : {start, end})
                for (const double value : {p->x, p->y, p->z})
                    static_cast<std::vector<std::uint64_t>*>(user1)->push_back(bitsOf(value));
            return 0;
        };
        EXPECT_EQ(matDrawDelaunay2D(handle_, record, flags, &drawn, nullptr), 1);
        std::vector<std::uint64_t> expected;
        for (const auto& group : reference_->edges) {
            const delaunay::Point& a = *group->e[0].data;
            const delaunay::Point& b = *group->e[2].data;
            if ((flags & (a.isHelper || b.isHelper ? 2U : 4U)) == 0) continue;
            for (const delaunay::Point* p : {&a, &b})
                expected.insert(expected.end(), {bitsOf(p->x), bitsOf(p->y), bitsOf(p->z)});
        }
        EXPECT_EQ(drawn, expected);
    }

    std::size_t enumerate(const tagMAT_RECT2D& rect, unsigned int flags, std::size_t stopAfter) const {
        struct Visit {
            std::vector<std::uint64_t> seen;
            std::size_t rest;
            int add(const tagPOINT3D& p) {
                seen.insert(seen.end(), {bitsOf(p.x), bitsOf(p.y), bitsOf(p.z)});
                return --rest == 0 ? 42 : 1;
            }
        };
        Visit subject{{}, stopAfter};
        Visit plain{{}, stopAfter};
        const int result = matEnumDelaunayPositionsInRect(
            handle_, &rect, flags,
            [](tagPOINT3D* p, void* user) { return static_cast<Visit*>(user)->add(*p); }, &subject);
        EXPECT_EQ(result, delaunay::enumerate(reference_.get(), rect, flags, [&](const delaunay::Point& p) {
                      return plain.add({p.x, p.y, p.z});
                  }));
        EXPECT_EQ(subject.seen, plain.seen);
        return plain.seen.size() / 3;
    }

    void expectSame() const {
        const DelaunayRecord subjectRecord = recordOf(subject());
        const DelaunayRecord referenceRecord = recordOf(*reference_);
        EXPECT_EQ(subjectRecord.points, referenceRecord.points);
        EXPECT_EQ(subjectRecord.edges, referenceRecord.edges);
        EXPECT_EQ(subjectRecord.startingEdge, referenceRecord.startingEdge);
        EXPECT_EQ(subjectRecord.extent, referenceRecord.extent);
    }

  private:
    void* handle_;
    std::unique_ptr<delaunay::Triangulation> reference_;
};

}  // namespace velquad::test

#endif  // VELQUAD_TESTS_SUPPORT_DELAUNAY_PAIR_H
