// SPDX-License-Identifier: GPL-3.0-or-later
// A mesh as a stream of bytes between the editor and the child process that runs foreign importers
// and exporters: a header with counts, then one table after the other. Both ends are the same
// program on the same machine, but the reader takes nothing in it for granted.
#pragma once

#include "geometry/vec3.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace polyfab {

struct StreamTexCoord {
    double u = 0, v = 0;
};

/// Indices into the tables; -1: none, which a point never is.
struct StreamCorner {
    std::int32_t point = 0, texcoord = -1, normal = -1;
};

struct StreamFace {
    std::int32_t corners = 0; ///< how many, taken one face after the other from the table
    std::int32_t group = 0;
    std::int32_t material = 0;
};

/// What a material has besides its colour.
struct StreamLook {
    double uScale = 1, vScale = 1, uOffset = 0, vOffset = 0; ///< of its picture
    double opacity = 1;
    std::int64_t embedded = -1; ///< index of its picture among those in the stream; -1: none
};

/// What one end writes.
struct StreamTables {
    std::vector<Vec3> points;
    std::vector<Vec3> normals;
    std::vector<StreamTexCoord> texcoords;
    std::vector<StreamCorner> corners;
    std::vector<StreamFace> faces;
    std::vector<std::uint32_t> colors; ///< of the materials, 0xRRGGBB
    std::vector<std::string> groups;   ///< names
    std::vector<std::string> materials;
    std::vector<StreamLook> looks;     ///< of the materials, or of none
    std::vector<std::string> pictures; ///< of the materials the file of the picture, or of none
    std::vector<std::string> embedded; ///< picture files
    std::vector<std::string> notes;    ///< for the user to read
    std::string failure;               ///< why there is no mesh; "": there is one
};

/// What the other end reads: the tables where they lie in the bytes.
struct StreamView {
    std::span<const Vec3> points;
    std::span<const Vec3> normals;
    std::span<const StreamTexCoord> texcoords;
    std::span<const StreamCorner> corners;
    std::span<const StreamFace> faces;
    std::span<const std::uint32_t> colors;
    std::vector<std::string_view> groups;
    std::vector<std::string_view> materials;
    std::span<const StreamLook> looks; ///< of each material
    std::vector<std::string_view> pictures;
    std::vector<std::string_view> embedded;
    std::vector<std::string_view> notes;
    std::string_view failure;
};

/// Writes the tables to the descriptor. False when not all could be written.
[[nodiscard]] bool writeStream(int file, const StreamTables& tables);

/// Reads a whole stream; `bytes` must be aligned as the heap is and outlive `view`. True: every
/// reference in the tables is in range, every face has its corners, three at least, and every
/// material its colour and its look. Coordinates and names may still be anything.
[[nodiscard]] bool readStream(std::span<const char> bytes, StreamView& view);

} // namespace polyfab
