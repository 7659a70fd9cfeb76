// SPDX-License-Identifier: GPL-3.0-or-later
// How materials look besides their colour, kept by their names beside the mesh. A set of looks
// never changes: whoever changes one makes another set, so that the history can keep each of them.
#pragma once

#include "picture/picture_source.h"

#include <map>
#include <memory>
#include <string>

namespace polyfab {

/// At the texture coordinates (u, v) a picture shows its own place (u * uScale + uOffset, ...).
struct PicturePlacing {
    double uScale = 1, vScale = 1, uOffset = 0, vOffset = 0;
};

struct MaterialLook {
    std::shared_ptr<PictureSource> picture{}; ///< or null
    PicturePlacing placing{};
};

using MaterialLooks = std::map<std::string, MaterialLook, std::less<>>;
using LooksRef = std::shared_ptr<const MaterialLooks>; ///< null: there are none

/// Of the mesh as it is now.
[[nodiscard]] const LooksRef& materialLooks();

/// Puts these in place of those; the panes have to be drawn anew.
void setMaterialLooks(LooksRef looks);

} // namespace polyfab
