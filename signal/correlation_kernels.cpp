// The inner loops of the normalised cross-correlation. Compiled for several instruction sets; see frame/kernels.h for
// what may be used here.
//
// Vectors run across stretches, so each stretch is summed in its own order. Lanes are some stretches apart rather
// than neighbours: the samples of a block are laid out row by row, one lane beside the other, so that every load
// is aligned and one row serves several stretches of a lane. The squares of the samples are computed once a block.
#include "signal/correlation_kernels.h"

#include "signal/lanes.h"

namespace velquad::signal::VELQUAD_KERNEL_LEVEL {

namespace {

// Most stretches that one lane takes in a block.
constexpr std::size_t kLaneStretches = 64;
// Stretches of a lane that are summed at once: twelve sums are in flight then, enough to keep the adders busy.
constexpr std::size_t kAtOnce = 4;
// Samples of the pattern between two refills of the samples under a block.
constexpr std::size_t kChunk = 128;

struct Sums {
    Lanes sum;
    Lanes squares;
    Lanes dot;
};

// What a block works on, within the first cache of the processor.
struct BlockMemory {
    Lanes samples[kChunk + kLaneStretches];  // row i, lane j: sample i of the stretch of lane j
    Lanes squared[kChunk + kLaneStretches];
    Sums sums[kLaneStretches];
};

// A block of `kLanes` times `stretches` stretches; the lanes begin `stretches` samples apart.
struct Block {
    const double* signal;
    double* result;
    std::size_t stretches;
};

void fillRows(BlockMemory& memory, const Block& block, std::size_t begin, std::size_t rows) {
    const double* const signal = block.signal + begin;
    for (std::size_t i = 0; i < rows; ++i) {
        double row[kLanes];
        for (std::size_t j = 0; j < kLanes; ++j)
            row[j] = signal[j * block.stretches + i];
        __builtin_memcpy(&memory.samples[i], row, sizeof row);
        memory.squared[i] = memory.samples[i] * memory.samples[i];
    }
}

// `stretches` is a multiple of kAtOnce.
void addChunk(BlockMemory& memory, std::size_t stretches, const double* weights, std::size_t length) {
    for (std::size_t first = 0; first < stretches; first += kAtOnce) {
        Sums sums[kAtOnce];
        for (std::size_t w = 0; w < kAtOnce; ++w)
            sums[w] = memory.sums[first + w];
        for (std::size_t k = 0; k < length; ++k) {
            const double weight = weights[k];
            for (std::size_t w = 0; w < kAtOnce; ++w) {
                const Lanes sample = memory.samples[first + k + w];
                sums[w].sum += sample;
                sums[w].squares += memory.squared[first + k + w];
                sums[w].dot += sample * weight;
            }
        }
        for (std::size_t w = 0; w < kAtOnce; ++w)
            memory.sums[first + w] = sums[w];
    }
}

void correlateBlock(const CorrelationPattern& pattern, const Block& block) {
    BlockMemory memory;
    for (std::size_t w = 0; w < block.stretches; ++w)
        memory.sums[w] = Sums{Lanes{}, Lanes{}, Lanes{}};
    for (std::size_t begin = 0; begin < pattern.count; begin += kChunk) {
        const std::size_t length = pattern.count - begin < kChunk ? pattern.count - begin : kChunk;
        fillRows(memory, block, begin, length + block.stretches - 1);
        addChunk(memory, block.stretches, pattern.values + begin, length);
    }
    const auto size = static_cast<double>(pattern.count);
    for (std::size_t w = 0; w < block.stretches; ++w) {
        const Sums& sums = memory.sums[w];
        const Lanes about = sums.squares - sums.sum / size * sums.sum;
        Lanes root{};
        for (std::size_t j = 0; j < kLanes; ++j)
            root[j] = __builtin_sqrt(about[j]);
        const Lanes quotients = about > 0.0 ? sums.dot / (root * pattern.norm) : about;
        for (std::size_t j = 0; j < kLanes; ++j)
            block.result[j * block.stretches + w] = quotients[j];
    }
}

// Correlates the pattern with one stretch.
void correlateOne(const CorrelationPattern& pattern, const double* signal, double* result) {
    double sum = 0.0;
    double squares = 0.0;
    double dot = 0.0;
    for (std::size_t k = 0; k < pattern.count; ++k) {
        const double sample = signal[k];
        sum += sample;
        squares += sample * sample;
        dot += sample * pattern.values[k];
    }
    const double about = squares - sum / static_cast<double>(pattern.count) * sum;
    *result = about > 0.0 ? dot / (__builtin_sqrt(about) * pattern.norm) : about;
}

void correlate(const CorrelationPattern& pattern, const double* signal, std::size_t count, double* result) {
    constexpr std::size_t kLeast = kLanes * kAtOnce;
    std::size_t i = 0;
    while (count - i >= kLeast) {
        const std::size_t wanted = (count - i) / kLeast * kAtOnce;
        const std::size_t stretches = wanted < kLaneStretches ? wanted : kLaneStretches;
        correlateBlock(pattern, {signal + i, result + i, stretches});
        i += kLanes * stretches;
    }
    for (; i < count; ++i)
        correlateOne(pattern, signal + i, result + i);
}

}  // namespace

extern const CorrelationKernels kCorrelationKernels;
const CorrelationKernels kCorrelationKernels = {correlate};

}  // namespace velquad::signal::VELQUAD_KERNEL_LEVEL
