// Prints one hash for each family: of the bits of all results over a fixed random workload. Only functions that use
// nothing but arithmetic, square roots and comparisons take part, so every system prints the same lines.
//
// No expression draws two random numbers or changes the same thing twice, as compilers may take them in either order.
// The random numbers are the file's own, as those of the C++ library may differ between systems. Every
// not-a-number counts as the same value; its sign and payload are not promised.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <vector>

#include "velquad/velquad.h"

namespace {

constexpr int kRounds = 4000;

class Digest {
  public:
    void add(std::uint64_t bits) {
        // FNV-1a, byte by byte.
        for (int shift = 0; shift < 64; shift += 8)
            state_ = (state_ ^ ((bits >> shift) & 0xFF)) * 0x100000001B3U;
    }
    void add(double value) {
        constexpr std::uint64_t kNotANumber = 0x7FF8000000000000U;
        std::uint64_t bits = 0;
        std::memcpy(&bits, &value, sizeof bits);
        add(value == value ? bits : kNotANumber);
    }
    void add(int value) { add(static_cast<std::uint64_t>(value)); }
    void add(bool value) { add(value ? 1 : 0); }
    void add(DWORD value) { add(static_cast<std::uint64_t>(value)); }
    void add(const tagPOINT& p) {
        add(static_cast<int>(p.x));
        add(static_cast<int>(p.y));
    }
    void add(const tagPOINT2D& p) {
        add(p.x);
        add(p.y);
    }
    void add(const tagPOINT3D& p) {
        add(p.x);
        add(p.y);
        add(p.z);
    }
    template <std::size_t Count>
    void add(const double (&values)[Count]) {
        for (const double value : values)
            add(value);
    }
    void add(const double (&m)[4][4]) {
        for (const auto& row : m)
            add(row);
    }
    template <class First, class Second, class... More>
    void add(const First& first, const Second& second, const More&... more) {
        add(first);
        add(second);
        (add(more), ...);
    }
    void addPolygon(HGLOBAL handle) {
        const auto* record = static_cast<const tagPOLY*>(GlobalLock(handle));
        add(record != nullptr);
        if (record == nullptr) return;
        add(record->count);
        for (DWORD i = 0; i < record->count; ++i)
            add(record->points[i]);
        GlobalUnlock(handle);
    }
    std::uint64_t value() const { return state_; }

  private:
    std::uint64_t state_ = 0xCBF29CE484222325U;
};

// SplitMix64 (G. L. Steele, D. Lea, C. H. Flood, 2014).
class Random {
  public:
    explicit Random(std::uint64_t seed) : state_(seed) {}
    std::uint64_t bits() {
        std::uint64_t z = (state_ += 0x9E3779B97F4A7C15U);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9U;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBU;
        return z ^ (z >> 31);
    }
    /// Mostly small numbers, so that points meet and lines are parallel now and then; sometimes any 32 bits.
    int integer() {
        const std::uint64_t value = bits();
        if (value % 64 == 0) return static_cast<int>(static_cast<std::uint32_t>(value >> 32));
        return static_cast<int>((value >> 32) % 41) - 20;
    }
    int below(int limit) { return static_cast<int>(bits() % static_cast<std::uint64_t>(limit)); }
    double real() {
        const std::uint64_t value = bits();
        if (value % 8 == 0) return static_cast<double>((value >> 32) % 9) - 4.0;
        return (static_cast<double>(value >> 11) * 0x1p-53 - 0.5) * 200.0;
    }
    tagPOINT pixel() {
        const int x = integer();
        return {x, integer()};
    }
    tagPOINT2D point() {
        const double x = real();
        return {x, real()};
    }
    tagPOINT3D point3() {
        const double x = real();
        const double y = real();
        return {x, y, real()};
    }
    void fill(double (&m)[4][4]) {
        for (auto& row : m)
            for (double& value : row)
                value = real();
    }

