// SPDX-License-Identifier: GPL-3.0-or-later
// The rendering menu: which panes are shaded, and how.
#pragma once

#include <string>

namespace polyfab {

/// A pane is rendered, or shows wires again; a note says which.
template <bool left>
void toggleRendered();
template <bool left>
[[nodiscard]] bool paneIsRendered();

/// One of the two always holds.
void renderFlat();
void renderSmooth();
[[nodiscard]] bool rendersFlat();
[[nodiscard]] bool rendersSmooth();

void toggleRenderedEdges();
[[nodiscard]] bool renderedEdgesAreShown();

/// Each asks; an answer that makes no sense is refused by a message.
void setLight();
void setRenderBackground();

/// The colour as six hexadecimal digits.
[[nodiscard]] std::string renderBackground();

/// Settings that nobody has chosen follow the number of faces: of more than 50,000 the edges would
/// cover rendered panes. After a read of more than 100,000, which are a solid patch of wires, both
/// panes are rendered, and a note says so. To be called when the faces are counted. What was
/// altered shows in rendered panes.
void suitRendering(bool wasRead, bool altered);

} // namespace polyfab
