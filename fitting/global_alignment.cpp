// Positions of items in the plane from displacements of pairs and from known places, by linear least squares.
//
// The equations of both axes are one system, with two rows a statement and two columns an item, and small systems are
// solved as that. But a statement has the same coefficients for x and for y, so one matrix with a row a statement and a
// column an item serves both axes: it has the same singular values, each of them once in place of twice. Large systems
// are decomposed in this form, for two right-hand sides and an eighth of the work; the solution is the same but for
// rounding.
#include <Eigen/SVD>
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>
#include <utility>
#include <vector>

#include "fitting/working_memory.h"
#include "velquad/fitting.h"

namespace {

// One weighted equation for each axis: the difference of two positions, or one position, times the weight.
struct Statement {
    std::uint32_t minuend;
    std::uint32_t subtrahend;  // the minuend's item when only one position is spoken of
    double weight;
    double x;  // the right-hand sides, times the weight
    double y;

    bool hasSubtrahend() const { return subtrahend != minuend; }
};

// How far the gradient of a least-squares solution may be from zero, relative to the numbers it is summed from, in
// units of the rounding of doubles per unknown. Solutions that are right stay well below; wrong ones are off by many
// powers of ten.
constexpr double kGradientTolerance = 1.0;

constexpr unsigned int kSingularVectors = Eigen::ComputeThinU | Eigen::ComputeThinV;

// Right-hand sides and positions, x and y in columns of their own.
using Axes = Eigen::Matrix<double, Eigen::Dynamic, 2>;

// Systems of both axes with up to so many coefficients are solved as one: mosaics of 10 by 10 tiles.
constexpr double kMostWholeCoefficients = 0x1p17;

// Which items hang together by statements that say something, and which of these groups have no known place.
class FreeGroups {
  public:
    FreeGroups(const std::vector<Statement>& statements, std::size_t itemCount)
        : parents_(itemCount), isPlaced_(itemCount), sums_(static_cast<Eigen::Index>(itemCount), 2) {
        for (std::size_t item = 0; item < itemCount; ++item)
            parents_[item] = static_cast<std::uint32_t>(item);
        for (const Statement& statement : statements)
            if (statement.weight != 0.0) parents_[groupOf(statement.minuend)] = groupOf(statement.subtrahend);
        for (const Statement& statement : statements)
            if (statement.weight != 0.0 && !statement.hasSubtrahend())
                isPlaced_[groupOf(statement.minuend)] = 1;
    }

    // Tells whether the free groups are centred at the origin, as they are in the solution of least norm.
    bool areCentred(const Axes& positions) {
        sums_.setZero();
        for (std::uint32_t item = 0; item < parents_.size(); ++item) {
            const std::uint32_t group = groupOf(item);
            if (isPlaced_[group] == 0) sums_.row(group) += positions.row(item);
        }
        return !(sums_.array().abs() > kCentreTolerance * positions.norm()).any();
    }

  private:
    // Solutions that are centred differ from it by rounding, others by as much as their size.
    static constexpr double kCentreTolerance = 1e-9;

    std::uint32_t groupOf(std::uint32_t item) {
        while (parents_[item] != item)
            item = parents_[item] = parents_[parents_[item]];
        return item;
    }

