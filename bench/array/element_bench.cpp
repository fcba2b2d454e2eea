// Operations on all elements of an image of 4096 x 4096, next to the loops that define them and to a plain copy of the
// bytes that they read and write. Argument: type code.
#include <benchmark/benchmark.h>

#include <cstring>
#include <random>
#include <vector>

#include "tests/support/element_reference.h"
#include "velquad/array.h"
#include "velquad/statistics.h"

namespace {

namespace reference = velquad::test::elements;
constexpr unsigned int kSize = 4096;

/// An array as the module makes it.
class Array {
  public:
    explicit Array(unsigned int type) : rows_(matAllocArray2v(kSize, kSize, type, 1, &data_)) {}
    Array(const Array&) = delete;
    Array& operator=(const Array&) = delete;
    ~Array() { matFreeArray2v(rows_); }

    template <class Table = void**>
    Table rows() const {
        return reinterpret_cast<Table>(rows_);
    }

    template <class T>
    T get(std::size_t y, std::size_t x) const {
        return reference::load<T>(reference::rowOf(rows_, y), x);
    }

    template <class T>
    void set(std::size_t y, std::size_t x, T value) {
        reference::store(reference::rowOf(rows_, y), x, value);
    }

  private:
    void* data_ = nullptr;
    void** rows_;
};

struct Image {
    unsigned int type;
    Array array;

