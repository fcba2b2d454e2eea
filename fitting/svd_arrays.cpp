// Vectors and matrices with indices from any base, as the solver by singular values takes them.
#include <cstdint>
#include <limits>
#include <memory>
#include <new>
#include <utility>

#include "velquad/fitting.h"

namespace {

static_assert(sizeof(svd::CDVector) == sizeof(double*) + 2 * sizeof(int));
static_assert(sizeof(svd::CDMatrix) == 2 * sizeof(double*) + 4 * sizeof(int));

// A number of elements that an int does not hold is one that there is no memory for.
std::size_t checkedCount(std::int64_t count) {
    if (count < 0 || count > std::numeric_limits<std::int32_t>::max()) throw std::bad_alloc();
    return static_cast<std::size_t>(count);
}

std::size_t indexCount(int highest) {
    return checkedCount(std::int64_t{highest} + 1);
}

std::size_t elementCount(int highestRow, int highestColumn) {
    return checkedCount((std::int64_t{highestRow} + 1) * (std::int64_t{highestColumn} + 1));
}

}  // namespace

namespace svd {

CDVector::CDVector() : data(nullptr), nl(0), nh(0) {}

CDVector::CDVector(int lowest, int highest)
    : data(new double[indexCount(highest)]), nl(lowest), nh(highest) {}

// Kept: a vector that is moved from keeps its block, and the new one is empty.
CDVector::CDVector(CDVector&& /*other*/) noexcept : CDVector() {}

CDVector::~CDVector() {
    delete[] data;
}

double& CDVector::operator[](int i) {
    return data[i];
}

double* CDVector::get() {
    return data;
}

CDMatrix::CDMatrix() : rows(nullptr), data(nullptr), nrl(0), nrh(0), ncl(0), nch(0) {}

CDMatrix::CDMatrix(int lowestRow, int highestRow, int lowestColumn, int highestColumn)
    : rows(nullptr), data(nullptr), nrl(lowestRow), nrh(highestRow), ncl(lowestColumn), nch(highestColumn) {
    std::unique_ptr<double*[]> table(new double*[indexCount(highestRow)]);
    data = new double[elementCount(highestRow, highestColumn)];
    rows = table.release();
    const std::ptrdiff_t rowLength = std::ptrdiff_t{highestColumn} + 1;
    for (std::ptrdiff_t row = lowestRow < 0 ? 0 : lowestRow; row <= highestRow; ++row)
        rows[row] = data + row * rowLength;
}

CDMatrix::CDMatrix(CDMatrix&& other) noexcept
    : rows(std::exchange(other.rows, nullptr)),
      data(std::exchange(other.data, nullptr)),
      nrl(other.nrl),
      nrh(other.nrh),
      ncl(other.ncl),
      nch(other.nch) {}

CDMatrix::~CDMatrix() {
    delete[] data;
    delete[] rows;
}

double* CDMatrix::operator[](int i) {
    return rows[i];
}

double** CDMatrix::get() {
    return rows;
}

}  // namespace svd
