// SPDX-License-Identifier: GPL-3.0-or-later
// Lines of text in pictures, in the sans-serif font of the system. The font is looked for at the
// first use only; where there is none, nothing is drawn and all widths are 0.
#pragma once

#include "platform/platform.h"

#include <string>

namespace polyfab {

/// As Platform::drawText.
void layText(Bitmap& picture, int x, int y, const std::string& text, const Font& font,
             std::uint32_t color);

/// As Platform::textWidth.
int laidWidth(const std::string& text, const Font& font);

} // namespace polyfab
