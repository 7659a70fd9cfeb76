// SPDX-License-Identifier: GPL-3.0-or-later
// The folder where the editor keeps, from one run to the next, what is no setting and no document.
#pragma once

#include <string>

namespace polyfab {

/// "$XDG_STATE_HOME/polyfab" or, where that variable is not an absolute path,
/// "$HOME/.local/state/polyfab". Makes the folder, for this user alone, if it is not there and can
/// be made. Empty when the user has no home.
[[nodiscard]] std::string userStateFolder();

/// The folder of this run; empty: nothing is kept. Set by main before the editor starts.
inline std::string stateFolder;

} // namespace polyfab
