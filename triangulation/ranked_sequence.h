// A sequence of pointers with insertion at any rank and access by rank, both in about logarithmic time: blocks of
// bounded length, with the sums of their lengths in a binary indexed tree (P. M. Fenwick, A new data structure for
// cumulative frequency tables, 1994).
#ifndef VELQUAD_TRIANGULATION_RANKED_SEQUENCE_H
#define VELQUAD_TRIANGULATION_RANKED_SEQUENCE_H

#include <algorithm>
#include <cstddef>
#include <vector>

namespace velquad::triangulation {

template <class T>
class RankedSequence {
  public:
    std::size_t size() const { return size_; }

    T* at(std::size_t rank) const {
        const Place place = placeOf(rank);
        return blocks_[place.block][place.offset];
    }

    /// Inserts in front of the element that has this rank; `size()` appends.
    void insert(std::size_t rank, T* element) {
        if (blocks_.empty()) {
            blocks_.emplace_back();
            sumUp();
        }
        // Behind the last element of a block is a place in that block.
        Place place = rank == 0 ? Place{0, 0} : placeOf(rank - 1);
        if (rank != 0) ++place.offset;
        if (blocks_[place.block].size() == kBlockSize) {
            divide(place.block);
            if (place.offset > kBlockSize / 2) place = {place.block + 1, place.offset - kBlockSize / 2};
        }
        Block& block = blocks_[place.block];
        block.reserve(kBlockSize);
        block.push_back(element);
        std::rotate(block.begin() + static_cast<std::ptrdiff_t>(place.offset), block.end() - 1, block.end());
        ++size_;
        for (std::size_t i = place.block + 1; i < sums_.size(); i += lowestBit(i))
            ++sums_[i];
    }

    /// Visits all elements in their order.
    template <class Visit>
    void forEach(const Visit& visit) const {
        for (const Block& block : blocks_)
            for (T* element : block)
                visit(element);
    }

  private:
    static constexpr std::size_t kBlockSize = 256;

    using Block = std::vector<T*>;

    struct Place {
        std::size_t block;
        std::size_t offset;
    };

    static constexpr std::size_t lowestBit(std::size_t i) { return i & (~i + 1); }

    Place placeOf(std::size_t rank) const {
        std::size_t block = 0;
        for (std::size_t step = highestStep_; step != 0; step /= 2) {
            const std::size_t next = block + step;
            if (next >= sums_.size() || sums_[next] > rank) continue;
            block = next;
            rank -= sums_[next];
        }
        return {block, rank};
    }

    /// Moves the second half of a block to a new one behind it.
    void divide(std::size_t number) {
        Block half;
        half.reserve(kBlockSize);
        const auto middle = blocks_[number].begin() + kBlockSize / 2;
        half.assign(middle, blocks_[number].end());
        blocks_.insert(blocks_.begin() + static_cast<std::ptrdiff_t>(number) + 1, std::move(half));
        blocks_[number].resize(kBlockSize / 2);
        sumUp();
    }

    void sumUp() {
        sums_.assign(blocks_.size() + 1, 0);
        for (std::size_t i = 1; i < sums_.size(); ++i) {
            sums_[i] += blocks_[i - 1].size();
            const std::size_t parent = i + lowestBit(i);
            if (parent < sums_.size()) sums_[parent] += sums_[i];
        }
        highestStep_ = 1;
        while (highestStep_ * 2 < sums_.size())
            highestStep_ *= 2;
    }

    std::vector<Block> blocks_;
    std::vector<std::size_t>
        sums_;  ///< Element i holds the lengths of the lowestBit(i) blocks before block i.
    std::size_t highestStep_ = 0;
    std::size_t size_ = 0;
};

}  // namespace velquad::triangulation

#endif  // VELQUAD_TRIANGULATION_RANKED_SEQUENCE_H
