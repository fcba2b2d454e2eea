// Minimum, maximum, mean and standard deviation of the channels of an array.
//
// Running moments take whole rows at once where a channel's elements stand side by side and none is masked out. Else
// they are gathered in a small buffer first, which leaves the same bits behind.
#include "array/range.h"

#include <cstdint>
#include <cstring>

#include "array/array_2d.h"
#include "array/element.h"
#include "statistics/moments.h"
#include "velquad/array.h"

namespace velquad::array {

namespace {

using statistics::Moments;

/// What is measured: an array and which of its pixels count.
struct Measured {
    const void* rows;
    const void* mask;  ///< Rows of bytes, or null.
    unsigned int width;
    unsigned int height;
    unsigned int channels;
};

/// Gathers elements and hands them on in blocks.
template <class Value>
class Gatherer {
  public:
    explicit Gatherer(CMatMomentEvaluator& evaluator) : evaluator_(evaluator) {}

    /// Takes the elements of one channel of a row: every `stride`-th one, where the mask is not 0.
    void addRow(const unsigned char* row, std::size_t stride, const unsigned char* mask, std::size_t width) {
        for (std::size_t begin = 0; begin < width;) {
            const std::size_t room = kCapacity - count_;
            const std::size_t end = width - begin < room ? width : begin + room;
            if (mask == nullptr) {
                for (std::size_t x = begin; x < end; ++x)
                    values_[count_++] = loadElement<Value>(row, x * stride);
            } else {
                for (std::size_t x = begin; x < end; ++x) {
                    values_[count_] = loadElement<Value>(row, x * stride);
                    count_ += mask[x] != 0 ? 1 : 0;
                }
            }
            begin = end;
            if (count_ == kCapacity) flush();
        }
    }

    void flush() {
        Moments::addEach<Value>(evaluator_, values_, count_);
        count_ = 0;
    }

  private:
    static constexpr std::size_t kCapacity = 4096;

    CMatMomentEvaluator& evaluator_;
    std::size_t count_ = 0;
    Value values_[kCapacity];
};

/// Rows shorter than this are gathered into longer runs.
constexpr unsigned int kLongRow = 256;

template <class Value>
void measureChannel(const Measured& measured, unsigned int channel, CMatMomentEvaluator& evaluator) {
    const std::size_t offset = channel * sizeof(Value);
    if (measured.mask == nullptr && measured.channels == 1 && measured.width >= kLongRow) {
        for (std::size_t y = 0; y < measured.height; ++y)
            Moments::addEach<Value>(evaluator, rowAt(measured.rows, y) + offset, measured.width);
        return;
    }
    Gatherer<Value> gatherer(evaluator);
    for (std::size_t y = 0; y < measured.height; ++y) {
        const unsigned char* mask = measured.mask == nullptr ? nullptr : rowAt(measured.mask, y);
        gatherer.addRow(rowAt(measured.rows, y) + offset, measured.channels, mask, measured.width);
    }
    gatherer.flush();
}

}  // namespace

bool rangeOfFloats(const void* rows, unsigned int width, unsigned int height, double& min, double& max) {
    CMatMomentEvaluator evaluator;
    measureChannel<float>({rows, nullptr, width, height, 1}, 0, evaluator);
    if (Moments::count(evaluator) == 0) return false;
    min = Moments::min(evaluator);
    max = Moments::max(evaluator);
    return true;
}

}  // namespace velquad::array

using velquad::array::Measured;
using velquad::statistics::Moments;

extern "C" int matGetRangeOfArray2v(const void* const* rows, unsigned int type, unsigned int channels,
                                    const void* const* mask, int maskFlag, unsigned int width,
                                    unsigned int height, double* minOut, double* maxOut, double* meanOut,
                                    double* stdDevOut) {
    if (rows == nullptr) return 0;
    if (type == MAT_ARRAY_BYTE3 || type == MAT_ARRAY_BYTE4) {
        channels = type == MAT_ARRAY_BYTE3 ? 3 : 4;
        type = MAT_ARRAY_UINT8;
    }
    // Kept: a flag with a mask refuses the pixels of the mask and then all others too.
    if (mask != nullptr && maskFlag != 0) height = 0;
    const Measured measured{rows, mask, width, height, channels};
    int result = 1;
    velquad::array::dispatchScalar(type, [&]<class ElementType>(ElementType /*element*/) {
        for (unsigned int channel = 0; channel < channels; ++channel) {
            CMatMomentEvaluator evaluator;
            velquad::array::measureChannel<typename ElementType::Value>(measured, channel, evaluator);
            if (Moments::count(evaluator) == 0) {
                result = 0;
                return;
            }
            if (maxOut != nullptr) maxOut[channel] = Moments::max(evaluator);
            if (minOut != nullptr) minOut[channel] = Moments::min(evaluator);
            if (meanOut != nullptr) meanOut[channel] = Moments::mean(evaluator);
            if (stdDevOut != nullptr) stdDevOut[channel] = Moments::stdDev(evaluator);
        }
    });
    return result;
}
