/// @file
/// The pictures of the gallery, one function each.
#ifndef GALLERY_PICTURES_H
#define GALLERY_PICTURES_H

#include "canvas.h"

namespace gallery {

struct Scene;

/// Raster lines from one pixel in many directions.
Canvas drawFanOfLines();
/// A line, and the same line with its ends exchanged.
Canvas drawThereAndBack();
/// Segments cut to a rectangle of pixels.
Canvas drawClippedPixels();
/// Segments cut to a rectangle of doubles.
Canvas drawClippedSegments();
/// Arrows with heads of several angles.
Canvas drawArrows();
/// Ellipses in rectangles of odd and even sizes, narrow ones included.
Canvas drawEllipsesInRectangles();
/// Ellipses around the origin, as whole contours and as the shortened ones.
Canvas drawEllipsesAroundOrigin();
/// Tilted ellipses, drawn in two ways, on square pixels and others.
Canvas drawTiltedEllipses();
/// A sphere coloured by the indices of its directions.
Canvas drawDirections();
/// A line of least squares and one of least deviations through a cloud with outliers.
Canvas drawFittedLines();
/// Directions with their mean and their range.
Canvas drawMeanDirections();
/// A plane through points of space.
Canvas drawFittedPlane();
/// Outlines at fault, and what each repair makes of them.
Canvas drawRepairs();
/// An outline split along a line.
Canvas drawSplit();
/// An outline cut at positions, as they are and moved onto vertices.
Canvas drawDecomposition();
/// An outline reduced at three limits.
Canvas drawReduction();
/// Convex hulls of points and of an outline.
Canvas drawConvexHulls();
/// Polynomials of several degrees through noisy points.
Canvas drawPolynomials();
/// A pattern found in a signal.
Canvas drawCorrelation();
/// Where a curve rises and falls through zero.
Canvas drawZeroCrossings();
/// A noisy profile smoothed in three ways.
Canvas drawSmoothing();
/// The spectrum of the profile under each window.
Canvas drawWindows();
/// A line between the extremes of a curve.
Canvas drawMeanEnvelope();
/// A distribution freed of events that met by chance.
Canvas drawDeconvolution();
/// Mappings of grey levels, each through a few points.
Canvas drawIntensityCurves();
/// An image stretched to several widths.
Canvas drawStretchedImage();
/// Lengths of digital circles against those of true ones.
Canvas drawPerimeters();
/// A scene enlarged and reduced by each kind of interpolation.
Canvas drawZooms(const Scene& scene);
/// A scene mapped linearly, limited and inverted in a region.
Canvas drawLimits(const Scene& scene);
/// Slices of a volume, of the same volume rotated and of it blurred.
Canvas drawVolumes();
/// The cells of digital discs by their distance from the middle.
Canvas drawDiscs();
/// Where an image is brightest under discs of several sizes.
Canvas drawPeaks();
/// Scattered points triangulated, with the edges to the helpers.
Canvas drawTriangulation();
/// Heights interpolated between scattered ones in several ways.
Canvas drawSurfaces();
/// The vertices in a rectangle, and those around it.
Canvas drawVerticesInRectangle();
/// Maps of the nearest seeds.
Canvas drawVoronoiMaps();

}  // namespace gallery

#endif  // GALLERY_PICTURES_H
