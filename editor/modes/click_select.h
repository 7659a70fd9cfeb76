// SPDX-License-Identifier: GPL-3.0-or-later
// The modes that select by clicking: a left press on a face selects the whole group (material,
// part, texture map area) that it is in, and nothing else.
#pragma once

#include "platform/platform.h"

namespace polyfab {

void selectGroupAt(const Event& event);
void selectMaterialAt(const Event& event);
void selectPartAt(const Event& event);
void selectTextureMapAreaAt(const Event& event);

} // namespace polyfab
