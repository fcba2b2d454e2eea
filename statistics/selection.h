// The k-th smallest of an array by partitioning around medians of three: expected linear time, in place.
// Sources: C. A. R. Hoare, Algorithm 65: Find, 1961; R. Sedgewick, Implementing Quicksort Programs, 1978.
#ifndef VELQUAD_STATISTICS_SELECTION_H
#define VELQUAD_STATISTICS_SELECTION_H

#include <cstddef>
#include <utility>

namespace velquad::statistics {

/// The k-th smallest of values[1] to values[n], which are rearranged; values[0] is not used. 1 <= k <= n.
/// Numbers and infinities give the one right answer. Which of several zeros of either sign is taken, and what comes
/// of not-a-numbers, depends on the order of the values; every element stays within the range even then.
inline double kthSmallest(double* values, std::size_t n, std::size_t k) {
    const auto order = [values](std::size_t i, std::size_t j) {
        if (values[i] > values[j]) std::swap(values[i], values[j]);
    };
    std::size_t left = 1;
    std::size_t right = n;
    while (right > left + 1) {
        // The median of three goes to left + 1; the other two stop the scans at both ends.
        std::swap(values[(left + right) / 2], values[left + 1]);
        order(left, right);
        order(left + 1, right);
        order(left, left + 1);
        const double pivot = values[left + 1];
        std::size_t up = left + 1;
        std::size_t down = right;
        for (;;) {
            do
                ++up;
            while (values[up] < pivot);
            do
                --down;
            while (values[down] > pivot);
            if (down < up) break;
            std::swap(values[up], values[down]);
        }
        values[left + 1] = values[down];
        values[down] = pivot;
        if (down >= k) right = down - 1;
        if (down <= k) left = up;
    }
    if (right == left + 1) order(left, right);
    return values[k];
}

}  // namespace velquad::statistics

#endif  // VELQUAD_STATISTICS_SELECTION_H
