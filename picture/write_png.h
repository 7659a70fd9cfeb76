// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "picture/image.h"

#include <string>

namespace polyfab {

/// Writes the picture as a PNG file, with alpha where some pixel is not opaque. Returns "", or why
/// it could not; an old file is then as it was.
[[nodiscard]] std::string writePngFile(const Image& image, const std::string& path);

} // namespace polyfab
