/// @file
/// A grey image for the pictures of what is done to images.
#ifndef GALLERY_SCENE_H
#define GALLERY_SCENE_H

#include "arrays.h"

namespace gallery {

inline constexpr int kSceneWidth = 240;
inline constexpr int kSceneHeight = 180;
/// The size of what is enlarged, in pixels of the scene.
inline constexpr int kDetailWidth = 36;
inline constexpr int kDetailHeight = 27;

/// An image of `kSceneWidth` by `kSceneHeight` pixels, and where to look closer.
struct Scene {
    GreyImage image;
    RECT detail;         ///< `kDetailWidth` by `kDetailHeight` pixels.
    double detailWhite;  ///< Where curves of the detail's grey levels may end.
};

/// Three balls on a tiled floor, one of them a mirror.
Scene drawnScene();

}  // namespace gallery

#endif  // GALLERY_SCENE_H
