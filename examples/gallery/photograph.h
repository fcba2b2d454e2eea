/// @file
/// A scene from a file.
#ifndef GALLERY_PHOTOGRAPH_H
#define GALLERY_PHOTOGRAPH_H

#include <string>

#include "scene.h"

namespace gallery {

/// The middle of a PNG image in grey, as large as its shape allows and reduced to the size of a scene, with a detail
/// where neighbouring pixels differ most.
/// @throws examples::Failure for what cannot be read, an image smaller than a scene and an even grey.
Scene photographedScene(const std::string& path);

}  // namespace gallery

#endif  // GALLERY_PHOTOGRAPH_H
