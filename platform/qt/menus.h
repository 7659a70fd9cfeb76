// SPDX-License-Identifier: GPL-3.0-or-later
// Menus out of records.
#pragma once

#include "platform/platform.h"

#include <QHash>

#include <functional>

class QAction;
class QMenu;
class QObject;
class QString;

namespace polyfab {

/// The actions of a menu bar, by their commands; owned by its menus.
using Actions = QHash<int, QAction*>;

/// Fills the menu. `choose` is told of the command that the user chooses; its mark stays as the
/// program last set it.
void fillMenu(QMenu& menu, const std::vector<MenuItem>& items, Actions& actions,
              const std::function<void(int command)>& choose);

/// A tool tip that is broken into lines where it is long.
[[nodiscard]] QString wrappedTip(const std::string& text);

} // namespace polyfab
