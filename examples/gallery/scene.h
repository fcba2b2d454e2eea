/// @file
/// A grey image like a photograph, for the pictures.
#ifndef GALLERY_SCENE_H
#define GALLERY_SCENE_H

#include "arrays.h"

namespace gallery {

/// Three balls on a tiled floor, one of them a mirror; 240 by 180 pixels.
GreyImage photograph();

}  // namespace gallery

#endif  // GALLERY_SCENE_H
