// The exported form of running moments.
#include "statistics/element_type.h"
#include "statistics/moments.h"

using velquad::statistics::Moments;

// The class has a virtual function; every compiler that the library is built with supports the offsets all the same.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"
constexpr bool Moments::hasPromisedLayout() {
    return offsetof(Evaluator, sum) == 8 && offsetof(Evaluator, sumOfSquares) == 16 &&
           offsetof(Evaluator, min) == 24 && offsetof(Evaluator, max) == 32 &&
           offsetof(Evaluator, count) == 40 && sizeof(Evaluator) == 48;
}
#pragma GCC diagnostic pop

namespace {

template <class T>
int addArray(CMatMomentEvaluator& evaluator, const void* values, int count) {
    if (count > 0) Moments::addAll<T>(evaluator, values, static_cast<std::size_t>(count));
    // Kept: the count is added even when nothing was read, so a negative one lowers the number of values.
    Moments::setCount(evaluator, Moments::count(evaluator) + static_cast<DWORD>(count));
    return 1;
}

}  // namespace

CMatMomentEvaluator::CMatMomentEvaluator() {
    static_assert(Moments::hasPromisedLayout());
    Moments::reset(*this);
}

CMatMomentEvaluator::CMatMomentEvaluator(const CMatMomentEvaluator& other) = default;
CMatMomentEvaluator& CMatMomentEvaluator::operator=(const CMatMomentEvaluator& other) = default;
CMatMomentEvaluator::~CMatMomentEvaluator() = default;

int CMatMomentEvaluator::Reset() {
    Moments::reset(*this);
    return 1;
}

int CMatMomentEvaluator::AddValue(double value) {
    return Moments::add(*this, value) ? 1 : 0;
}

int CMatMomentEvaluator::AddValues(double* values, int n) {
    return addArray<double>(*this, values, n);
}

int CMatMomentEvaluator::AddValues(unsigned char* values, int n) {
    return addArray<std::uint8_t>(*this, values, n);
}

int CMatMomentEvaluator::AddValues(unsigned short* values, int n) {
    return addArray<std::uint16_t>(*this, values, n);
}

int CMatMomentEvaluator::AddValues(float* values, int n) {
    return addArray<float>(*this, values, n);
}

int CMatMomentEvaluator::AddValues(void* values, int n, unsigned int typeCode) {
    const bool isKnown = velquad::statistics::withElementType(
        typeCode, [&]<class T>(std::type_identity<T> /*type*/) { addArray<T>(*this, values, n); });
    return isKnown ? 1 : 0;
}

double CMatMomentEvaluator::GetMin() {
    return Moments::min(*this);
}

double CMatMomentEvaluator::GetMax() {
    return Moments::max(*this);
}

double CMatMomentEvaluator::GetMean() {
    return Moments::mean(*this);
}

double CMatMomentEvaluator::GetVariance() {
    return Moments::variance(*this);
}

double CMatMomentEvaluator::GetStdDev() {
    return Moments::stdDev(*this);
}

DWORD CMatMomentEvaluator::GetCount() {
    return Moments::count(*this);
}