    explicit Image(unsigned int elementType) : type(elementType), array(elementType) {
        std::mt19937 random(11);
        const std::size_t rowBytes = std::size_t{kSize} * matCvtArrayTypeToSize2v(type);
        for (std::size_t y = 0; y < kSize; ++y) {
            for (std::size_t x = 0; x < kSize; ++x) {
                const double value = std::uniform_real_distribution<double>(-300.0, 300.0)(random);
                if (type == 7) array.set(y, x, static_cast<float>(value));
                if (type == 8) array.set(y, x, value);
            }
            for (std::size_t i = 0; type != 7 && type != 8 && i < rowBytes; ++i)
                array.set(y, i, static_cast<unsigned char>(random()));
        }
    }
};

unsigned int typeOf(const benchmark::State& state) {
    return static_cast<unsigned int>(state.range(0));
}

template <class Work>
void run(benchmark::State& state, Work work) {
    work();  // New memory is touched outside of the measurement.
    for (auto _ : state) {
        work();
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kSize * kSize);
}

/// A copy of half of the bytes that an operation reads and writes: it moves as many.
void copyBytes(benchmark::State& state) {
    const auto bytes = static_cast<std::size_t>(state.range(0)) * kSize * kSize / 2;
    std::vector<unsigned char> from(bytes, 1);
    std::vector<unsigned char> to(bytes);
    run(state, [&] { std::memcpy(to.data(), from.data(), bytes); });
}
BENCHMARK(copyBytes)->DenseRange(1, 10)->Unit(benchmark::kMillisecond);

void toFloat(benchmark::State& state) {
    Image image(typeOf(state));
    Array floats(7);
    run(state, [&] {
        matConvertArrayToFloat2v(image.array.rows(), floats.rows<float**>(), kSize, kSize, image.type, 0);
    });
}

void toFloatLiteral(benchmark::State& state) {
    Image image(typeOf(state));
    Array floats(7);
    run(state,
        [&] { reference::convertToFloat(image.array.rows(), floats.rows(), kSize, kSize, image.type, 0); });
}

void fromFloat(benchmark::State& state) {
    Image floats(7);
    Array image(typeOf(state));
    run(state, [&] {
        matConvertArrayFromFloat2v(floats.array.rows<float**>(), image.rows(), kSize, kSize, typeOf(state));
    });
}

void fromFloatLiteral(benchmark::State& state) {
    Image floats(7);
    Array image(typeOf(state));
    run(state,
        [&] { reference::convertFromFloat(floats.array.rows(), image.rows(), kSize, kSize, typeOf(state)); });
}

void fill(benchmark::State& state) {
    Image image(typeOf(state));
    run(state, [&] { matClearArray2v(image.array.rows(), kSize, kSize, image.type, 77.0); });
}

void fillLiteral(benchmark::State& state) {
    Image image(typeOf(state));
    run(state, [&] { reference::clear(image.array.rows(), kSize, kSize, image.type, 77.0); });
}

void clamp(benchmark::State& state) {
    Image image(typeOf(state));
    run(state, [&] { matClampArray2v(image.array.rows(), kSize, kSize, image.type, 20.0, 200.0); });
}

void clampLiteral(benchmark::State& state) {
    Image image(typeOf(state));
    run(state, [&] { reference::clamp(image.array.rows(), kSize, kSize, image.type, 20.0, 200.0); });
}

void transform(benchmark::State& state) {
    Image image(typeOf(state));
    run(state, [&] { matTransformArray2v(image.array.rows(), kSize, kSize, image.type, -3.0, 1.01, 2.5); });
}

void transformLiteral(benchmark::State& state) {
    Image image(typeOf(state));
    run(state, [&] { reference::transform(image.array.rows(), kSize, kSize, image.type, -3.0, 1.01, 2.5); });
}

void range(benchmark::State& state) {
    Image image(typeOf(state));
    double min = 0.0;
    double max = 0.0;
    double mean = 0.0;
    double stdDev = 0.0;
    run(state, [&] {
        matGetRangeOfArray2v(image.array.rows(), image.type, 1, nullptr, 0, kSize, kSize, &min, &max, &mean,
                             &stdDev);
        benchmark::DoNotOptimize(stdDev);
    });
}

template <class T>
void addOneByOne(const Array& array, CMatMomentEvaluator& evaluator) {
    for (std::size_t y = 0; y < kSize; ++y) {
        for (std::size_t x = 0; x < kSize; ++x)
            evaluator.AddValue(static_cast<double>(array.get<T>(y, x)));
    }
}

void rangeLiteral(benchmark::State& state) {
    Image image(typeOf(state));
    run(state, [&] {
        CMatMomentEvaluator evaluator;
        switch (image.type) {
            case 1:
                addOneByOne<std::int8_t>(image.array, evaluator);
                break;
            case 2:
                addOneByOne<std::uint8_t>(image.array, evaluator);
                break;
            case 3:
                addOneByOne<std::int16_t>(image.array, evaluator);
                break;
            case 4:
                addOneByOne<std::uint16_t>(image.array, evaluator);
                break;
            case 7:
                addOneByOne<float>(image.array, evaluator);
                break;
            default:
                addOneByOne<double>(image.array, evaluator);
                break;
        }
        double stdDev = evaluator.GetStdDev();
        benchmark::DoNotOptimize(stdDev);
    });
}

void types(benchmark::internal::Benchmark* b) {
    b->Arg(2)->Arg(4)->Arg(7)->Unit(benchmark::kMillisecond);
}

void rangeTypes(benchmark::internal::Benchmark* b) {
    for (const int type : {1, 2, 3, 4, 7, 8})
        b->Arg(type);
    b->Unit(benchmark::kMillisecond);
}

BENCHMARK(toFloat)->Apply(types)->Arg(9);
BENCHMARK(toFloatLiteral)->Apply(types)->Arg(9);
BENCHMARK(fromFloat)->Apply(types);
BENCHMARK(fromFloatLiteral)->Apply(types);
BENCHMARK(fill)->Apply(types);
BENCHMARK(fillLiteral)->Apply(types);
BENCHMARK(clamp)->Apply(types);
BENCHMARK(clampLiteral)->Apply(types);
BENCHMARK(transform)->Apply(types)->Arg(9);
BENCHMARK(transformLiteral)->Apply(types)->Arg(9);
BENCHMARK(range)->Apply(rangeTypes);
BENCHMARK(rangeLiteral)->Apply(rangeTypes);

}  // namespace
