// Following a closed curve from pixel to pixel: of the five neighbours that lie ahead, the one nearest to the curve
// is the next.
#ifndef VELQUAD_GEOMETRY_CLOSED_CURVE_H
#define VELQUAD_GEOMETRY_CLOSED_CURVE_H

#include <cstdint>

#include "velquad/geometry.h"

namespace velquad::geometry {

class CMatClosedCurve {
  public:
    CMatClosedCurve(PointCallback pointCallback, std::uint64_t arg1, std::int64_t arg2)
        : callback(pointCallback), callbackArg1(arg1), callbackArg2(arg2) {}

    /// @param neighbour  out: the pixel next to `point` in compass direction `direction`; 8 is `point` itself.
    /// @return how far that pixel lies from the curve.
    virtual double GetNeighbourError(tagPOINT point, tagPOINT* neighbour, int direction) = 0;

    /// Follows the curve until it comes within one pixel of its start, and closes it there.
    /// @return the number of points delivered; 0 when the callback stopped the walk, or when it did not come back
    ///         within 131072 points.
    DWORD Follow(tagPOINT start, int direction);

    PointCallback callback;
    std::uint64_t callbackArg1;
    std::int64_t callbackArg2;
    int isFirstStep = 1;

  protected:
    ~CMatClosedCurve() = default;

  private:
    bool deliver(const tagPOINT& point, DWORD index) const {
        return callback == nullptr || callback(point, index, callbackArg1, callbackArg2) != 0;
    }
    void step(tagPOINT& current, int& direction);
};

}  // namespace velquad::geometry

#endif  // VELQUAD_GEOMETRY_CLOSED_CURVE_H
