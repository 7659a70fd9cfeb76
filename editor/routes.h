// SPDX-License-Identifier: GPL-3.0-or-later
// What the window does with each kind of event, in the mesh view and in sub-views.
#pragma once

#include "platform/platform.h"

namespace polyfab {

/// Whether a drag that runs ends before the event is handled, and keeps what it did.
[[nodiscard]] bool endsDrag(const Event& event);

/// Handles the event. `inside`: another is being handled, whose box or work let this one in; it
/// can't close the window then. When memory runs out a message says so. What undo calls the step
/// that the event may lead to; "": like the event.
const char* dispatch(const Event& event, bool inside);

} // namespace polyfab
