/// @file
/// What the lens does and what the models leave: pictures, tables and the page.
#ifndef LENS_REPORT_H
#define LENS_REPORT_H

#include <string>
#include <vector>

#include "camera.h"
#include "fit.h"
#include "image.h"
#include "text.h"

namespace examples::lens {

struct Results {
    std::vector<Dot> dots;
    std::size_t pointsBetween = 0;
    ErrorSize finding;     ///< Where dots were found, less where the lens shows them.
    ErrorSize distortion;  ///< Where the lens shows dots, less where they are.
    std::vector<ModelResult> models;
};

/// The picture of the dots, with a line from each one to its true place.
ColourImage drawDots(const GreyImage& picture, const std::vector<Dot>& dots);

/// The board before and after, with straight lines over both.
ColourImage drawBoards(const GreyImage& before, const GreyImage& after);

/// The residuals of all models, a panel each.
std::string residualsSvg(const Results& results);

Table modelTableOf(const Results& results);
Table dotTableOf(const Results& results);

/// The page. It refers to the pictures and tables beside it and to nothing else.
std::string htmlOf(const Results& results);

}  // namespace examples::lens

#endif  // LENS_REPORT_H
