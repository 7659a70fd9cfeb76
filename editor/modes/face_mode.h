// SPDX-License-Identifier: GPL-3.0-or-later
// Face handling, one of the handling modes.
#pragma once

#include "platform/platform.h"

namespace polyfab {

/// Every mouse event of the mode. A left press makes the nearest face current, with Shift it also
/// turns its selection round; a drag from point to point splits the face that has both.
void handleFaces(const Event& event);

/// Asks, and then deletes the current face. Without one nothing happens.
void deleteCurrentFace();

} // namespace polyfab
