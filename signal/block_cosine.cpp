// The energy of an image by radial frequency, from cosine transforms of blocks of 8 by 8 pixels.
//
// N. Ahmed, T. Natarajan, K. R. Rao, "Discrete cosine transform", IEEE Transactions on Computers 23 (1974).
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "velquad/signal.h"

namespace {

constexpr int kSide = 8;
constexpr int kBins = 8;
/// A bin with less weight is empty.
constexpr double kNoWeight = 2.220446049250313e-16;

/// c(u) cos((2 x + 1) u pi / 16) with c(0) = 1 / (2 sqrt 2), else 1 / 2, rounded to single precision: by u and x.
constexpr float kBasis[kSide][kSide] = {{0.353553385F, 0.353553385F, 0.353553385F, 0.353553385F, 0.353553385F,
                                         0.353553385F, 0.353553385F, 0.353553385F},
                                        {0.490392625F, 0.415734798F, 0.277785122F, 0.0975451618F,
                                         -0.0975451618F, -0.277785122F, -0.415734798F, -0.490392625F},
                                        {0.461939752F, 0.191341713F, -0.191341713F, -0.461939752F,
                                         -0.461939752F, -0.191341713F, 0.191341713F, 0.461939752F},
                                        {0.415734798F, -0.0975451618F, -0.490392625F, -0.277785122F,
                                         0.277785122F, 0.490392625F, 0.0975451618F, -0.415734798F},
                                        {0.353553385F, -0.353553385F, -0.353553385F, 0.353553385F,
                                         0.353553385F, -0.353553385F, -0.353553385F, 0.353553385F},
                                        {0.277785122F, -0.490392625F, 0.0975451618F, 0.415734798F,
                                         -0.415734798F, -0.0975451618F, 0.490392625F, -0.277785122F},
                                        {0.191341713F, -0.461939752F, 0.461939752F, -0.191341713F,
                                         -0.191341713F, 0.461939752F, -0.461939752F, 0.191341713F},
                                        {0.0975451618F, -0.277785122F, 0.415734798F, -0.490392625F,
                                         0.490392625F, -0.415734798F, 0.277785122F, -0.0975451618F}};

/// Sums of squared coefficients, by frequency along x and along y.
struct BlockSums {
    double at[kSide][kSide] = {};
};

template <class Pixel>
void addBlock(const Pixel* pixels, std::ptrdiff_t pitch, BlockSums& sums) {
    float along[kSide][kSide];
    for (int y = 0; y < kSide; ++y) {
        float t[kSide] = {};
        for (int x = 0; x < kSide; ++x) {
            const auto pixel = static_cast<float>(pixels[y * pitch + x]);
            for (int u = 0; u < kSide; ++u)
                t[u] += pixel * kBasis[u][x];
        }
        for (int u = 0; u < kSide; ++u)
            along[y][u] = t[u];
    }
    for (int u = 0; u < kSide; ++u) {
        for (int v = 0; v < kSide; ++v) {
            float coefficient = 0.0F;
            for (int y = 0; y < kSide; ++y)
                coefficient += kBasis[v][y] * along[y][u];
            sums.at[u][v] += static_cast<double>(coefficient * coefficient);
        }
    }
}

/// Gathers the blocks of the last block row, from right to left. Kept: every block row replaces the sums of the one
/// above, so no other one matters; and the last one reaches below an image whose height is no multiple of 8.
template <class Pixel>
BlockSums sumLastBlockRow(const Pixel* pixels, std::ptrdiff_t width, std::ptrdiff_t height) {
    BlockSums sums;
    if (height <= 0) return sums;
    const Pixel* row = pixels + (height - 1) / kSide * kSide * width;
    for (std::ptrdiff_t block = 1; block <= width / kSide; ++block)
        addBlock(row + (width - block * kSide), width, sums);
    return sums;
}

template <class Pixel>
void computeAmplitudes(const Pixel* pixels, const CSize& size, double* amplitudes, int count) {
    if (pixels == nullptr || amplitudes == nullptr) return;
    const BlockSums sums = sumLastBlockRow(pixels, size.cx, size.cy);
    double sum[kBins] = {};
    double weight[kBins] = {};
    for (int r = 0; r < kSide; ++r) {
        for (int c = 0; c < kSide; ++c) {
            const double distance = std::sqrt(static_cast<double>(r * r + c * c));
            // NOLINTNEXTLINE(bugprone-incorrect-roundings): distances are small and no halves
            const int bin = static_cast<int>(distance + 0.5);
            if (bin >= kBins) continue;
            sum[bin] += sums.at[r][c];
            weight[bin] += 1.0;
        }
    }
    const double total = static_cast<double>(size.cx) * static_cast<double>(size.cy);
    if (!(total > 0.0)) return;
    for (int bin = (count < kBins ? count : kBins) - 1; bin >= 0; --bin)
        amplitudes[bin] = weight[bin] > kNoWeight ? sum[bin] / weight[bin] / total : 0.0;
}

}  // namespace

void matGet8Amplitudes(unsigned char const* pixels, CSize const& size, double* amplitudes, int count) {
    computeAmplitudes(pixels, size, amplitudes, count);
}

void matGet8Amplitudes(unsigned short const* pixels, CSize const& size, double* amplitudes, int count) {
    computeAmplitudes(pixels, size, amplitudes, count);
}