  private:
    std::uint64_t state_;
};

void digestFrame(Digest& digest, Random& random) {
    for (int round = 0; round < kRounds; ++round) {
        const tagPOINT a = random.pixel(), b = random.pixel(), c = random.pixel();
        digest.add(matSamePoint(&a, &b), matSameVector2L(&a, &b), matIsCCW(&a, &b, &c));
        const tagPOINT2D p = random.point(), q = random.point(), r = random.point();
        digest.add(matSameVector2D(&p, &q), matDetIsZero2D(&p, &q, &r), matIsCCW2D(&p, &q, &r));
        const tagPOINT3D s = random.point3(), t = random.point3(), u = random.point3();
        double product[3] = {};
        tagPOINT3D normal{};
        digest.add(matCalcOrthogonal(product, &s, &t, &u), product);
        digest.add(matCalcNormal(&normal, &s, &t, &u), normal, matSameVector3D(&s, &t));
        tagPOINT2D flat = p;
        tagPOINT3D solid = s;
        digest.add(matNormalizeVector2D(&flat), flat, matNormalizeVector3D(&solid), solid);
    }
}

void digestDistances(Digest& digest, Random& random) {
    for (int round = 0; round < kRounds; ++round) {
        const int isSquared = random.below(2);
        const tagPOINT a = random.pixel(), b = random.pixel(), c = random.pixel();
        tagPOINT2D closest{};
        double parameter = 0.0;
        digest.add(matCalcDist(&a, &b, isSquared), matCalcPixelScaledDist(&a, &b, 0.75, 1.25, isSquared));
        digest.add(matCalcDistanceToSegment2L(&a, &b, &c, isSquared, &closest, &parameter), closest,
                   parameter);
        digest.add(matCalcDistanceToLine2L(&a, &b, &c, isSquared, &closest, &parameter), closest, parameter);
        const tagPOINT2D p = random.point(), q = random.point(), r = random.point();
        digest.add(matCalcDist2D(&p, &q, isSquared), matGetScaleFactor2D(&p, &q, &r),
                   matGetScaleFactor2L(&a, &b, &r), matGetScaleFactor2LL(&a, &b, &c));
        digest.add(matCalcDistanceToSegment2D(&p, &q, &r, isSquared, &closest, &parameter), closest,
                   parameter);
        digest.add(matCalcDistanceToLine2D(&p, &q, &r, isSquared, &closest, &parameter), closest, parameter);
        const tagPOINT3D s = random.point3(), t = random.point3(), u = random.point3(), v = random.point3();
        tagPOINT3D foot{};
        digest.add(matCalcDist3D(&s, &t, isSquared), matGetScaleFactor3D(&s, &t, &u));
        digest.add(matCalcDistanceToSegment3D(&s, &t, &u, isSquared, &foot, &parameter), foot, parameter);
        digest.add(matCalcDistanceToLine3D(&s, &t, &u, isSquared, &foot, &parameter), foot, parameter);
        digest.add(matCalcDistanceToPlane(&s, &t, &u, &foot, isSquared), foot);
        digest.add(matCalcDirectedDistanceToPlane(&s, &t, &u, &v, &foot, isSquared), foot);
    }
}

void digestCrossings(Digest& digest, Random& random) {
    for (int round = 0; round < kRounds; ++round) {
        tagPOINT2D point{};
        double first = 0.0, second = 0.0;
        int isParallel = 0;
        const tagPOINT a = random.pixel(), b = random.pixel(), c = random.pixel(), d = random.pixel();
        digest.add(matIntersectLines2L(&a, &b, &c, &d, &point, &first, &second, &isParallel), point, first,
                   second);
        digest.add(matIntersectSegments2L(&a, &b, &c, &d, &point, &first, &second, &isParallel), point, first,
                   second, isParallel);
        tagPOINT2D p = random.point(), q = random.point();
        const tagPOINT2D r = random.point(), s = random.point();
        digest.add(matIntersectLines2D(&p, &q, &r, &s, &point, &first, &second, &isParallel), point, first,
                   second);
        digest.add(matIntersectSegments2D(&p, &q, &r, &s, &point, &first, &second, &isParallel), point, first,
                   second, isParallel);
        const int box[] = {-20, -10, 20, 10};
        tagPOINT2D other{};
        digest.add(matIntersectLineAndEllipse(box, &p, &q, &point, &other), point, other);
        tagMAT_RECT2D rect{-40.0, -30.5, 60.0, 12.0};
        double near2[2] = {}, far2[2] = {};
        digest.add(matIntersectLineAndEllipse2D(&rect, &p.x, &q.x, near2, far2), near2, far2);
        const tagPOINT3D t = random.point3(), u = random.point3(), v = random.point3(), w = random.point3();
        tagPOINT3D solid{};
        digest.add(matIntersectLines3D(&t, &u, &v, &w, &solid, &first, &second, &isParallel), solid,
                   isParallel);
    }
}

void digestSimplices(Digest& digest, Random& random) {
    double cuboid[6] = {};
    digest.add(matSetMinimumCuboid(cuboid));
    tagMAT_DISTANCE record{};
    digest.add(matInitDistance(&record, 0.5, 2.0));
    for (int round = 0; round < kRounds; ++round) {
        const tagPOINT a = random.pixel(), b = random.pixel(), c = random.pixel();
        digest.add(matCalcSignedAreaOfTriangle2P(&a, &b, &c));
        digest.add(matCompareDistance(&record, a, b, matCalcDist(&a, &b, 0)), record.shortestFrom,
                   record.shortestTo, record.shortestDistance, record.longestFrom, record.longestTo,
                   record.longestDistance, record.meanDistance, record.count);
        const tagPOINT2D p = random.point(), q = random.point(), r = random.point();
        digest.add(matCalcSignedAreaOfTriangle2D(&p, &q, &r));
        const tagPOINT3D s = random.point3(), t = random.point3(), u = random.point3(), v = random.point3();
        tagPOINT3D center{};
        digest.add(matCalcUnsignedAreaOfTriangle(&s, &t, &u),
                   matCalcSignedVolumeOfTetrahedron(&s, &t, &u, &v));
        digest.add(matCalcCenterOfTetrahedron(&s, &t, &u, &v, &center, random.below(2)), center);
        digest.add(matGetBoundingCuboid(cuboid, &s), cuboid);
    }
}

void digestTransform(Digest& digest, Random& random) {
    for (int round = 0; round < kRounds; ++round) {
        double a[4][4], b[4][4], out[4][4] = {};
        random.fill(a);
        random.fill(b);
        digest.add(matMultiplyMatrix4(out, a, b), out);
        digest.add(matInvertMatrix4(out, a, random.below(2)), out);
        const double vector[4] = {random.real(), random.real(), random.real(), 1.0};
        double moved[4] = {};
        digest.add(matTransformVector4(moved, a, vector, random.below(2)), moved);
        const double x = random.real(), y = random.real(), z = random.real();
        const int fromLeft = random.below(2);
        digest.add(matSizeMatrix4(b, x, y, z, fromLeft), b);
        digest.add(matTranslateMatrix4(b, z, x, y, fromLeft), b);
        digest.add(matOrthoMatrix4(b, -1.0, x, -2.0, y, 0.5, z, 1 - fromLeft), b);
        digest.add(matCalcDistanceOfMatrices4(a, b), matCalcAbsoluteMaxOfMatrix4(b));
        double left = 0.0, top = 0.0, right = 0.0, bottom = 0.0;
        digest.add(matCalcAffinImageSize(640.0, 480.0, a, &left, &top, &right, &bottom), left, top, right,
                   bottom);
    }
}

/// A closed walk around the origin with `count` corners, not always simple.
std::vector<tagPOINT> outline(Random& random, int count) {
    static constexpr int kDirections[8][2] = {{4, 0},  {3, 3},   {0, 4},  {-3, 3},
                                              {-4, 0}, {-3, -3}, {0, -4}, {3, -3}};
    std::vector<tagPOINT> points;
    for (int i = 0; i < count; ++i) {
        const int* direction = kDirections[i * 8 / count];
        const int radius = 5 + random.below(40);
        points.push_back({direction[0] * radius + random.below(9), direction[1] * radius + random.below(9)});
    }
    points.push_back(points.front());
    return points;
}

void digestOutline(Digest& digest, Random& random, std::vector<tagPOINT>& points) {
    const auto count = static_cast<DWORD>(points.size());
    tagPOINT* first = points.data();
    const int isClosed = random.below(2);
    digest.add(polyIsValid(first, count), polyGetType(first, count), polyCalcAreaExact(first, count),
               polyCalcLength(first, count, isClosed, random.below(2)));
    tagPOINT2D place{};
    digest.add(polyCalcCenterOfGravity(first, count, &place), place);
    RECT rect{};
    polyGetBoundingRect(first, count, &rect);
    digest.add(static_cast<int>(rect.left), static_cast<int>(rect.top), static_cast<int>(rect.right),
               static_cast<int>(rect.bottom));
    for (int test = 0; test < 8; ++test) {
        const tagPOINT point{random.below(300) - 150, random.below(300) - 150};
        DWORD index = 0;
        double fraction = 0.0;
        digest.add(polyIsPointInside(first, count, &point));
        digest.add(
            polyCalcDistance(first, count, isClosed, &point, random.below(2), &place, &index, &fraction),
            place, index, fraction);
        digest.add(polyCalcPoint(first, count, isClosed, index, fraction, &place), place);
        double slope = 0.0, intercept = 0.0;
        DWORD orientation = 0;
        digest.add(polyCalcLocalRegressionLine(first, count, index, 2, 0, &slope, &intercept, &orientation),
                   slope, intercept, orientation);
    }
}

void digestPolygon(Digest& digest, Random& random) {
    for (int round = 0; round < kRounds / 20; ++round) {
        std::vector<tagPOINT> points = outline(random, 8 + random.below(60));
        std::vector<tagPOINT> other = outline(random, 8 + random.below(20));
        digestOutline(digest, random, points);
        const auto count = static_cast<DWORD>(points.size());
        digest.add(polyGetRelativePosition(points.data(), count, 1, other.data(),
                                           static_cast<DWORD>(other.size()), 1));
        HGLOBAL handle = polyApplyPointDistance(polyCopy(points.data(), count, 1), random.below(30) * 0.5);
        digest.addPolygon(handle);
        polyFree(handle);
        const double scaleX = random.real() * 0.1, scaleY = random.real() * 0.1;
        const int dx = random.integer(), dy = random.integer();
        digest.add(polyScale(points.data(), count, scaleX, scaleY));
        digest.add(polyTranslate(points.data(), count, dx, dy));
        digest.add(polyReverseOrder(points.data(), count));
        const DWORD left = polyRemoveDoublePointsEx(points.data(), count, 3.0);
        digest.add(left);
        for (DWORD i = 0; i < left; ++i)
            digest.add(points[i]);
    }
}

void digestCurves(Digest& digest, Random& random) {
    for (int round = 0; round < kRounds / 40; ++round) {
        const std::vector<tagPOINT> points = outline(random, 8 + random.below(40));
        const auto count = static_cast<DWORD>(points.size() - static_cast<std::size_t>(random.below(2)));
        HGLOBAL source = polyCopy(points.data(), count, 0);
        unsigned int error = 0;
        const double step = 0.25 + random.below(20) * 0.5;
        const double cornerFactor = random.below(3) * 0.5;
        HGLOBAL curve = polyCalcInterpolatingCurve(source, step, cornerFactor, &error);
        digest.add(static_cast<int>(error));
        digest.addPolygon(curve);
        polyFree(curve);
        curve = polyCalcFittingCurve(source, step, 3 + random.below(3), &error);
        digest.add(static_cast<int>(error));
        digest.addPolygon(curve);
        polyFree(curve);
        polyFree(source);
    }
}

/// The samples themselves, which the polygon forms cut to pixels.
void digestCurveSamples(Digest& digest, Random& random) {
    struct Points {
        std::vector<tagPOINT2D> source;
        Digest* digest;
    };
    const auto read = [](double** rows, unsigned int maximal, unsigned int, void* user, void*) {
        const auto& source = static_cast<Points*>(user)->source;
        const auto count = static_cast<unsigned int>(source.size()) < maximal
                               ? static_cast<unsigned int>(source.size())
                               : maximal;
        for (unsigned int i = 0; i < count; ++i) {
            rows[i][0] = source[i].x;
            rows[i][1] = source[i].y;
        }
        return count;
    };
    const auto write = [](double** rows, unsigned int count, unsigned int, void* user, void*) {
        for (unsigned int i = 0; i < count; ++i)
            static_cast<Points*>(user)->digest->add(rows[i][0], rows[i][1]);
        return 1U;
    };
    for (int round = 0; round < kRounds / 40; ++round) {
        Points points{{}, &digest};
        const int count = 5 + random.below(30);
        for (int i = 0; i < count; ++i)
            points.source.push_back(random.point());
        if (random.below(2) != 0) points.source.push_back(points.source.front());
        const auto most = static_cast<unsigned int>(points.source.size());
        digest.add(static_cast<int>(
            matInterpolatingCurve(most, read, write, &points, nullptr, 2, 7.5, random.below(3) * 0.5)));
        digest.add(static_cast<int>(
            matFittingCurve(most, read, write, &points, nullptr, 2, 7.5, 3 + random.below(3))));
    }
}

void digestMoments(Digest& digest, Random& random) {
    for (int round = 0; round < kRounds / 4; ++round) {
        // Any bytes as integers of every type, and numbers as doubles; now and then with sums beyond 2^53.
        const int count = 1 + random.below(400);
        std::vector<std::uint64_t> x, y;
        std::vector<double> numbers;
        for (int i = 0; i < count; ++i) {
            x.push_back(random.bits());
            y.push_back(random.bits());
            numbers.push_back(random.real() * (round % 50 == 0 ? 1e8 : 1.0));
        }
        CMatMomentEvaluator moments;
        CMatCorrelationEvaluator correlation;
        digest.add(moments.AddValues(numbers.data(), count));
        for (unsigned int type = 0; type < 7; ++type) {
            const int values = type < 5 ? 2 * count : count;
            digest.add(moments.AddValues(x.data(), values, type));
            digest.add(correlation.AddValuePairs(x.data(), y.data(), values, type));
        }
        digest.add(moments.GetMin(), moments.GetMax(), moments.GetMean(), moments.GetVariance());
        digest.add(moments.GetStdDev(), moments.GetCount(), correlation.ComputeCorrelation());
        auto* words = reinterpret_cast<unsigned short*>(x.data());
        CMatCorrelationEvaluator whole;
        digest.add(whole.AddValuePairs(words, words + 1, 4 * count - 1));
        digest.add(whole.ComputeCorrelation());
    }
}

void digestRepair(Digest& digest, Random& random) {
    for (int round = 0; round < kRounds / 20; ++round) {
        std::vector<tagPOINT> points;
        const int size = 3 + random.below(round % 10 == 0 ? 120 : 20);
        points.reserve(static_cast<std::size_t>(size));
        for (int i = 0; i < size; ++i)
            points.push_back(random.pixel());
        const auto count = static_cast<DWORD>(points.size());
        const int closed = random.below(2);
        DWORD first = 0, second = 0;
        digest.add(polyIsSimple(points.data(), count, closed, &first, &second));
        digest.add(first, second);
        const auto addRepaired = [&](DWORD (*repair)(tagPOINT*, DWORD, int)) {
            std::vector<tagPOINT> work = points;
            work.push_back(points.front());
            const DWORD left = repair(work.data(), count, closed);
            digest.add(left);
            for (DWORD i = 0; i < left && i < count; ++i)
                digest.add(work[i]);
        };
        addRepaired([](tagPOINT* p, DWORD n, int flag) { return polyMakeSimpleEx(p, n, flag, 1000000000); });
        addRepaired([](tagPOINT* p, DWORD n, int flag) { return polyRemoveStings(p, n, flag, 6.0); });
        addRepaired([](tagPOINT* p, DWORD n, int) { return polyReducePoints(p, n, 40); });
        addRepaired([](tagPOINT* p, DWORD n, int) { return polyReducePointsEx(p, n, 4.0, 3); });
        addRepaired([](tagPOINT* p, DWORD n, int) { return polyConvexHull(p, n); });
        if (count < 30)
            addRepaired([](tagPOINT* p, DWORD n, int) { return polySeperateTouchingSegments(p, n); });
    }
}

/// Adds the rows of an array.
void addRows(Digest& digest, void** rows, unsigned int width, unsigned int height, unsigned int type) {
    const unsigned int size = matCvtArrayTypeToSize2v(type);
    for (unsigned int y = 0; y < height; ++y) {
        unsigned char* row = nullptr;
        std::memcpy(&row, reinterpret_cast<const unsigned char*>(rows) + 8 * std::size_t{y}, sizeof row);
        for (std::size_t x = 0; x < width; ++x) {
            std::uint64_t element = 0;
            std::memcpy(&element, row + x * size, size);
            digest.add(element);
        }
    }
}

void digestImages(Digest& digest, Random& random) {
    for (int round = 0; round < 200; ++round) {
        const unsigned int type = 1 + static_cast<unsigned int>(round) % 10;
        const unsigned int width = 1 + static_cast<unsigned int>(random.below(40));
        const unsigned int height = 1 + static_cast<unsigned int>(random.below(30));
        const unsigned int newWidth = 1 + static_cast<unsigned int>(random.below(60));
        const unsigned int newHeight = 1 + static_cast<unsigned int>(random.below(60));
        void* data = nullptr;
        void** floats = matAllocArray2v(width, height, 7, 1, &data);
        for (std::size_t i = 0; i < std::size_t{width} * height; ++i) {
            const auto value = static_cast<float>(random.real());
            std::memcpy(static_cast<unsigned char*>(data) + 4 * i, &value, sizeof value);
        }
        void** image = matAllocArray2v(width, height, type, 1, nullptr);
        auto* floatRows = reinterpret_cast<float**>(floats);
        digest.add(matConvertArrayFromFloat2v(floatRows, image, width, height, type));
        addRows(digest, image, width, height, type);
        const double scale = random.real() / 50.0;
        const double bias = random.real();
        digest.add(matTransformArray2v(image, width, height, type, 1.5, scale, bias));
        const double low = random.real();
        digest.add(matClampArray2v(image, width, height, type, low, low + 100.0));
        for (const unsigned int flags : {1U, 2U, 4U}) {
            void** zoomed = matAllocArray2v(newWidth, newHeight, type, 1, nullptr);
            digest.add(matZoomArray2v(width, height, image, newWidth, newHeight, zoomed, type, flags));
            addRows(digest, zoomed, newWidth, newHeight, type);
            double min[4] = {}, max[4] = {}, mean[4] = {}, deviation[4] = {};
            digest.add(matGetRangeOfArray2v(zoomed, type, 1, nullptr, 0, newWidth, newHeight, min, max, mean,
                                            deviation),
                       min, max, mean, deviation);
            matFreeArray2v(zoomed);
        }
        digest.add(matConvertArrayToFloat2v(image, floatRows, width, height, type, round % 2));
        addRows(digest, floats, width, height, 7);
        void** words = matAllocArray2v(width, height, 4, 1, nullptr);
        digest.add(matConvertArrayFromFloat2v(floatRows, words, width, height, 4));
        tagPOINT peak = {};
        double mean = 0.0;
        digest.add(matFindGlobalPeak2w(reinterpret_cast<unsigned short**>(words), static_cast<int>(width),
                                       static_cast<int>(height), random.below(6), &peak, &mean),
                   peak, mean);
        matFreeArray2v(words);
        matFreeArray2v(image);
        matFreeArray2v(floats);
    }
}

void digestPieces(Digest& digest, Random& random) {
    for (int round = 0; round < kRounds / 20; ++round) {
        const std::vector<tagPOINT> points = outline(random, 8 + random.below(40));
        const auto count = static_cast<DWORD>(points.size());
        const int closed = random.below(2);
        const double tolerance = random.below(5) * 1.5;
        const tagPOINT cut[] = {random.pixel(), random.pixel(), random.pixel()};
        void* pieces[8] = {};
        digest.add(polySplit(points.data(), count, closed, tolerance, cut, 3, &pieces[0], &pieces[1]));
        for (int i = 0; i <= closed; ++i) {
            digest.addPolygon(pieces[i]);
            polyFree(pieces[i]);
        }
        tagPOLY_POSITION positions[6];
        for (tagPOLY_POSITION& position : positions) {
            position.index = static_cast<DWORD>(random.below(static_cast<int>(count) - 1));
            position.fraction = random.below(40) * 0.025;
        }
        const DWORD positionCount = polySortPositions(positions, 6, 1);
        DWORD number = 0;
        digest.add(polyDecompose(points.data(), count, closed, tolerance, positions, positionCount, pieces, 8,
                                 &number));
        digest.add(number);
        for (DWORD i = 0; i < number; ++i) {
            digest.addPolygon(pieces[i]);
            polyFree(pieces[i]);
        }
    }
}

/// Points of doubles, some of them in one line, repeated, or one with another within the tolerance.
std::vector<tagPOINT2D> outline2D(Random& random, int count) {
    std::vector<tagPOINT2D> points{random.point()};
    while (static_cast<int>(points.size()) < count) {
        const tagPOINT2D last = points.back();
        switch (random.below(10)) {
            case 0:
                points.push_back({last.x + random.below(3) * 5e-8, last.y});
                break;
            case 1:
                points.push_back(
                    points[static_cast<std::size_t>(random.below(static_cast<int>(points.size())))]);
                break;
            default:
                points.push_back(random.point());
        }
    }
    if (random.below(2) == 0) points.push_back(points.front());
    return points;
}

void digestOutlines2D(Digest& digest, Random& random) {
    for (int round = 0; round < kRounds / 20; ++round) {
        const std::vector<tagPOINT2D> points = outline2D(random, 3 + random.below(round % 10 == 0 ? 80 : 8));
        const std::vector<tagPOINT2D> other = outline2D(random, 3 + random.below(6));
        const auto count = static_cast<DWORD>(points.size());
        const int closed = random.below(2);
        DWORD first = 0, second = 0;
        digest.add(poly2dIsSimple(points.data(), count, closed, &first, &second), first, second);
        digest.add(poly2dGetRelativePosition(points.data(), count, closed, other.data(),
                                             static_cast<DWORD>(other.size()), random.below(2)));
        for (int test = 0; test < 4; ++test) {
            const tagPOINT2D point = random.point();
            tagPOINT2D place{};
            DWORD index = 0;
            double fraction = 0.0;
            digest.add(poly2dIsPointInside(points.data(), count, &point));
            digest.add(poly2dCalcDistance(points.data(), count, closed, &point, random.below(2), &place,
                                          &index, &fraction),
                       place, index, fraction);
        }
        digest.add(poly2dCalcLength(points.data(), count, closed, random.below(2)),
                   poly2dGetMiniVecCount(points.data(), count, 1, count - 1, closed));
        const auto addChanged = [&](DWORD (*change)(tagPOINT2D*, DWORD, int)) {
            std::vector<tagPOINT2D> work = points;
            digest.add(change(work.data(), count, closed));
            for (const tagPOINT2D& point : work)
                digest.add(point);
        };
        addChanged([](tagPOINT2D* p, DWORD n, int flag) { return poly2dMakeSimpleEx(p, n, flag, 1e9); });
        addChanged([](tagPOINT2D* p, DWORD n, int) { return poly2dRemoveDoublePoints(p, n); });
    }
}

/// The address of a double of a volume that the library made.
unsigned char* doubleAt(void*** volume, std::size_t x, std::size_t y, std::size_t z) {
    unsigned char* row = nullptr;
    std::memcpy(&row, reinterpret_cast<const unsigned char*>(volume[z]) + 8 * y, sizeof(row));
    return row + 8 * x;
}

/// Volumes of the types 1 to 8, turned into each other and resampled. The blur takes part with kernels of one tap.
void digestVolumes(Digest& digest, Random& random) {
    constexpr unsigned int kWidth = 11;
    constexpr unsigned int kHeight = 6;
    constexpr unsigned int kDepth = 5;
    for (int round = 0; round < kRounds / 20; ++round) {
        const auto type = static_cast<unsigned int>(1 + random.below(8));
        void*** numbers = matAllocArray3v(kWidth, kHeight, kDepth, 8, 1, nullptr);
        void*** source = matAllocArray3v(kWidth, kHeight, kDepth, type, 1, nullptr);
        void*** result = matAllocArray3v(kWidth, kHeight, kDepth, type, 1, nullptr);
        auto*** const doubles = reinterpret_cast<double***>(numbers);
        const double range = random.below(2) == 0 ? 3.0 : 6e7;
        for (std::size_t i = 0; i < std::size_t{kWidth} * kHeight * kDepth; ++i) {
            const double value = random.real() * range;
            std::memcpy(doubleAt(numbers, i % kWidth, i / kWidth % kHeight, i / kWidth / kHeight), &value,
                        sizeof(value));
        }
        digest.add(matConvertFromDouble3v(doubles, source, kWidth, kHeight, kDepth, type, 1));
        double matrix[4][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};
        for (int row = 0; row < 3; ++row) {
            for (double& entry : matrix[row])
                entry += random.real() * 0.005;
        }
        DWORD flags = random.below(2) == 0 ? 0 : 1;
        if (random.below(4) == 0) flags |= 0x80000000U;
        digest.add(matAffinTransformArray3v(kWidth, kHeight, kDepth, source, kWidth, kHeight, kDepth, result,
                                            type, matrix, flags));
        unsigned int size[] = {kWidth, kHeight, kDepth};
        double sigma[] = {0.0, 0.5, 0.0};
        double radiusFactor[] = {1.0, 1.0, 1.0};
        digest.add(matGaussianBlurFilter3v(result, size, type, 1, nullptr, sigma, radiusFactor,
                                           random.below(2), nullptr, nullptr));
        digest.add(matConvertToDouble3v(doubles, result, kWidth, kHeight, kDepth, type, 1));
        for (std::size_t i = 0; i < std::size_t{kWidth} * kHeight * kDepth; ++i) {
            double value = 0.0;
            std::memcpy(&value, doubleAt(numbers, i % kWidth, i / kWidth % kHeight, i / kWidth / kHeight),
                        sizeof(value));
            digest.add(value);
        }
        double stats[4] = {};
        digest.add(matGetRangeOfArray3v(result, type, 1, kWidth, kHeight, kDepth, stats, stats + 1, stats + 2,
                                        stats + 3));
        digest.add(stats);
        matFreeArray3v(numbers);
        matFreeArray3v(source);
        matFreeArray3v(result);
    }
}

/// Least squares, least deviations and least distance, of clouds around tilted lines and planes with some outliers.
void digestLineFits(Digest& digest, Random& random) {
    for (int round = 0; round < kRounds / 10; ++round) {
        const int count = random.below(round % 50 == 0 ? 6000 : 60);
        const double tiltX = random.real() * 0.01;
        const double tiltY = random.real() * 0.01;
        std::vector<double> x, y;
        std::vector<tagPOINT2D> flat(1);
        std::vector<tagPOINT3D> solid(1);
        for (int i = 0; i < count; ++i) {
            const tagPOINT2D place = random.point();
            const double off = random.below(5) == 0 ? random.real() : random.real() * 0.01;
            x.push_back(round % 2 == 0 ? place.x : tiltX * place.x + off);
            y.push_back(round % 2 == 0 ? tiltX * place.x + off : place.x);
            flat.push_back({x.back(), y.back()});
            solid.push_back({place.x, place.y, tiltX * place.x + tiltY * place.y + off});
        }
        const auto n = static_cast<unsigned int>(count);
        double slope = 0.0, intercept = 0.0, mean = 0.0, deviation = 0.0;
        unsigned int flag = 0;
        int yOfX = 0;
        digest.add(matRegressionLine(x.data(), y.data(), n, 0.0, &slope, &intercept), slope, intercept);
        digest.add(matCalcRegressionLine(x.data(), y.data(), n, 1.0, &slope, &intercept, &flag), slope,
                   intercept);
        digest.add(matRobustLineFit(x.data(), y.data(), n, &slope, &intercept, &yOfX), slope, intercept);
        digest.add(static_cast<int>(flag), yOfX);
        tagPOINT2D middle{}, direction{};
        digest.add(matFittingLineEx(flat.data() + 1, n, &middle, &direction), middle, direction);
        tagPOINT3D centre{}, normal{};
        const tagPOINT3D scale{1.0, 1.0, 0.5};
        digest.add(matRegressionPlane(solid.data() + 1, n, round % 3 == 0 ? &scale : nullptr, &centre,
                                      &normal, nullptr, &mean, &deviation),
                   centre, normal, mean, deviation);
    }
}

void digestSolvers(Digest& digest, Random& random) {
    for (int round = 0; round < kRounds / 10; ++round) {
        const int n = 1 + random.below(7);
        CDoubleMatrix matrix(n, n);
        CDoubleMatrix sides(n, 2);
        for (int row = 0; row < n; ++row) {
            for (int column = 0; column < n; ++column)
                matrix(row, column) = random.real();
            sides(row, 0) = random.real();
            sides(row, 1) = random.real();
        }
        CDoubleMatrix copy(matrix);
        digest.add(matGaussJordanElimination(matrix.GetMatrixPtr(1, 1), n, sides.GetMatrixPtr(1, 1), 2) ? 1
                                                                                                        : 0);
        digest.add(matSolveLinearEquation(copy.GetMatrixPtr(0, 0), sides.GetRow(0), n) ? 1 : 0);
        for (int row = 0; row < n; ++row) {
            for (int column = 0; column < n; ++column)
                digest.add(matrix(row, column), copy(row, column));
            digest.add(sides(row, 0), sides(row, 1));
        }
        double value = 0.0;
        matPolynomEval(matrix.GetData(), n * n, random.real() / 100.0, value);
        digest.add(value, static_cast<DWORD>(matCalcGreatestCommonDivisor(
                              static_cast<DWORD>(random.below(10000)), static_cast<DWORD>(n))));
        const auto numerator = static_cast<std::int64_t>(random.bits());
        digest.add(matConvertRationalToDoublei64(numerator, n));
        digest.add(matConvertRationalToDoubleu64(random.bits(), static_cast<std::uint64_t>(numerator)));
    }
}

void digestCurveTools(Digest& digest, Random& random) {
    for (int round = 0; round < kRounds / 40; ++round) {
        const int size = 2 + random.below(40);
        const int count = 1 + random.below(300);
        std::vector<double> pattern(static_cast<std::size_t>(size));
        std::vector<double> signal(static_cast<std::size_t>(size + count - 1));
        std::vector<double> result(signal.size());
        for (double& sample : pattern)
            sample = random.real();
        for (double& sample : signal)
            sample = random.real();
        void* handle = fnrInitCorrelation(pattern.data(), size);
        digest.add(fnrDoCorrelation(handle, signal.data(), static_cast<unsigned int>(signal.size()),
                                    result.data(), count));
        fnrExitCorrelation(&handle);
        for (const double value : result)
            digest.add(value);
        const int length = size + count - 1;
        const int isCircular = random.below(2);
        unsigned int rising = static_cast<unsigned int>(length);
        unsigned int falling = 0;
        digest.add(
            fnrFindZeroPoint(signal.data(), length, result.data(), &rising, nullptr, &falling, isCircular));
        digest.add(static_cast<int>(rising), static_cast<int>(falling));
        fnrDerivate(signal.data(), signal.data(), length, isCircular);
        for (const double value : signal)
            digest.add(value);
        for (const double value : result)
            digest.add(value);
    }
}

void addValues(Digest& digest, const std::vector<double>& values) {
    for (const double value : values)
        digest.add(value);
}

void digestSmoothing(Digest& digest, Random& random) {
    for (int round = 0; round < kRounds / 20; ++round) {
        const int count = 1 + random.below(300);
        const auto n = static_cast<unsigned int>(count);
        std::vector<double> signal, out(n);
        for (int i = 0; i < count; ++i)
            signal.push_back(random.real());
        for (unsigned int width = 1; width <= 5; ++width) {
            digest.add(static_cast<DWORD>(
                matSavitzkyGolay(signal.data(), n, out.data(), width, width % 3, random.below(2))));
            addValues(digest, out);
        }
        digest.add(static_cast<DWORD>(matMeanValue(signal.data(), count, out.data(), random.below(20))));
        addValues(digest, out);
        const auto rounds = 1 + static_cast<unsigned int>(random.below(3));
        const auto gap = static_cast<unsigned int>(random.below(12));
        digest.add(static_cast<DWORD>(matMeanEnvelope(signal.data(), n, out.data(), rounds, gap)));
        addValues(digest, out);
        double minimum = 0.0, maximum = 0.0, mean = 0.0;
        digest.add(matGetRange(signal.data(), n, &minimum, &maximum, &mean));
        digest.add(minimum, maximum, mean);
        digest.add(matLinearCorrection(signal.data(), &mean, n, 1.25, -0.5));
        digest.add(mean);
        matMapFFTData(signal.data(), out.data(), out.data(), n, 2);
        addValues(digest, out);
    }
}

void digestResampling(Digest& digest, Random& random) {
    for (int round = 0; round < kRounds / 20; ++round) {
        const int count = 3 + random.below(40);
        const int outCount = 2 + random.below(150);
        const auto n = static_cast<unsigned int>(count);
        const auto outN = static_cast<unsigned int>(outCount);
        std::vector<double> x, y, out(outN);
        for (int i = 0; i < count; ++i) {
            x.push_back((i == 0 ? 0.0 : x.back()) + 0.001 + static_cast<double>(random.below(1000)));
            y.push_back(random.real());
        }
        digest.add(matAkima(y.data(), n, out.data(), outCount));
        addValues(digest, out);
        digest.add(
            matBSpline(y.data(), n, out.data(), outCount, 1 + static_cast<unsigned int>(random.below(6))));
        addValues(digest, out);
        digest.add(static_cast<DWORD>(
            matInterpolateIntensityCurve(x.data(), y.data(), n, -80.0, 90.0, out.data(), outN)));
        addValues(digest, out);

        std::vector<unsigned char> source, target(outN);
        for (int i = 0; i < count; ++i)
            source.push_back(static_cast<unsigned char>(random.below(256)));
        const void* sourceRow = source.data();
        void* targetRow = target.data();
        digest.add(matHorzStretchImage(n, 1, 1, &sourceRow, outN, &targetRow));
        for (const unsigned char pixel : target)
            digest.add(static_cast<int>(pixel));

        std::vector<unsigned char> bytes(sizeof(tagMINIVEC) + n);
        auto* chain = reinterpret_cast<tagMINIVEC*>(bytes.data());
        chain->count = n;
        for (int i = 0; i < count; ++i)
            bytes[offsetof(tagMINIVEC, codes) + static_cast<std::size_t>(i)] =
                static_cast<unsigned char>(random.below(8));
        digest.add(miniCalcInnerPerimeter(chain, 1.0, 1.25));
        digest.add(miniCalcOuterPerimeter(chain, 1.0, 1.25));
    }
}

void digestCurveFits(Digest& digest, Random& random) {
    for (int round = 0; round < kRounds / 40; ++round) {
        const int count = 4 + random.below(20);
        std::vector<double> x;
        std::vector<double> y;
        double position = random.real();
        for (int i = 0; i < count; ++i) {
            position += 0.25 + 0.125 * random.below(8);
            x.push_back(position);
            y.push_back(random.real() - (i - 5) * (i - 5));
        }
        math::CSVDPolyFit poly(2);
        double slope = 0.0, intercept = 0.0, residual = 0.0;
        digest.add(poly.FitRangeLine(x, y, 0, count - 1, slope, intercept, &residual));
        digest.add(slope, intercept, residual);
        math::ParaFit fit;
        const int index = random.below(count);
        digest.add(math::FitParabola(x, y, index, random.below(8), fit, poly, false, 0.01, 0.5, 1.0));
        digest.add(fit.vertexX, fit.vertexY, fit.curvature, fit.residual, fit.plateauLeftX,
                   fit.plateauRightX);
        digest.add(fit.left, fit.right);
        digest.add(fit.isPeak);

        const int points = 1 + random.below(8);
        svd::CDMatrix source(1, points, 1, 2), target(1, points, 1, 2), map(1, 3, 1, 3);
        for (int i = 1; i <= points; ++i) {
            for (int axis = 1; axis <= 2; ++axis) {
                source[i][axis] = random.real();
                target[i][axis] = random.real();
            }
        }
        digest.add(svdhomfit(target.get(), source.get(), points, map.get(), &residual));
        for (int row = 1; row <= 3; ++row) {
            for (int column = 1; column <= 3; ++column)
                digest.add(map[row][column]);
        }
        digest.add(residual);
    }
}

void digestLenses(Digest& digest, Random& random) {
    for (int round = 0; round < kRounds / 80; ++round) {
        svd::CSVDFitPoly2d lens;
        const int dots = 1 + random.below(40);
        lens.Allocate(static_cast<unsigned int>(dots),
                      svd::PolyModelId(static_cast<unsigned int>(2 + round % 8)), 640, 480);
        for (int dot = 0; dot < dots; ++dot) {
            const tagPOINT2D measured = random.point();
            const tagPOINT2D error = random.point();
            lens.PutCalibDot(measured.x + 300.0, measured.y + 200.0, measured.x + error.x * 0.01 + 300.0,
                             measured.y + error.y * 0.01 + 200.0);
        }
        svd::CSVDFitPoly2d::LensDistortionParams params;
        digest.add(lens.Fit(params));
        for (const double coefficient : params.xCoefficients)
            digest.add(coefficient);
        for (const double coefficient : params.yCoefficients)
            digest.add(coefficient);
        for (int i = 0; i < 20; ++i) {
            const tagPOINT2D point = random.point();
            tagPOINT2D result{};
            lens.Predict(params, point.x + 300.0, point.y + 200.0, result.x, result.y);
            digest.add(result);
        }
    }
}

void digestAlignments(Digest& digest, Random& random) {
    for (int round = 0; round < kRounds / 80; ++round) {
        const int items = 1 + random.below(24);
        const int statements = random.below(2 * items + 1);
        svd::CSVDGlobAln alignment;
        alignment.Allocate(static_cast<unsigned int>(statements), static_cast<unsigned int>(items));
        for (int i = 0; i < statements; ++i) {
            const int first = random.below(items);
            const int second = random.below(items);
            const tagPOINT2D shift = random.point();
            digest.add(first == second ? alignment.PutExpected(first, shift.x, shift.y)
                                       : alignment.PutPair(first, second, shift.x, shift.y, 1.0 + i % 3));
        }
        digest.add(alignment.GlobalAlign());
        for (int i = 0; i < alignment.GetColumns(); ++i) {
            int id = 0;
            tagPOINT2D place{};
            digest.add(alignment.GetPos(i, id, place.x, place.y));
            digest.add(id);
            digest.add(place);
        }
    }
}

// Large enough for Eigen to work in blocks.
void digestMosaic(Digest& digest, Random& random) {
    constexpr int kSide = 14;
    svd::CSVDGlobAln alignment;
    alignment.Allocate(2 * kSide * kSide, kSide * kSide);
    for (int tile = 0; tile < kSide * kSide; ++tile) {
        const tagPOINT2D right = random.point();
        const tagPOINT2D below = random.point();
        if (tile % kSide != 0) alignment.PutPair(tile - 1, tile, 400.0 + right.x * 0.01, right.y * 0.01, 1.0);
        if (tile >= kSide) alignment.PutPair(tile - kSide, tile, below.x * 0.01, 300.0 + below.y * 0.01, 1.0);
    }
    digest.add(alignment.GlobalAlign());
    for (int i = 0; i < alignment.GetColumns(); ++i) {
        int id = 0;
        tagPOINT2D place{};
        digest.add(alignment.GetPos(i, id, place.x, place.y));
        digest.add(place);
    }
}

void digestFits(Digest& digest, Random& random) {
    digestCurveFits(digest, random);
    digestLenses(digest, random);
    digestAlignments(digest, random);
    digestMosaic(digest, random);
}

/// Adds what callers see of a triangulation: its edges and vertices in their order.
void addTriangulation(Digest& digest, void* handle) {
    const auto addEdge = [](tagPOINT3D* start, tagPOINT3D* end, void* user, void*) {
        static_cast<Digest*>(user)->add(*start, *end);
        return 1;
    };
    const auto addVertex = [](tagPOINT3D* vertex, void* user) {
        static_cast<Digest*>(user)->add(*vertex);
        return 1;
    };
    digest.add(matDrawDelaunay2D(handle, addEdge, 6, &digest, nullptr));
    for (const unsigned int flags : {0U, 2U}) {
        const tagMAT_RECT2D rect{-12.5, -30.0, 20.0, 8.0};
        digest.add(matEnumDelaunayPositionsInRect(handle, &rect, flags, addVertex, &digest));
    }
}

void insertAndAsk(Digest& digest, Random& random, int count, bool hasIntegers) {
    constexpr double kDefaultTolerance = 1.7976931348623157e308;
    void* handle = matInitDelaunay2D(nullptr);
    for (int i = 0; i < count; ++i) {
        tagPOINT3D point = random.point3();
        if (hasIntegers) {
            const tagPOINT pixel = random.pixel();
            point = {static_cast<double>(pixel.x), static_cast<double>(pixel.y), point.z};
        }
        const double tolerance = random.below(32) == 0 ? 0.75 : kDefaultTolerance;
        digest.add(matExtentWithIdDelaunay2D(&handle, &point, static_cast<std::uint64_t>(i % 5), tolerance));
    }
    addTriangulation(digest, handle);
    for (int i = 0; i < 60; ++i) {
        const tagPOINT3D place = random.point3();
        tagPOINT3D found = place;
        tagPOINT3D corners[3] = {};
        int isOutside = 0;
        const auto flags = static_cast<unsigned int>(random.below(16));
        digest.add(
            static_cast<int>(matFindPositionInDelaunay2DEx(handle, &found, corners, &isOutside, flags)));
        digest.add(found, corners[0], corners[1], corners[2], isOutside);
        // The nearest vertex.
        digest.add(matSetZValueOfDelaunayPosition(handle, &place, 3.0));
        if (i % 20 == 0) digest.add(matReduceDelaunay2D(&handle, &place, 2.0));
    }
    addTriangulation(digest, handle);
    matExitDelaunay2D(handle);
}

void digestTriangulation(Digest& digest, Random& random) {
    for (int round = 0; round < 24; ++round) {
        const int count = 1 + random.below(120);
        insertAndAsk(digest, random, count, round % 2 == 0);
    }
    insertAndAsk(digest, random, 2500, false);
    for (int round = 0; round < 40; ++round) {
        const int width = 1 + random.below(90);
        const int height = 1 + random.below(70);
        void* map = matAllocVoronoiMap2D(width, height);
        const int count = 1 + random.below(60);
        for (int i = 0; i < count; ++i) {
            const int x = random.below(width);
            const tagPOINT seed = i % 16 == 15 ? random.pixel() : tagPOINT{x, random.below(height)};
            digest.add(matAddPointToVoronoiMap2D(map, &seed, i * 3));
        }
        digest.add(matComputeVoronoiMap2D(map));
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                digest.add(matGetIDFromNeighborInVoronoiMap2D(map, x, y));
        matFreeVoronoiMap2D(map);
    }
}

void print(const char* family, std::uint64_t seed, void (*run)(Digest&, Random&)) {
    Digest digest;
    Random random(seed);
    run(digest, random);
    std::printf("%s %016llx\n", family, static_cast<unsigned long long>(digest.value()));
}

}  // namespace

int main() {
    print("frame", 1, digestFrame);
    print("distances", 2, digestDistances);
    print("crossings", 3, digestCrossings);
    print("simplices", 4, digestSimplices);
    print("transform", 5, digestTransform);
    print("polygon", 6, digestPolygon);
    print("curves", 7, digestCurves);
    print("curve-samples", 8, digestCurveSamples);
    print("moments", 61, digestMoments);
    print("repair", 9, digestRepair);
    print("images", 9, digestImages);
    print("pieces", 20, digestPieces);
    print("outlines-2d", 21, digestOutlines2D);
    print("volumes", 20, digestVolumes);
    print("line-fits", 12, digestLineFits);
    print("solvers", 10, digestSolvers);
    print("curve-tools", 11, digestCurveTools);
    print("smoothing", 13, digestSmoothing);
    print("resampling", 14, digestResampling);
    print("fits", 103, digestFits);
    print("triangulation", 71, digestTriangulation);
    return 0;
}
