// SPDX-License-Identifier: GPL-3.0-or-later
// What the faces that are written have of a mesh, for the sentences on what gets lost.
#pragma once

#include <cstdint>
#include <map>
#include <string_view>
#include <vector>

namespace polyfab {

struct Material;
struct Mesh;

// Sentences for addCount that several formats have in common.
inline constexpr std::string_view loosePointsLost = "{point} of no face {was} left out";
inline constexpr std::string_view doubleNamesLost =
    "{material} {has} the name of another: the file has one";
inline constexpr std::string_view opacityLost = "{material} {is} transparent, which is not kept";
inline constexpr std::string_view pictureLost =
    "{material} {has} a picture that this format does not keep";
inline constexpr std::string_view pictureUnread = "{material} {has} a picture that I can't read";

/// Knows materials by their names.
class KnownNames {
  public:
    /// Enters it; whether an earlier one has the name, and another colour.
    bool areOfAnother(const Material& material);

  private:
    std::map<std::string_view, std::uint32_t> colors;
};

struct WrittenParts {
    std::vector<bool> points, materials; ///< of the mesh: whether such a face has it
    std::int64_t groups = 0, texcoords = 0, normals = 0;
    std::int64_t colored = 0;     ///< materials that have a colour
    std::int64_t doubleNames = 0; ///< those with the name of an earlier one, in another colour
    std::int64_t loosePoints = 0; ///< of no live face; 0 where only selected faces are written
};

/// Of the live faces, or of those that are selected. Without memory for it there is none.
[[nodiscard]] WrittenParts writtenParts(const Mesh& mesh, bool onlySelected);

} // namespace polyfab
