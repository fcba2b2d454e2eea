/// @file
/// Homogeneous 4 by 4 transforms: elementary matrices and their composition, inversion, the way from an object
/// to a window of the screen and back, rotations by three angles, and what an affine transform does to an image.
///
/// **Matrices.** `double[4][4]`, row by row: `m[row][column]`. Points are column vectors, so that a point moves
/// to M v, and a translation stands in the last column:
///
///     | x' |   | m00 m01 m02 tx |   | x |
///     | y' | = | m10 m11 m12 ty | * | y |
///     | z' |   | m20 m21 m22 tz |   | z |
///     | w' |   |  0   0   0   1 |   | 1 |
///
/// The flat form, `double[16]` of the functions with the suffix 16, stores one column after the other, as
/// graphics interfaces do: element (row, column) is `flat[4 * column + row]`. A vector of the flat functions is
/// three doubles with an implied weight of 1.
///
/// **Composition.** The functions without `Compute` in their name compose an elementary matrix E onto a matrix.
/// `multiplyFromLeft` non-zero makes it E M: E acts behind what M does. Zero makes it M E: E acts first.
///
/// **Angles.** Degrees when `isDegrees` is non-zero, else radians, counter-clockwise in mathematical axes.
///
/// **Results.** 1 for done unless told otherwise. Numbers are not tested: an empty range divides by zero and
/// gives infinities or not-a-numbers. A transformed point is divided by its weight; a weight below 1e-7 (a
/// point at infinity) is refused.
/// **Pointers.** Not tested, unless an argument is optional: a null optional output is not wanted.
/// **Threads.** Pure functions of their arguments; all matrices belong to the caller.
#ifndef VELQUAD_TRANSFORM_H
#define VELQUAD_TRANSFORM_H

#include "velquad/types.h"

