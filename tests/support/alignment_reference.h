// Global alignment by the full system: all equations of both axes in one dense matrix, solved by one decomposition.
#ifndef VELQUAD_TESTS_SUPPORT_ALIGNMENT_REFERENCE_H
#define VELQUAD_TESTS_SUPPORT_ALIGNMENT_REFERENCE_H

#include <Eigen/SVD>
#include <algorithm>
#include <cstddef>
#include <vector>

namespace velquad::test {

/// One statement about items: `second` lies (x, y) from `first`, or, with equal ids, at (x, y).
struct AlignmentStatement {
    int first;
    int second;
    double x;
    double y;
    double weight;
};

/// The unknowns of the full system, x and y of each item in the order of first use.
class FullAlignment {
  public:
    FullAlignment(std::size_t pairRoom, std::size_t itemRoom)
        : matrix_(Eigen::MatrixXd::Zero(static_cast<Eigen::Index>(2 * (pairRoom + itemRoom)),
                                        static_cast<Eigen::Index>(2 * itemRoom))),
          side_(Eigen::VectorXd::Zero(matrix_.rows())) {}

    void put(const AlignmentStatement& statement) {
        const Eigen::Index first = 2 * index(statement.first);
        const Eigen::Index second = 2 * index(statement.second);
        matrix_(row_, first) = -statement.weight;
        matrix_(row_, second) = statement.weight;
        side_(row_) = statement.x * statement.weight;
        matrix_(row_ + 1, first + 1) = -statement.weight;
        matrix_(row_ + 1, second + 1) = statement.weight;
        side_(row_ + 1) = statement.y * statement.weight;
        row_ += 2;
    }

    template <typename Decomposition>
    Eigen::VectorXd solve() const {
        const Decomposition decomposition(matrix_, Eigen::ComputeThinU | Eigen::ComputeThinV);
        return decomposition.solve(side_);
    }

    double residual(const Eigen::VectorXd& solution) const {
        return (matrix_ * solution - side_).squaredNorm();
    }

    const std::vector<int>& ids() const { return ids_; }

  private:
    Eigen::Index index(int id) {
        const auto found = std::find(ids_.begin(), ids_.end(), id);
        if (found != ids_.end()) return found - ids_.begin();
        ids_.push_back(id);
        return static_cast<Eigen::Index>(ids_.size()) - 1;
    }

    Eigen::MatrixXd matrix_;
    Eigen::VectorXd side_;
    std::vector<int> ids_;
    Eigen::Index row_ = 0;
};

}  // namespace velquad::test

#endif  // VELQUAD_TESTS_SUPPORT_ALIGNMENT_REFERENCE_H
