// SPDX-License-Identifier: GPL-3.0-or-later
// Pictures as PNG files.
#pragma once

#include "platform/platform.h"

#include <string>

namespace polyfab {

/// Writes the picture as an 8-bit RGB file, replacing what is there. Returns an empty text, or why
/// it failed; no half-written file stays behind.
[[nodiscard]] std::string writePng(const Bitmap& picture, const std::string& path);

} // namespace polyfab