extern "C" {

/// @name Elementary matrices
/// Each `matCompute...` function overwrites all 16 elements of `m`; its partner below composes the same matrix onto
/// `m`, from the side that `multiplyFromLeft` tells.
/// @{

/// Stores the identity.
VELQUAD_API int matLoadIdentityMatrix4(double (*m)[4]);

/// A rotation about a coordinate axis.
/// @param axis  0: x, 1: y, any other value: z.
VELQUAD_API int matComputeRotationMatrix4(double (*m)[4], double angle, int isDegrees, int axis);
/// Composes it onto `m`.
VELQUAD_API int matRotateMatrix4(double (*m)[4], double angle, int isDegrees, int axis, int multiplyFromLeft);

/// A shear of the x-y plane that keeps lengths along both axes: the unit vector of x turns to the direction
/// `angleX`, that of y to the direction `angleY` + 90 degrees.
VELQUAD_API int matComputeShearMatrix4(double (*m)[4], double angleX, double angleY, int isDegrees);
/// Composes it onto `m`.
VELQUAD_API int matShearMatrix4(double (*m)[4], double angleX, double angleY, int isDegrees,
                                int multiplyFromLeft);

/// A scaling about the origin, one factor an axis.
VELQUAD_API int matComputeSizeMatrix4(double (*m)[4], double sizeX, double sizeY, double sizeZ);
/// Composes it onto `m`.
VELQUAD_API int matSizeMatrix4(double (*m)[4], double sizeX, double sizeY, double sizeZ,
                               int multiplyFromLeft);

/// A translation.
VELQUAD_API int matComputeTranslationMatrix4(double (*m)[4], double x, double y, double z);
/// Composes it onto `m`.
VELQUAD_API int matTranslateMatrix4(double (*m)[4], double x, double y, double z, int multiplyFromLeft);

/// A stretch by `factor` along one direction of the x-y plane; what is perpendicular to it keeps its length. It
/// undoes a compression along that direction.
/// @param angle  the direction, from the x axis.
VELQUAD_API int matComputeDecompressMatrix4(double (*m)[4], double angle, int isDegrees, double factor);
/// Composes it onto `m`.
VELQUAD_API int matDecompressMatrix4(double (*m)[4], double angle, int isDegrees, double factor,
                                     int multiplyFromLeft);

/// A rotation by `tilt` about an axis of the x-y plane.
/// @param direction  the direction of that axis, from the x axis.
VELQUAD_API int matComputeTiltMatrix4(double (*m)[4], double tilt, double direction, int isDegrees);
/// Composes it onto `m`.
VELQUAD_API int matTiltMatrix4(double (*m)[4], double tilt, double direction, int isDegrees,
                               int multiplyFromLeft);

/// A perspective projection onto normalised coordinates from -1 to 1, seen from the origin along negative z.
/// @param fieldOfViewDegrees  the full vertical opening; always in degrees.
/// @param aspect              width divided by height.
/// @param nearPlane,farPlane  distances of the clipping planes; they come out at z = -1 and z = 1.
/// @par Source  The projection matrices of the OpenGL utility library.
VELQUAD_API int matComputePerspectiveMatrix4(double (*m)[4], double fieldOfViewDegrees, double aspect,
                                             double nearPlane, double farPlane);
/// Composes it onto `m`.
VELQUAD_API int matPerspectiveMatrix4(double (*m)[4], double fieldOfViewDegrees, double aspect,
                                      double nearPlane, double farPlane, int multiplyFromLeft);

/// A parallel projection of the box left to right, bottom to top, -nearPlane to -farPlane onto -1 to 1.
VELQUAD_API int matComputeOrthoMatrix4(double (*m)[4], double left, double right, double bottom, double top,
                                       double nearPlane, double farPlane);
/// Composes it onto `m`.
VELQUAD_API int matOrthoMatrix4(double (*m)[4], double left, double right, double bottom, double top,
                                double nearPlane, double farPlane, int multiplyFromLeft);

/// A perspective projection through the window left to right, bottom to top of the near plane, which need not
/// be centred.
VELQUAD_API int matComputeFrustumMatrix4(double (*m)[4], double left, double right, double bottom, double top,
                                         double nearPlane, double farPlane);
/// Composes it onto `m`.
VELQUAD_API int matFrustumMatrix4(double (*m)[4], double left, double right, double bottom, double top,
                                  double nearPlane, double farPlane, int multiplyFromLeft);
/// @}

/// @name Operations on matrices
/// @{

/// The product a b.
///
/// For the true product `out` shares no memory with `a` or `b` (these two may be one). Where it does, the
/// elements are formed row by row and from left to right, each while its own place holds 0 and earlier results
/// already stand in theirs. The numbers are defined, but in general they are no matrix product.
VELQUAD_API int matMultiplyMatrix4(double (*out)[4], const double (*a)[4], const double (*b)[4]);

/// Transforms a vector x, y, z, w and divides the result by its weight, so that w comes out as 1.
/// @param out             four doubles; may be `in`. Unchanged on result 0.
/// @param rowTimesVector  non-zero: M v, the way points are transformed here. Zero: the row vector times M.
/// @return 1; 0 when the weight is below 1e-7.
VELQUAD_API int matTransformVector4(double* out, const double (*m)[4], const double* in, int rowTimesVector);

/// The inverse matrix, by LU decomposition with partial pivoting.
///
/// There is no test whether an inverse exists. A singular matrix gives result 1 and whatever the decomposition
/// yields, infinities and not-a-numbers included.
/// @param out           may be `in`. Unchanged on result 0.
/// @param isTransposed  non-zero: stores the transpose of the inverse.
/// @return 1; 0 when working memory is lacking.
/// @par Source  `PartialPivLU` of the Eigen library (G. Guennebaud, B. Jacob et al., 2010).
VELQUAD_API int matInvertMatrix4(double (*out)[4], const double (*in)[4], int isTransposed);
/// @}

/// @name Images under an affine transform
/// @{

/// The extent of an image after a transform: of its corners (0, 0), (width, 0), (width, height), (0, height).
/// A corner with a vanishing weight counts as the corner before it (the first one as the origin).
/// @param minX,minY,maxX,maxY  optional.
VELQUAD_API int matCalcAffinImageSize(double width, double height, const double (*m)[4], double* minX,
                                      double* minY, double* maxX, double* maxY);

/// The size of a pixel after a transform: how far one pixel step of the new image reaches in the old image, in
/// its units of measurement.
/// @param scaleX,scaleY        width and height of a pixel of the old image.
/// @param newScaleX,newScaleY  optional. Unchanged on result 0.
/// @return 1; 0 when working memory is lacking. A singular `m` is not reported; see `matInvertMatrix4`.
VELQUAD_API int matCalcAffinImageScale(double scaleX, double scaleY, const double (*m)[4], double* newScaleX,
                                       double* newScaleY);
/// @}

}  // extern "C"

/// A rotation about any axis through the origin.
/// @param axisX,axisY,axisZ  direction of the axis, of any length.
/// @return 1; 0 for an axis shorter than 1e-40, which leaves `m` unchanged.
/// @par Source  The rotation formula of O. Rodrigues, 1840.
VELQUAD_API int matComputeArbitraryRotationMatrix4(double (*m)[4], double angle, int isDegrees, double axisX,
                                                   double axisY, double axisZ);
/// Composes the matrix of `matComputeArbitraryRotationMatrix4` onto `m`; same results.
VELQUAD_API int matArbitraryRotateMatrix4(double (*m)[4], double angle, int isDegrees, double axisX,
                                          double axisY, double axisZ, int multiplyFromLeft);

/// @return the largest |a - b| of all elements. Not-a-numbers do not count.
VELQUAD_API double matCalcDistanceOfMatrices4(double (*a)[4], double (*b)[4]);
/// @return the largest absolute value of all elements. Not-a-numbers do not count.
VELQUAD_API double matCalcAbsoluteMaxOfMatrix4(double (*m)[4]);

