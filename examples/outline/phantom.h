/// @file
/// A drawn picture with objects of known size, for when no photograph is at hand.
#ifndef OUTLINE_PHANTOM_H
#define OUTLINE_PHANTOM_H

#include "image.h"

namespace examples::outline {

/// Draws bright objects with soft edges on an unevenly lit, slightly noisy ground, the same on every call: a
/// disc of radius 40, an ellipse of half axes 60 and 30, a square of side 71, a ring of radii 55 and 38 around a
/// disc of radius 14, a crescent whose centre of gravity lies outside of it, and a flower of five petals.
GreyImage drawPhantom();

}  // namespace examples::outline

#endif  // OUTLINE_PHANTOM_H
