// SPDX-License-Identifier: GPL-3.0-or-later
// Picture files. What a file is shows in its first bytes, not in its name.
#pragma once

#include "picture/image.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace polyfab {

/// Pixels to a side, and in all, that a picture may have; with more it is refused before any memory
/// is taken.
inline constexpr std::int64_t maxImageSide = 16384;
inline constexpr std::int64_t maxImagePixels = std::int64_t{64} << 20; ///< 8192 x 8192

/// Reads the picture in the file, which must be a regular one. Returns "", or why it can't be read;
/// `image` is then as it was. Never throws.
[[nodiscard]] std::string readImage(const std::string& path, Image& image);

/// What the files that nearly all programs read begin with.
inline constexpr std::string_view pngHead = "\x89PNG\r\n\x1a\n", jpegHead = "\xFF\xD8\xFF";

/// The same of the bytes of a file.
[[nodiscard]] std::string decodeImage(std::string_view bytes, Image& image);

/// Makes a picture opaque that would not show at all: many programs leave alpha at 0.
void dropEmptyAlpha(Image& image);

} // namespace polyfab
