// Row tables of regions, as the array room uses them.
#ifndef VELQUAD_ARRAY_ROI_H
#define VELQUAD_ARRAY_ROI_H

#include <cstdlib>
#include <memory>

#include "velquad/platform.h"

namespace velquad::array {

struct FreeTable {
    void operator()(void** table) const { std::free(table); }
};

/// Owns the row table of a region.
using RegionTable = std::unique_ptr<void*, FreeTable>;

/// See `matMapArrayToROI2v`.
RegionTable mapRegion(const void* rows, int width, int height, unsigned int type, unsigned int channels,
                      const RECT* roi);

}  // namespace velquad::array

#endif  // VELQUAD_ARRAY_ROI_H
