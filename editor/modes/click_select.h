// SPDX-License-Identifier: GPL-3.0-or-later
// The modes that select by clicking: a left press on a face selects the whole group (material,
// part, texture map area) that it is in, and nothing else.
#pragma once

#include "editor/modes/drag.h"

namespace polyfab {

std::unique_ptr<Drag> selectGroupAt(const Event& press);
std::unique_ptr<Drag> selectMaterialAt(const Event& press);
std::unique_ptr<Drag> selectPartAt(const Event& press);
std::unique_ptr<Drag> selectTextureMapAreaAt(const Event& press);

} // namespace polyfab