    std::vector<std::uint32_t> parents_;  // the group of an item is the last of its parents
    std::vector<unsigned char> isPlaced_;
    Axes sums_;
};

// Tells whether the solution fulfils the normal equations.
template <typename Sides>
bool isLeastSquares(const Eigen::MatrixXd& matrix, const Sides& sides, const Sides& solution,
                    double rounding) {
    const double matrixNorm = matrix.norm();
    for (Eigen::Index axis = 0; axis < sides.cols(); ++axis) {
        const Eigen::VectorXd gradient = matrix.transpose() * (matrix * solution.col(axis) - sides.col(axis));
        const double bound = kGradientTolerance * rounding * matrixNorm *
                             (matrixNorm * solution.col(axis).norm() + sides.col(axis).norm());
        if (!(gradient.norm() <= bound)) return false;
    }
    return true;
}

// The minimum-norm least-squares solution. Singular values below `rounding` times the largest count as zero.
// `isLeastNorm(solution)` tells whether a least-squares solution is the one of minimum norm.
template <typename Sides, typename IsLeastNorm>
Sides solveMinimumNorm(const Eigen::MatrixXd& matrix, const Sides& sides, double rounding,
                       const IsLeastNorm& isLeastNorm) {
    if (matrix.size() == 0) return Sides::Zero(matrix.cols(), sides.cols());
    // A decomposition of what is not finite is undefined.
    if (!matrix.allFinite() || !sides.allFinite())
        return Sides::Constant(matrix.cols(), sides.cols(), std::numeric_limits<double>::quiet_NaN());
    velquad::fitting::requireMemoryForDecomposition(static_cast<std::size_t>(matrix.rows()),
                                                    static_cast<std::size_t>(matrix.cols()));
    {
        Eigen::BDCSVD<Eigen::MatrixXd> decomposition(matrix, kSingularVectors);
        decomposition.setThreshold(rounding);
        Sides solution = decomposition.solve(sides);
        // Divide and conquer, as Eigen 3.4 has it, at times misses the solution of sparse systems.
        if (decomposition.info() == Eigen::Success && isLeastSquares(matrix, sides, solution, rounding) &&
            isLeastNorm(solution))
            return solution;
    }
    Eigen::JacobiSVD<Eigen::MatrixXd> decomposition(matrix, kSingularVectors);
    decomposition.setThreshold(rounding);
    return decomposition.solve(sides);
}

}  // namespace

namespace svd {

struct CSVDGlobAln::Record {
    std::vector<Statement> statements;  // with room for all that may come
    std::vector<int> ids;               // likewise
    std::vector<double> solution;       // x and y of each item
    std::size_t maxStatements = 0;
    std::size_t maxItems = 0;
    double constraintWeightFactor = 1.0;

    bool hasRoom() const { return statements.size() < maxStatements; }

    /// The index of an item, which is new if need be; -1 when there is no room for another one.
    std::ptrdiff_t findIndex(int id) {
        const auto found = std::find(ids.begin(), ids.end(), id);
        if (found != ids.end()) return found - ids.begin();
        if (ids.size() >= maxItems) return -1;
        ids.push_back(id);
        return static_cast<std::ptrdiff_t>(ids.size()) - 1;
    }

    /// What counts as zero is told by the size of the problem that was asked for, used or not.
    double rounding() const {
        const std::size_t size = 2 * std::max<std::size_t>(1, std::min(maxStatements, maxItems));
        return static_cast<double>(size) * std::numeric_limits<double>::epsilon();
    }

    /// Solves for both axes at once. @return the sum of squared differences of all equations.
    double solveWhole() {
        Eigen::MatrixXd matrix = Eigen::MatrixXd::Zero(static_cast<Eigen::Index>(2 * maxStatements),
                                                       static_cast<Eigen::Index>(2 * maxItems));
        Eigen::VectorXd side = Eigen::VectorXd::Zero(matrix.rows());
        Eigen::Index row = 0;
        for (const Statement& statement : statements) {
            for (const auto& [axis, value] : {std::pair{0, statement.x}, std::pair{1, statement.y}}) {
                matrix(row, 2 * Eigen::Index{statement.minuend} + axis) = statement.weight;
                if (statement.hasSubtrahend())
                    matrix(row, 2 * Eigen::Index{statement.subtrahend} + axis) = -statement.weight;
                side(row++) = value;
            }
        }
        FreeGroups groups(statements, ids.size());
        Axes positions(static_cast<Eigen::Index>(ids.size()), 2);
        const Eigen::VectorXd unknowns =
            solveMinimumNorm(matrix, side, rounding(), [&](const Eigen::VectorXd& solved) {
                for (Eigen::Index item = 0; item < positions.rows(); ++item)
                    positions.row(item) << solved(2 * item), solved(2 * item + 1);
                return groups.areCentred(positions);
            });
        // The columns behind the items in use are zero, and so is what they stand for.
        std::vector<double> solved(2 * maxItems);
        std::copy_n(unknowns.data(), 2 * ids.size(), solved.begin());
        const double squares = (matrix * unknowns - side).squaredNorm();
        solution = std::move(solved);
        return squares;
    }

