// SPDX-License-Identifier: GPL-3.0-or-later
// The folder where the editor keeps, from one run to the next, what is no setting and no document.
#pragma once

#include <optional>
#include <string>

namespace polyfab {

/// Makes the folder and those above it that are missing, for this user alone whatever the umask.
void makePrivateFolder(const std::string& path);

/// "$XDG_STATE_HOME/polyfab" or, where that variable is not an absolute path,
/// "$HOME/.local/state/polyfab". Makes the folder if it is not there and can
/// be made; it is for this user alone, whatever it was before. Empty when the user has no home.
[[nodiscard]] std::string userStateFolder();

/// The whole of a file that the editor keeps for itself; nothing when it can't be read, is a link
/// or no regular file, or is larger than a megabyte.
[[nodiscard]] std::optional<std::string> readStateFile(const std::string& path);

/// The folder of this run; empty: nothing is kept. Set by main before the editor starts.
inline std::string stateFolder;

} // namespace polyfab
