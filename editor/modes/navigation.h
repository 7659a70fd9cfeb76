// SPDX-License-Identifier: GPL-3.0-or-later
// Looking round in every mode: wheel, middle button and two keys change the view. While the left or
// right button is down they do nothing, so that no drag is disturbed.
#pragma once

#include "platform/platform.h"

namespace polyfab {

/// The commands that do what Home and the full stop do.
inline constexpr int fitCommand = 2073, fitSelectedCommand = 2074;

/// Zooms about the mouse, by a fifth a step.
void zoomByWheel(const Event& event);

/// A drag with the middle button moves the picture; with Shift it turns the view. Takes every mouse
/// event, after history and position are up to date.
void navigateByMouse(const Event& event);

/// Home fits the whole mesh in both panes and the box around it; the full stop fits the selected
/// faces. Whether the key was one of these.
bool navigateByKey(int code);

} // namespace polyfab