    /// Solves for both axes by the matrix that they share. @return as `solveWhole`.
    double solveByAxes() {
        Eigen::MatrixXd matrix = Eigen::MatrixXd::Zero(static_cast<Eigen::Index>(statements.size()),
                                                       static_cast<Eigen::Index>(ids.size()));
        Axes sides(matrix.rows(), 2);
        Eigen::Index row = 0;
        for (const Statement& statement : statements) {
            matrix(row, statement.minuend) = statement.weight;
            if (statement.hasSubtrahend()) matrix(row, statement.subtrahend) = -statement.weight;
            sides.row(row++) << statement.x, statement.y;
        }
        FreeGroups groups(statements, ids.size());
        const Axes positions = solveMinimumNorm(
            matrix, sides, rounding(), [&](const Axes& solved) { return groups.areCentred(solved); });
        std::vector<double> solved(2 * maxItems);
        for (std::size_t item = 0; item < ids.size(); ++item) {
            solved[2 * item] = positions(static_cast<Eigen::Index>(item), 0);
            solved[2 * item + 1] = positions(static_cast<Eigen::Index>(item), 1);
        }
        const double squares = (matrix * positions - sides).squaredNorm();
        solution = std::move(solved);
        return squares;
    }
};

CSVDGlobAln::CSVDGlobAln() : record(new (std::nothrow) Record) {}

CSVDGlobAln::~CSVDGlobAln() {
    delete record;
    record = nullptr;
}

bool CSVDGlobAln::Allocate(unsigned int nPairs, unsigned int nItems) {
    if (record == nullptr) return false;
    // Rows and columns of the equations of both axes; they wrap around.
    const std::uint32_t rows = (nPairs + nItems) * 2U;
    const std::uint32_t columns = nItems * 2U;
    constexpr std::uint64_t kMaxElements = std::numeric_limits<std::int64_t>::max() / sizeof(double);
    if (std::uint64_t{rows} * columns > kMaxElements) throw std::bad_alloc();
    std::vector<Statement> statements;
    std::vector<int> ids;
    statements.reserve(rows / 2);
    ids.reserve(columns / 2);
    record->statements = std::move(statements);
    record->ids = std::move(ids);
    record->maxStatements = rows / 2;
    record->maxItems = columns / 2;
    return true;
}

bool CSVDGlobAln::PutPair(int id1, int id2, double dx, double dy, double weight) {
    if (record == nullptr) return false;
    const std::ptrdiff_t first = record->findIndex(id1);
    if (first < 0) return false;
    const std::ptrdiff_t second = record->findIndex(id2);
    if (second < 0 || !record->hasRoom()) return false;
    record->statements.push_back({static_cast<std::uint32_t>(second), static_cast<std::uint32_t>(first),
                                  weight, dx * weight, dy * weight});
    return true;
}

bool CSVDGlobAln::PutFixed(int id, double x, double y, double xOffset, double yOffset, double weight) {
    if (record == nullptr || !record->hasRoom()) return false;
    const std::ptrdiff_t index = record->findIndex(id);
    if (index < 0) return false;
    record->statements.push_back({static_cast<std::uint32_t>(index), static_cast<std::uint32_t>(index),
                                  weight, (x + xOffset) * weight, (y + yOffset) * weight});
    return true;
}

bool CSVDGlobAln::PutExpected(int id, double x, double y) {
    if (record == nullptr) return false;
    return PutFixed(id, x, y, 0.0, 0.0, record->constraintWeightFactor);
}

bool CSVDGlobAln::PutConstraintWeightFactor(double factor) {
    if (record == nullptr || !(factor >= 0.0)) return false;
    record->constraintWeightFactor = factor;
    return true;
}

double CSVDGlobAln::GlobalAlign() {
    if (record == nullptr) return 0.0;
    const double rows = 2.0 * static_cast<double>(record->maxStatements);
    const double columns = 2.0 * static_cast<double>(record->maxItems);
    return rows * columns <= kMostWholeCoefficients ? record->solveWhole() : record->solveByAxes();
}

int CSVDGlobAln::GetColumns() const {
    return record == nullptr ? 0 : static_cast<int>(record->ids.size());
}

bool CSVDGlobAln::GetPos(int index, int& id, double& x, double& y) const {
    if (index < 0 || index >= GetColumns()) return false;
    const std::size_t item = static_cast<std::size_t>(index);
    const bool isSolved = 2 * item + 1 < record->solution.size();
    id = record->ids[item];
    x = isSolved ? record->solution[2 * item] : 0.0;
    y = isSolved ? record->solution[2 * item + 1] : 0.0;
    return true;
}

}  // namespace svd
