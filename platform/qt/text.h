// SPDX-License-Identifier: GPL-3.0-or-later
// Lines of text in pictures.
#pragma once

#include "platform/platform.h"

#include <string>

namespace polyfab {

/// As Platform::drawText.
void paintText(Bitmap& picture, int x, int y, const std::string& text, const Font& font,
               std::uint32_t color);

/// As Platform::textWidth.
int paintedWidth(const std::string& text, const Font& font);

} // namespace polyfab