/// @name Flat matrices
/// @{

/// Copies between the two forms: from `flat` to `m` when `toFlat` is zero, else from `m` to `flat`.
VELQUAD_API int matConvertMatrix16(double (*m)[4], double* flat, int toFlat);

/// The product a b. `out` may be `a` or `b`.
VELQUAD_API int matMultiplyMatrix16(double* out, double* a, double* b);

/// The form of `matInvertMatrix4` for flat matrices.
VELQUAD_API int matInvertMatrix16(double* out, double* in, int isTransposed);

/// Transforms a point in place and divides it by its weight.
/// @param transposed  zero: by M; non-zero: by the transpose of M.
/// @return 1; 0 when the weight is below 1e-7, with `vector` unchanged.
VELQUAD_API int matTransformVector16(double* vector, double* m, int transposed);

/// @return the largest |a - b| of all elements. Not-a-numbers do not count.
VELQUAD_API double matCalcDistanceOfMatrices16(double* a, double* b);
/// @}

/// @name From objects to the window
///
///     object --modelView--> eye --projection--> -1 to 1 --viewport, depthRange--> window
///
/// `viewport` is x, y, width, height in pixels; `depthRange` is the depth of the near plane, then of the far
/// plane.
/// @{

/// Maps normalised coordinates to the window in place, or back when `inverse` is non-zero. An empty viewport or
/// depth range divides by zero on the way back.
VELQUAD_API int matViewPortTransformation16(double* vector, int* viewport, double* depthRange, int inverse);

/// Takes a point from object to window coordinates in place. Every step is optional: a null matrix or viewport
/// is left out. A step that refuses a vanishing weight leaves the point as it was, and the way goes on.
VELQUAD_API int matProjectionTransformVector16(double* vector, double* modelView, double* projection,
                                               int* viewport, double* depthRange);

/// The way back, from the window to the object, with matrices that the caller inverted.
VELQUAD_API int matInverseProjectionTransformVector16(double* vector, double* inverseModelView,
                                                      double* inverseProjection, int* viewport,
                                                      double* depthRange);

/// The matrix of `matViewPortTransformation16`.
VELQUAD_API int matComputeViewPortMatrix4(double (*m)[4], int* viewport, double* depthRange);

/// Multiplies the identity by the model view, the projection and the viewport matrix with
/// `matMultiplyMatrix4`, each time with the result in the place of the second factor. What that function says
/// about shared memory applies: the result is defined, but it is not the product of the three matrices. Use
/// `matProjectionTransformVector16` to take points to the window.
VELQUAD_API int matComputeFullProjectionMatrix4(double (*m)[4], double* modelView, double* projection,
                                                int* viewport, double* depthRange);
/// @}

/// @name Unified angles
/// The rotation of a specimen as three angles, R = Rz(first) Ry(tilt) Rz(last) (Euler angles of the z-y-z
/// kind). `tilt` is the angle between the z axis and its image, `first` the direction in which the image leans.
/// @{

/// Stores the rotation matrix of three angles.
VELQUAD_API int matConvertUnifiedAnglesToRotationMatrix4(double (*m)[4], double tilt, double first,
                                                         double last, int isDegrees);

/// Finds the three angles of a rotation. Without tilt only the sum of the other two is determined, at a tilt of
/// half a turn only their difference; all of it comes out as `last`, and `first` is 0.
/// @param tilt,first,last  optional; from 0 to below a full turn, `tilt` up to half a turn. Unchanged on
///                         result 0.
/// @return 1; 0 when working memory is lacking.
VELQUAD_API int matConvertRotationMatrixToUnifiedAngles4(double (*m)[4], double* tilt, double* first,
                                                         double* last, int isDegrees);

/// Brings three angles to their normal form, which describes the same rotation: `tilt` from 0 to half a turn,
/// the others from 0 to below a full turn. A tilt that is less than 1e-7, in its unit, outside this range is
/// kept as it is.
/// @return 1; 0 when working memory is lacking, with `tilt` unchanged.
VELQUAD_API int matNormalizeUnifiedAngles4(double* tilt, double* first, double* last, int isDegrees);
/// @}

/// Composes a translation from the left, so that the transformed image of this size begins at the origin.
VELQUAD_API int matMoveMatrix4ToTopLeft(double width, double height, double (*m)[4]);

/// Composes a rotation about a coordinate axis from the right: it acts first.
/// @param axisX,axisY,axisZ  the first component within 1e-7 of 1 selects the axis, the others are ignored.
/// @return 1; 0 when there is no such component, with `m` unchanged.
VELQUAD_API int matRotated4(double (*m)[4], double angleDegrees, double axisX, double axisY, double axisZ);

#endif  // VELQUAD_TRANSFORM_H
