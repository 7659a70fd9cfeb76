// SPDX-License-Identifier: GPL-3.0-or-later
// The search over the commands of a menu bar.
#pragma once

#include "platform/platform.h"

class QWidget;

namespace polyfab {

/// The command that the user finds and chooses among those of the bar, or 0.
[[nodiscard]] int askCommand(QWidget* owner, const MenuBar& bar);

} // namespace polyfab
