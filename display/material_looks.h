// SPDX-License-Identifier: GPL-3.0-or-later
// How materials look besides their colour, kept by their names beside the mesh. A set of looks
// never changes: whoever changes one makes another set, so that the history can keep each of them.
#pragma once

#include "picture/picture_source.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace polyfab {

/// At the texture coordinates (u, v) a picture shows its own place (u * uScale + uOffset, ...).
struct PicturePlacing {
    double uScale = 1, vScale = 1, uOffset = 0, vOffset = 0;
};

struct MaterialLook {
    std::shared_ptr<PictureSource> picture{}; ///< or null
    PicturePlacing placing{};
    double opacity = 1;
};

/// A file that looks were read from.
struct MaterialLibrary {
    std::string line; ///< of the mesh file, which named it
    std::string name; ///< its own in that line
    std::string path;
    std::string meshFolder; ///< of that mesh file
    std::string text;
};

struct MaterialLooks {
    std::map<std::string, MaterialLook, std::less<>> byName;
    std::vector<std::shared_ptr<const MaterialLibrary>> libraries;
};

using LooksRef = std::shared_ptr<const MaterialLooks>; ///< null: there are none

/// Of the mesh as it is now.
[[nodiscard]] const LooksRef& materialLooks();

/// That of this material; null: it has none.
[[nodiscard]] const MaterialLook* lookOf(std::string_view material);

/// Puts these in place of those; the panes have to be drawn anew.
void setMaterialLooks(LooksRef looks);

/// A material gets another name, and takes its look along unless that name has one.
void keepLook(std::string_view name, std::string_view newName);

} // namespace polyfab
