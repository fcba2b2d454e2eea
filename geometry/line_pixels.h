// The pixels of a line from one point to another, 8-connected, both ends included, handed out one by one.
// Bresenham's midpoint method (J. E. Bresenham, Algorithm for computer control of a digital plotter, 1965).
#ifndef VELQUAD_GEOMETRY_LINE_PIXELS_H
#define VELQUAD_GEOMETRY_LINE_PIXELS_H

#include "frame/convert.h"
#include "velquad/types.h"

namespace velquad::geometry {

class LinePixels {
  public:
    /// Everything is computed in 32 bits that wrap around. Ends 2^31 apart have no pixel but the first.
    LinePixels(const tagPOINT& start, const tagPOINT& end) : current_(start) {
        const frame::Int32 dx = frame::wrapSub(end.x, start.x);
        const frame::Int32 dy = frame::wrapSub(end.y, start.y);
        const frame::Int32 lengthX = frame::wrapAbs(dx);
        const frame::Int32 lengthY = frame::wrapAbs(dy);
        diagonalX_ = dx < 0 ? -1 : 1;
        diagonalY_ = dy < 0 ? -1 : 1;
        const bool isXMajor = lengthX >= lengthY;
        straightX_ = isXMajor ? diagonalX_ : 0;
        straightY_ = isXMajor ? 0 : diagonalY_;
        stepsLeft_ = isXMajor ? lengthX : lengthY;
        const frame::Int32 minor = isXMajor ? lengthY : lengthX;
        straightError_ = frame::wrapMul(2, minor);
        diagonalError_ = frame::wrapMul(2, frame::wrapSub(minor, stepsLeft_));
        error_ = frame::wrapSub(straightError_, stepsLeft_);
    }

    /// The pixel reached; the start at first.
    const tagPOINT& current() const { return current_; }

    /// @return how many pixels the line has altogether, before the first step.
    frame::Int32 count() const { return frame::wrapAdd(stepsLeft_, 1); }

    /// Goes on to the next pixel. @return false at the end.
    bool advance() {
        if (stepsLeft_ <= 0) return false;
        --stepsLeft_;
        const bool isStraight = error_ < 0;
        current_.x = frame::wrapAdd(current_.x, isStraight ? straightX_ : diagonalX_);
        current_.y = frame::wrapAdd(current_.y, isStraight ? straightY_ : diagonalY_);
        error_ = frame::wrapAdd(error_, isStraight ? straightError_ : diagonalError_);
        return true;
    }

  private:
    tagPOINT current_;
    frame::Int32 diagonalX_, diagonalY_;
    frame::Int32 straightX_, straightY_;
    frame::Int32 diagonalError_, straightError_;
    frame::Int32 error_;
    frame::Int32 stepsLeft_;
};

}  // namespace velquad::geometry

#endif  // VELQUAD_GEOMETRY_LINE_PIXELS_H
