// SPDX-License-Identifier: GPL-3.0-or-later
// The wireframe picture of the mesh in both panes.
#pragma once

#include "mesh/mesh.h"
#include "platform/platform.h"

#include <cstdint>

namespace polyfab {

/// Colours of the picture, 0xFFRRGGBB.
struct Palette {
    std::uint32_t background = 0xFFFAFAF7;
    std::uint32_t divider = 0xFF9AA3AE;
    std::uint32_t edge = 0xFF17456B;       ///< of a selected face
    std::uint32_t unselected = 0xFF9DA8B5; ///< of unselected faces only
};

inline constexpr Palette palette;

/// The picture of the mesh in a window of this client size. Makes again what `stale` names (and the
/// layout when the size is another one), lowers the flags and draws; with nothing stale it only
/// returns the picture it has. The picture is valid until the next call. When memory runs out it is
/// empty and the flags stay raised.
[[nodiscard]] const Bitmap& drawPanes(Mesh& mesh, Size client);

} // namespace polyfab
