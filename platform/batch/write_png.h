// SPDX-License-Identifier: GPL-3.0-or-later
// Pictures as PNG files.
#pragma once

#include "platform/platform.h"

#include <string>

namespace polyfab {

/// Writes the picture as an 8-bit RGB file, replacing what is there when it is complete. Returns an
/// empty text, or why it failed: what was there is as it was.
[[nodiscard]] std::string writePng(const Bitmap& picture, const std::string& path);

} // namespace polyfab
