// A list of pointers that is kept in ascending order and holds no two equal elements.
#ifndef VELQUAD_TRIANGULATION_SORTED_LIST_H
#define VELQUAD_TRIANGULATION_SORTED_LIST_H

#include <cstddef>

#include "triangulation/ranked_sequence.h"

namespace velquad::triangulation {

/// Elements are not owned. The order is that of `Compare`, which may hold near elements for equal and need not be
/// transitive in that; what is found then follows from the bisection: the ends first, then the middle of the
/// bounds, rounded down.
template <class T>
class CSortedListT {
  public:
    /// @return -1, 0 or 1 for a before, equal to or behind b.
    virtual int Compare(const T* a, const T* b) const = 0;
    virtual ~CSortedListT() = default;

    CSortedListT() = default;
    CSortedListT(const CSortedListT&) = delete;
    CSortedListT& operator=(const CSortedListT&) = delete;

    std::size_t size() const { return elements_.size(); }

    /// @return whether an element compares equal.
    bool contains(const T* value) const { return find(value).isEqual; }

    /// Inserts an element behind those that are not greater.
    /// @return false, with nothing inserted, when one compares equal.
    bool insert(T* element) {
        const Place place = find(element);
        if (place.isEqual) return false;
        elements_.insert(place.behind, element);
        return true;
    }

    template <class Visit>
    void forEach(const Visit& visit) const {
        elements_.forEach(visit);
    }

  private:
    struct Place {
        std::size_t behind;  ///< How many elements are not greater than the value.
        bool isEqual;        ///< The last of them compares equal.
    };

    Place find(const T* value) const {
        if (elements_.size() == 0) return {0, false};
        std::size_t low = 0;
        std::size_t high = elements_.size() - 1;
        const int atLow = Compare(elements_.at(low), value);
        if (atLow >= 0) return atLow == 0 ? Place{1, true} : Place{0, false};
        const int atHigh = Compare(elements_.at(high), value);
        if (atHigh <= 0) return {high + 1, atHigh == 0};
        while (high - low > 1) {
            const std::size_t middle = low + (high - low) / 2;
            const int atMiddle = Compare(elements_.at(middle), value);
            if (atMiddle == 0) return {middle + 1, true};
            (atMiddle < 0 ? low : high) = middle;
        }
        return {low + 1, false};
    }

    RankedSequence<T> elements_;
};

}  // namespace velquad::triangulation

#endif  // VELQUAD_TRIANGULATION_SORTED_LIST_H
