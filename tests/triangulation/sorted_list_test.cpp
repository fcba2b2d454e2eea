// The sorted lists, against one shifted array.
#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <vector>

#include "tests/support/delaunay_queries_reference.h"
#include "triangulation/sorted_list.h"
#include "triangulation/triangle_list.h"

namespace {

using velquad::test::delaunay::Point;
using velquad::test::delaunay::SortedPointers;
using velquad::triangulation::comparePlaces;
using velquad::triangulation::CSortedListT;
using velquad::triangulation::RankedSequence;

class PlaceList : public CSortedListT<Point> {
  public:
    int Compare(const Point* a, const Point* b) const override {
        return comparePlaces({a->x, a->y}, {b->x, b->y});
    }
};

TEST(SortedList, PlacesAreOrderedByYThenX) {
    EXPECT_EQ(comparePlaces({5, 1}, {0, 2}), -1);
    EXPECT_EQ(comparePlaces({5, 2}, {0, 1}), 1);
    EXPECT_EQ(comparePlaces({1, 2}, {5, 2}), -1);
    EXPECT_EQ(comparePlaces({5, 2}, {1, 2}), 1);
    EXPECT_EQ(comparePlaces({1, 2}, {1, 2}), 0);
    // Just below and just above 1e-7.
    EXPECT_EQ(comparePlaces({0, 0}, {0.99e-7, 0.99e-7}), 0);
    EXPECT_EQ(comparePlaces({0, 0}, {1.01e-7, 0.99e-7}), -1);
    EXPECT_EQ(comparePlaces({9, 0}, {0, 1.01e-7}), -1);
    EXPECT_EQ(comparePlaces({9, 0}, {0, 0.99e-7}), 1);
    // Exactly 1e-7 is a difference in y and in x.
    EXPECT_EQ(comparePlaces({0, 0}, {0, 1e-7}), -1);
    EXPECT_EQ(comparePlaces({0, 0}, {1e-7, 0}), -1);
}

TEST(SortedList, EqualElementsAreTakenOnce) {
    PlaceList list;
    Point a{1, 1};
    Point b{1 + 5e-8, 1};
    Point c{0, 1};
    EXPECT_FALSE(list.contains(&a));
    EXPECT_TRUE(list.insert(&a));
    EXPECT_FALSE(list.insert(&b));
    EXPECT_TRUE(list.insert(&c));
    EXPECT_TRUE(list.contains(&b));
    std::vector<const Point*> order;
    list.forEach([&order](const Point* p) { order.push_back(p); });
    EXPECT_EQ(order, (std::vector<const Point*>{&c, &a}));
}

TEST(SortedList, AgreesWithAShiftedArray) {
    for (unsigned seed = 1; seed <= 8; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        std::mt19937 random(seed);
        // Steps below the tolerance: equality is not transitive, and what is found depends on the bisection.
        const double step = seed % 2 == 0 ? 4e-8 : 1.0;
        std::vector<std::unique_ptr<Point>> points;
        PlaceList list;
        SortedPointers<Point, Point (*)(const Point&)> reference([](const Point& p) { return p; });
        for (int i = 0; i < 3000; ++i) {
            const double x = static_cast<double>(random() % 60) * step;
            points.push_back(std::make_unique<Point>(Point{x, static_cast<double>(random() % 60) * step}));
            EXPECT_EQ(list.insert(points.back().get()), reference.insert(points.back().get()));
            const Point& asked = *points[random() % points.size()];
            EXPECT_EQ(list.contains(&asked), reference.find(asked).second);
        }
        std::vector<Point*> order;
        list.forEach([&order](Point* p) { order.push_back(p); });
        EXPECT_EQ(order, reference.elements);
    }
}

TEST(RankedSequence, AgreesWithAnArray) {
    std::mt19937 random(11);
    std::vector<int> values(5000);
    std::vector<int*> reference;
    RankedSequence<int> sequence;
    for (int& value : values) {
        const std::size_t rank = random() % (reference.size() + 1);
        sequence.insert(rank, &value);
        reference.insert(reference.begin() + static_cast<std::ptrdiff_t>(rank), &value);
    }
    ASSERT_EQ(sequence.size(), reference.size());
    for (std::size_t i = 0; i < reference.size(); ++i)
        ASSERT_EQ(sequence.at(i), reference[i]);
    std::vector<int*> order;
    sequence.forEach([&order](int* value) { order.push_back(value); });
    EXPECT_EQ(order, reference);
}

TEST(RankedSequence, GrowsAtEitherEnd) {
    int values[2000];
    RankedSequence<int> front;
    RankedSequence<int> back;
    for (int& value : values) {
        front.insert(0, &value);
        back.insert(back.size(), &value);
    }
    for (std::size_t i = 0; i < 2000; ++i) {
        EXPECT_EQ(front.at(i), &values[1999 - i]);
        EXPECT_EQ(back.at(i), &values[i]);
    }
}

}  // namespace
