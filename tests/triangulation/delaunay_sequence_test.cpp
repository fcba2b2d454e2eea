// Random sequences of calls on the triangulation and on its plain version, with the results of every call and the
// whole structures compared bit by bit; and what must hold for every triangulation.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <random>
#include <set>
#include <vector>

#include "tests/support/delaunay_pair.h"

namespace {

using velquad::test::DelaunayPair;
using velquad::test::delaunay::kDoubleMax;
using velquad::test::delaunay::kNoId;
using velquad::triangulation::CDelaunay2D;
using velquad::triangulation::EdgeRef;

class Random {
  public:
    explicit Random(unsigned seed) : engine_(seed) {}
    unsigned below(unsigned limit) { return static_cast<unsigned>(engine_() % limit); }
    double real(double low, double high) {
        return low + (high - low) * (static_cast<double>(engine_() >> 11) * 0x1p-53);
    }

  private:
    std::mt19937_64 engine_;
};

struct Layout {
    const char* name;
    /// The place of point number `i`.
    tagPOINT2D (*place)(Random& random, unsigned i);
};

tagPOINT2D scattered(Random& random, unsigned) {
    const double x = random.real(-50, 150);
    return {x, random.real(0, 300)};
}
tagPOINT2D gridded(Random& random, unsigned) {
    const double x = random.below(12) * 4.0;
    return {x, random.below(12) * 4.0};
}
tagPOINT2D rowByRow(Random&, unsigned i) {
    return {(i % 13) * 2.5, (i / 13) * 2.5};
}
tagPOINT2D collinear(Random& random, unsigned) {
    const double t = random.below(400);
    return {t * 0.25, t * 0.5 + 3};
}
tagPOINT2D clustered(Random& random, unsigned) {
    const double x = random.below(4) * 1000.0 + random.real(0, 0.5);
    return {x, random.below(2) * 700.0 + random.real(0, 0.5)};
}
tagPOINT2D duplicated(Random& random, unsigned) {
    const double x = random.below(6) * 3.0 + random.below(3) * 4e-7;
    return {x, random.below(6) * 3.0 + random.below(3) * 1e-4};
}
tagPOINT2D spiral(Random&, unsigned i) {
    const double turn = 0.37 * i;
    return {turn * std::cos(turn), turn * std::sin(turn)};
}
tagPOINT2D onCircle(Random&, unsigned i) {
    const double angle = 2.399963229728653 * i;
    return {100 + 60 * std::cos(angle), 60 * std::sin(angle)};
}
tagPOINT2D huge(Random& random, unsigned) {
    const double x = random.real(-1e6, 1e6) * std::pow(10.0, random.below(4));
    return {x, random.real(-1e6, 1e6)};
}
tagPOINT2D tiny(Random& random, unsigned) {
    const double x = random.real(0, 2e-2);
    return {x, random.real(0, 2e-2)};
}
/// So wide that the triangles in the middle are next to nothing beside the whole.
tagPOINT2D closeAmongDistant(Random& random, unsigned) {
    const double reach = random.below(3) == 0 ? 1e6 : 20.0;
    const double x = random.real(-reach, reach);
    return {x, random.real(-reach, reach)};
}
tagPOINT2D extreme(Random& random, unsigned) {
    const double x = random.real(-1, 1) * std::pow(10.0, random.below(320));
    return {x, random.real(-1, 1) * std::pow(10.0, random.below(320))};
}

double anyTolerance(Random& random) {
    constexpr double kTolerances[] = {kDoubleMax, 0.0, 1e-6, 1e-3, -1e-5, 0.5, -0.01};
    // Rebuilding is dear, so most calls have the default.
    return random.below(4) != 0 ? kDoubleMax : kTolerances[random.below(7)];
}

void changeOrAsk(DelaunayPair& pair, const Layout& layout, Random& random, unsigned i) {
    const tagPOINT2D at = layout.place(random, i);
    const tagPOINT3D point{at.x, at.y, random.real(-5, 5)};
    const std::uint64_t id = random.below(3) == 0 ? kNoId : random.below(3);
    switch (random.below(24)) {
        case 0:
            pair.setZ(point, random.real(0, 4));
            break;
        case 1:
            pair.setId(id, point, random.real(0, 4));
            break;
        case 2:
            if (random.below(6) == 0) pair.reduce(point, random.below(2) == 0 ? 1.0 : -0.01);
            break;
        case 3:
            pair.draw(random.below(8));
            break;
        case 4: {
            const tagPOINT2D other = layout.place(random, i + 1);
            pair.enumerate({at.x, at.y, other.x, other.y}, random.below(4), 1 + random.below(100));
            break;
        }
        case 5:
        case 6:
        case 7:
            pair.find({at.x + random.real(-1, 1), at.y + random.real(-1, 1), 0.0}, id, random.below(32),
                      random.below(2) == 0);
            break;
        case 8:
            pair.find({at.x, at.y, 0.0}, id, random.below(4), random.below(2) == 0);
            break;
        default:
            pair.extend(point, anyTolerance(random), id);
    }
}

void expectQuadEdges(const CDelaunay2D& t) {
    t.forEachEdge([&](EdgeRef e) {
        for (EdgeRef i = e; i < e + 4; ++i) {
            // The links form rings: one step forth and one back.
            EXPECT_EQ(t.oprev(t.onext(i)), i);
            EXPECT_EQ(t.onext(t.oprev(i)), i);
        }
        for (const EdgeRef i : {e, velquad::triangulation::sym(e)}) {
            EXPECT_EQ(t.org(t.onext(i)), t.org(i));
            EXPECT_EQ(t.dest(t.dprev(i)), t.dest(i));
            EXPECT_EQ(t.lnext(t.lnext(t.lnext(i))), i) << "every face is a triangle";
            EXPECT_EQ(t.orgPosition(i).x, t.position(t.org(i)).x);
            EXPECT_EQ(t.orgPosition(i).y, t.position(t.org(i)).y);
        }
    });
    // Euler: a triangulation of v vertices, the outer face a triangle as well, has 3 v - 6 edges.
    EXPECT_EQ(t.edgeCount(), 3 * std::size_t{t.pointCount()} - 6);
}

/// No vertex lies clearly within the circle of a triangle.
void expectDelaunay(const CDelaunay2D& t) {
    t.forEachEdge([&](EdgeRef e) {
        const tagPOINT2D& a = t.orgPosition(e);
        const tagPOINT2D& b = t.destPosition(e);
        const tagPOINT2D& c = t.destPosition(t.onext(e));
        const tagPOINT2D& d = t.destPosition(t.oprev(e));
        if (!(velquad::triangulation::triArea(a, b, c) > 0.0)) return;
        const auto lifted = [&](const tagPOINT2D& p) {
            return (p.x - d.x) * (p.x - d.x) + (p.y - d.y) * (p.y - d.y);
        };
        const double det = (a.x - d.x) * ((b.y - d.y) * lifted(c) - (c.y - d.y) * lifted(b)) -
                           (a.y - d.y) * ((b.x - d.x) * lifted(c) - (c.x - d.x) * lifted(b)) +
                           lifted(a) * ((b.x - d.x) * (c.y - d.y) - (b.y - d.y) * (c.x - d.x));
        const double scale = lifted(a) * lifted(b) + lifted(b) * lifted(c) + lifted(c) * lifted(a);
        EXPECT_LE(det, 1e-6 * scale);
    });
}

class DelaunaySequence : public testing::TestWithParam<Layout> {};

TEST_P(DelaunaySequence, AgreesWithThePlainVersion) {
    for (unsigned seed = 1; seed <= 12; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        Random random(seed);
        const tagMAT_RECT2D extent{-20, -10, 180, 90};
        DelaunayPair pair(seed % 3 == 0 ? &extent : nullptr);
        for (unsigned i = 0; i < 260; ++i)
            changeOrAsk(pair, GetParam(), random, i);
        pair.expectSame();
        pair.draw(6);
        if (testing::Test::HasFailure()) return;
    }
}

TEST_P(DelaunaySequence, InsertionAloneAgreesWithThePlainVersion) {
    Random random(99);
    DelaunayPair pair(nullptr);
    for (unsigned i = 0; i < 1800; ++i) {
        const tagPOINT2D at = GetParam().place(random, i);
        // Only what does not rebuild: rebuilding is compared elsewhere.
        if (pair.subject().hasPoints() && !pair.subject().isFartherThan(at, 1e-6)) continue;
        pair.extend({at.x, at.y, static_cast<double>(i)});
    }
    pair.expectSame();
}

INSTANTIATE_TEST_SUITE_P(All, DelaunaySequence,
                         testing::Values(Layout{"scattered", scattered}, Layout{"gridded", gridded},
                                         Layout{"rowByRow", rowByRow}, Layout{"collinear", collinear},
                                         Layout{"clustered", clustered}, Layout{"duplicated", duplicated},
                                         Layout{"spiral", spiral}, Layout{"onCircle", onCircle},
                                         Layout{"huge", huge}, Layout{"tiny", tiny},
                                         Layout{"closeAmongDistant", closeAmongDistant},
                                         Layout{"extreme", extreme}),
                         [](const auto& instance) { return instance.param.name; });

class DelaunayStructure : public testing::TestWithParam<Layout> {};

TEST_P(DelaunayStructure, IsATriangulationAndDelaunay) {
    for (unsigned seed = 1; seed <= 3; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        Random random(seed);
        DelaunayPair pair(nullptr);
        for (unsigned i = 0; i < 200; ++i)
            changeOrAsk(pair, GetParam(), random, i);
        expectQuadEdges(pair.subject());
        expectDelaunay(pair.subject());
    }
}

// Places of moderate size, where rounding in the predicates is small.
INSTANTIATE_TEST_SUITE_P(All, DelaunayStructure,
                         testing::Values(Layout{"scattered", scattered}, Layout{"gridded", gridded},
                                         Layout{"rowByRow", rowByRow}, Layout{"spiral", spiral},
                                         Layout{"onCircle", onCircle}),
                         [](const auto& instance) { return instance.param.name; });

// Triangles of less than 1e-10 of the whole area are listed, but their entries are taken again for the next ones: what
// is found among them depends on the order of the edges.
TEST(DelaunayEnumeration, OfTrianglesNextToNothingAgreesWithThePlainVersion) {
    for (unsigned seed = 1; seed <= 150; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        Random random(seed);
        DelaunayPair pair(nullptr);
        for (int i = 0; i < 4; ++i) {
            const double x = random.real(-1e6, 1e6);
            pair.extend({x, random.real(-1e6, 1e6), static_cast<double>(i)});
        }
        for (int i = 4; i < 10; ++i) {
            const double x = random.real(0, 20);
            pair.extend({x, random.real(0, 20), static_cast<double>(i)});
        }
        for (int i = 0; i < 40; ++i) {
            const double x = random.real(0, 20);
            const double y = random.real(0, 20);
            pair.enumerate({x, y, x + 0.01, y + 0.01}, 2, 100);
        }
        if (testing::Test::HasFailure()) return;
    }
}

// Far from the origin and in flat extents rounding decides the predicates: walks come back to where they were, flips
// leave triangles that overlap, and the structure is the same for all that.
TEST(DelaunayInsertion, WhereRoundingDecidesAgreesWithThePlainVersion) {
    constexpr double kOffsets[] = {0, 1e4, 1e8, 1e9, 1e10, 1e11, 1e12, 1e15};
    constexpr double kSizes[] = {1e-4, 1e-2, 1, 1e2, 1e4, 1e6};
    for (unsigned seed = 1; seed <= 600; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        Random random(seed);
        const tagPOINT2D center{kOffsets[random.below(8)], kOffsets[random.below(8)]};
        const double width = kSizes[random.below(6)];
        const double height = kSizes[random.below(6)];
        const bool isGridded = random.below(2) == 0;
        const tagMAT_RECT2D extent{center.x - width, center.y - height, center.x + width, center.y + height};
        DelaunayPair pair(&extent);
        for (unsigned i = 0; i < 40; ++i) {
            const double x = isGridded ? random.below(5) * 0.4 - 0.8 : random.real(-1, 1);
            const double y = isGridded ? random.below(5) * 0.4 - 0.8 : random.real(-1, 1);
            const double tolerance = random.below(3) == 0 ? 0.0 : kDoubleMax;
            pair.extend({center.x + x * width, center.y + y * height, static_cast<double>(i)}, tolerance);
        }
        pair.expectSame();
        if (testing::Test::HasFailure()) return;
    }
}

TEST(DelaunayArrangement, DoesNotShow) {
    // Enough points for everything to be arranged in memory twice.
    Random random(7);
    const tagMAT_RECT2D extent{0, 0, 100, 100};
    DelaunayPair pair(&extent);
    for (unsigned i = 0; i < 21000; ++i) {
        const double x = random.real(0, 100);
        pair.extendApart({x, random.real(0, 100), 1.0});
    }
    pair.expectSame();
    for (int i = 0; i < 200; ++i) {
        const double x = random.real(-10, 110);
        pair.find({x, random.real(-10, 110), 0.0}, kNoId, random.below(4), false);
    }
    pair.enumerate({20, 20, 50, 60}, 0, 100000);
    pair.enumerate({20, 20, 50, 60}, 2, 100000);
}

/// Asks for places on the line through every edge and beside it, by less and by more than what is told apart at once.
void locateBesideLines(const DelaunayPair& pair) {
    const CDelaunay2D& t = pair.subject();
    const double size = t.extent().right - t.extent().left;
    t.forEachEdge([&](EdgeRef e) {
        const tagPOINT2D from = t.orgPosition(e);
        const tagPOINT2D to = t.destPosition(e);
        for (const double along : {-3.0, -0.7, 0.0, 0.3, 0.5, 1.0, 1.9, 4.0}) {
            for (const double beside : {0.0, 1e-17, 1e-13, 1e-9, 2e-8, 6e-8, 2e-7, 1e-6, 1e-5}) {
                for (const double offset : {beside * size, -beside * size}) {
                    pair.locate({from.x + along * (to.x - from.x) - offset * (to.y > from.y ? 1 : -1),
                                 from.y + along * (to.y - from.y) + offset * (to.x > from.x ? 1 : -1)});
                }
            }
        }
    });
}

struct Scale {
    const char* name;
    tagPOINT2D origin;
    double width;
    double height;
};

class DelaunayWalk : public testing::TestWithParam<Scale> {};

TEST_P(DelaunayWalk, EndsWhereThePlainVersionEnds) {
    Random random(3);
    const Scale& scale = GetParam();
    const tagMAT_RECT2D extent{scale.origin.x, scale.origin.y, scale.origin.x + scale.width,
                               scale.origin.y + scale.height};
    DelaunayPair pair(&extent);
    for (int round = 0; round < 6; ++round) {
        for (int i = 0; i < 12; ++i) {
            const double x = random.real(extent.left, extent.right);
            pair.extend({x, random.real(extent.top, extent.bottom), 1.0}, 0.0);
        }
        locateBesideLines(pair);
        if (testing::Test::HasFailure()) return;
    }
    pair.expectSame();
}

// With the smallest extents and the largest all turns are those of the positions.
INSTANTIATE_TEST_SUITE_P(
    All, DelaunayWalk,
    testing::Values(Scale{"plain", {0, 0}, 100, 100}, Scale{"wide", {-3, 7}, 5000, 2},
                    Scale{"small", {0, 0}, 0.02, 0.5}, Scale{"smallest", {1, 1}, 1e-3, 1e-3},
                    Scale{"farAway", {1e9, -3e8}, 10, 10}, Scale{"large", {-1e12, 0}, 1e13, 1e12},
                    Scale{"largest", {0, 0}, 1e130, 1e125}, Scale{"flat", {0, 0}, 1000, 3e-7}),
    [](const auto& instance) { return instance.param.name; });

}  // namespace
