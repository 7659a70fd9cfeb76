// SPDX-License-Identifier: GPL-3.0-or-later
// The files beside a target that hold what will replace it, and how none of them stays behind.
#pragma once

#include <string>
#include <sys/types.h>

namespace polyfab {

/// Makes a new file in the folder, for writing, under a name that is short and that nobody else
/// uses; `path` becomes its path. Returns its descriptor, or -1 with errno set.
[[nodiscard]] int makeTemporary(const std::string& folder, mode_t mode, std::string& path);

/// To be called when the file is removed or has another name: it is temporary no more.
void forgetTemporary(const std::string& path);

/// Removes those of this process, for one that ends at once. May be called in a signal's handler.
void removeTemporaries();

/// From here on SIGTERM, SIGHUP, SIGINT and SIGQUIT remove the temporary files before they end the
/// process as ever. Those that are ignored stay so.
void removeTemporariesOnSignals();

/// Removes temporary files in the folder that are this user's and older than a day: the programs
/// that made them were killed.
void removeOldTemporaries(const std::string& folder);

} // namespace polyfab
