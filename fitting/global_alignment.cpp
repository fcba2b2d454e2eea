// Positions of items in the plane from displacements of pairs and from known places, by linear least squares.
//
// A statement has the same coefficients for x and for y, so the equations of both axes have one matrix: a row a
// statement, a column an item. It is decomposed once and solved for two right-hand sides. Next to one matrix for all
// equations of both axes, with twice the rows and columns, that is an eighth of the work and gives the same solution:
// the singular values are the same, each of them twice.
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

using Sides = Eigen::Matrix<double, Eigen::Dynamic, 2>;

// Tells whether the solution fulfils the normal equations.
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
Sides solveMinimumNorm(const Eigen::MatrixXd& matrix, const Sides& sides, double rounding) {
    if (matrix.size() == 0) return Sides::Zero(matrix.cols(), 2);
    // A decomposition of what is not finite is undefined.
    if (!matrix.allFinite() || !sides.allFinite())
        return Sides::Constant(matrix.cols(), 2, std::numeric_limits<double>::quiet_NaN());
    velquad::fitting::requireMemoryForDecomposition(static_cast<std::size_t>(matrix.rows()),
                                                    static_cast<std::size_t>(matrix.cols()));
    {
        Eigen::BDCSVD<Eigen::MatrixXd> decomposition(matrix, kSingularVectors);
        decomposition.setThreshold(rounding);
        Sides solution = decomposition.solve(sides);
        // Divide and conquer, as Eigen 3.4 has it, at times misses the solution of sparse systems.
        if (decomposition.info() == Eigen::Success && isLeastSquares(matrix, sides, solution, rounding))
            return solution;
    }
    Eigen::JacobiSVD<Eigen::MatrixXd> decomposition(matrix, kSingularVectors);
    decomposition.setThreshold(rounding);
    return decomposition.solve(sides);
}

double square(double value) {
    return value * value;
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

    /// The sum of squared differences of both axes' equations.
    double sumOfSquares() const {
        double sum = 0.0;
        for (const Statement& statement : statements) {
            double x = solution[2 * std::size_t{statement.minuend}];
            double y = solution[2 * std::size_t{statement.minuend} + 1];
            if (statement.hasSubtrahend()) {
                x -= solution[2 * std::size_t{statement.subtrahend}];
                y -= solution[2 * std::size_t{statement.subtrahend} + 1];
            }
            sum += square(statement.weight * x - statement.x) + square(statement.weight * y - statement.y);
        }
        return sum;
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
    const auto rows = static_cast<Eigen::Index>(record->statements.size());
    const auto columns = static_cast<Eigen::Index>(record->ids.size());
    Eigen::MatrixXd matrix = Eigen::MatrixXd::Zero(rows, columns);
    Sides sides(rows, 2);
    for (Eigen::Index row = 0; row < rows; ++row) {
        const Statement& statement = record->statements[static_cast<std::size_t>(row)];
        matrix(row, statement.minuend) = statement.weight;
        if (statement.hasSubtrahend()) matrix(row, statement.subtrahend) = -statement.weight;
        sides(row, 0) = statement.x;
        sides(row, 1) = statement.y;
    }
    // What counts as zero is told by the size of the problem that was asked for, used or not.
    const std::size_t size = 2 * std::max<std::size_t>(1, std::min(record->maxStatements, record->maxItems));
    const double rounding = static_cast<double>(size) * std::numeric_limits<double>::epsilon();
    const Sides positions = solveMinimumNorm(matrix, sides, rounding);

    std::vector<double> solution(2 * record->maxItems);
    for (std::size_t item = 0; item < record->ids.size(); ++item) {
        solution[2 * item] = positions(static_cast<Eigen::Index>(item), 0);
        solution[2 * item + 1] = positions(static_cast<Eigen::Index>(item), 1);
    }
    record->solution = std::move(solution);
    return record->sumOfSquares();
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
