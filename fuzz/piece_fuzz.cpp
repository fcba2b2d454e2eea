// Cuts arbitrary outlines along arbitrary lines and at arbitrary positions, and compares the pieces with the plain
// steps.
#include <vector>

#include "fuzz/input.h"
#include "tests/support/splitting_reference.h"
#include "velquad/polygon.h"

namespace {

namespace reference = velquad::test::reference;
using reference::Outline;
using velquad::fuzz::Input;
using velquad::fuzz::require;

DWORD countOf(const Outline& outline) {
    return static_cast<DWORD>(outline.size());
}

/// Compares a piece with its points, and frees it.
void takePiece(void* handle, const Outline& expected) {
    require(handle != nullptr);
    const auto* record = static_cast<const tagPOLY*>(GlobalLock(handle));
    require(record->count == expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i)
        require(reference::same(record->points[i], expected[i]));
    GlobalUnlock(handle);
    polyFree(handle);
}

void split(const Outline& outline, const Outline& cut, bool closed, double tolerance) {
    void* first = nullptr;
    void* second = nullptr;
    const bool isDone = polySplit(outline.data(), countOf(outline), closed ? 1 : 0, tolerance, cut.data(),
                                  countOf(cut), &first, &second);
    require(isDone == (outline.size() >= 3 && cut.size() >= 2));
    if (!isDone) return;
    const reference::Pieces expected = reference::split(outline, closed, tolerance, cut);
    takePiece(first, expected.first);
    if (closed) takePiece(second, expected.second);
}

reference::Positions takePositions(Input& input) {
    reference::Positions positions(1 + input.take<std::uint8_t>() % 6);
    for (tagPOLY_POSITION& position : positions) {
        const auto index = input.take<std::uint8_t>();
        position.index = index == 255 ? 0xFFFFFFFFU : index % 16U;
        position.fraction = (index & 64) != 0 ? input.take<double>() : input.take<std::uint8_t>() / 64.0;
    }
    return positions;
}

void decompose(const Outline& outline, const reference::Positions& positions, bool closed, double tolerance,
               DWORD room) {
    std::vector<void*> handles(room);
    DWORD number = 0;
    const bool isDone =
        polyDecompose(outline.data(), countOf(outline), closed ? 1 : 0, tolerance, positions.data(),
                      static_cast<DWORD>(positions.size()), handles.data(), room, &number);
    const auto expected = reference::decompose(outline, closed, tolerance, positions, room);
    require(isDone == expected.has_value());
    require(number == (isDone ? expected->size() : 0));
    for (DWORD i = 0; i < number; ++i)
        takePiece(handles[i], (*expected)[i]);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const Outline outline = input.takeOutline(16);
    const Outline cut = input.takeOutline(5);
    const bool closed = (input.take<std::uint8_t>() & 1) != 0;
    const auto tolerance = input.take<double>();
    split(outline, cut, closed, tolerance);
    // Positions of fewer than two points have no order that the steps could follow.
    if (outline.size() < 2) return 0;
    const reference::Positions positions = takePositions(input);
    decompose(outline, positions, closed, tolerance, 1U + input.take<std::uint8_t>() % 8U);
    return 0;
}
