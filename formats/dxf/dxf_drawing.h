// SPDX-License-Identifier: GPL-3.0-or-later
// The surfaces of a DXF drawing as its file has them: in blocks, which the drawing and other blocks
// insert.
#pragma once

#include "geometry/affine.h"
#include "geometry/vec3.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace polyfab {

/// Colours that are none: the layer's, or that of what inserts the block.
inline constexpr std::int32_t colorOfLayer = -1, colorOfBlock = -2;

struct DxfStyle {
    std::int32_t layer = 0; ///< 0: in a block, the layer of what inserts it
    std::int32_t color = colorOfLayer;
};

struct DxfFace {
    std::int32_t corners = 0; ///< how many, one face after the other
    DxfStyle style;
};

/// A block put somewhere, in rows and columns.
struct DxfInsert {
    std::string block;
    AffineMap map; ///< from the block, its base point at the origin, to where the first stands
    Vec3 column;   ///< from one column to the next
    Vec3 row;
    int columns = 1, rows = 1;
    DxfStyle style;
};

struct DxfBlock {
    std::string name;
    Vec3 base;
    std::vector<Vec3> points;
    std::vector<std::int32_t> corners; ///< indices of points
    std::vector<DxfFace> faces;
    std::vector<DxfInsert> inserts;
    std::map<std::string, std::int64_t> leftOut; ///< what is no surface, by its name in the file
    std::int64_t beyond = 0;                     ///< numbers beyond all bounds, which count as 0
};

struct DxfDrawing {
    std::vector<DxfBlock> blocks = std::vector<DxfBlock>(1); ///< the first is the drawing itself
    std::vector<std::string> layers = {"0"};
    std::vector<std::int32_t> layerColors = {colorOfLayer}; ///< 0xRRGGBB; below 0: not told
};

/// Names of blocks and layers are the same in capitals or not: the key of this one. Of layers the
/// first spelling is the name.
[[nodiscard]] std::string foldedName(std::string name);

/// Reads 3DFACE, SOLID and TRACE, POLYLINE where it is a mesh, MESH and INSERT. `file`: the bytes,
/// of text or binary, followed by a NUL. What makes no sense is left out. std::bad_alloc.
[[nodiscard]] DxfDrawing readDxfDrawing(std::string_view file);

} // namespace polyfab
