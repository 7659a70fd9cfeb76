// SPDX-License-Identifier: GPL-3.0-or-later
// The pictures of the tool bar's buttons.
#pragma once

#include <QIcon>

#include <string>

namespace polyfab {

/// The picture of this name, icons/NAME.svg, sharp at every size and always in the colour that
/// texts of buttons have on the desktop.
[[nodiscard]] QIcon themedIcon(const std::string& name);

} // namespace polyfab
