// Regression lines that hold a line before any pair was added.
#ifndef VELQUAD_TESTS_SUPPORT_PRESET_LINE_H
#define VELQUAD_TESTS_SUPPORT_PRESET_LINE_H

namespace velquad::test {

#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif
/// A line that no fit gave.
/// @tparam Base  `CMatRegressionLine` or a class derived from it.
template <class Base>
class PresetLine : public Base {
  public:
    PresetLine(double slopeWanted, double interceptWanted, int yOfXWanted) {
        this->slope = slopeWanted;
        this->intercept = interceptWanted;
        this->yOfX = yOfXWanted;
    }
};
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

}  // namespace velquad::test

#endif  // VELQUAD_TESTS_SUPPORT_PRESET_LINE_H
