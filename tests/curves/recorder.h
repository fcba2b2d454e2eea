// The two ends of a curve function: points to read and a record of all that was written.
#ifndef VELQUAD_TESTS_CURVES_RECORDER_H
#define VELQUAD_TESTS_CURVES_RECORDER_H

#include <cstddef>
#include <vector>

#include "tests/support/matrix.h"

namespace velquad::test {

/// Delivers points; the first user value of the callbacks.
struct CurvePoints {
    Rows points;
    std::size_t calls = 0;
    unsigned int maximalCount = 0;
    unsigned int dimension = 0;
    void* otherUser = nullptr;
    unsigned int claimedExtra = 0;  ///< Claims more points than were delivered.

    static unsigned int read(double** rows, unsigned int maximal, unsigned int d, void* user1, void* user2) {
        auto& self = *static_cast<CurvePoints*>(user1);
        ++self.calls;
        self.maximalCount = maximal;
        self.dimension = d;
        self.otherUser = user2;
        const std::size_t count = self.points.size() < maximal ? self.points.size() : maximal;
        for (std::size_t i = 0; i < count; ++i) {
            for (std::size_t j = 0; j < d; ++j)
                rows[i][j] = self.points[i][j];
        }
        return static_cast<unsigned int>(count) + self.claimedExtra;
    }
};

/// Keeps samples and batch sizes; the second user value.
struct CurveRecorder {
    Rows samples;
    std::vector<unsigned int> batches;
    std::size_t acceptedBatches = static_cast<std::size_t>(-1);
    void* otherUser = nullptr;

    static unsigned int write(double** rows, unsigned int count, unsigned int d, void* user1, void* user2) {
        auto& self = *static_cast<CurveRecorder*>(user2);
        self.otherUser = user1;
        self.batches.push_back(count);
        for (unsigned int i = 0; i < count; ++i)
            self.samples.emplace_back(rows[i], rows[i] + d);
        return self.batches.size() > self.acceptedBatches ? 0 : 1;
    }
};

}  // namespace velquad::test

#endif  // VELQUAD_TESTS_CURVES_RECORDER_H
