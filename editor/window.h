// SPDX-License-Identifier: GPL-3.0-or-later
// The editor behind the main window: every event of the window enters here.
#pragma once

#include "platform/platform.h"

namespace polyfab {

void handleEvent(const Event& event);

/// The editor as the backends run it.
[[nodiscard]] const Program& editorProgram();

} // namespace polyfab
