// SPDX-License-Identifier: GPL-3.0-or-later
// The files beside a target that hold what will replace it, and how none of them stays behind.
#pragma once

#include <string>
#include <sys/types.h>

namespace polyfab {

/// Makes a new file in the folder, for writing, under a name that is short and that nobody else
/// uses; `path` becomes its path. Returns its descriptor, or -1 with errno set.
[[nodiscard]] int makeTemporary(const std::string& folder, mode_t mode, std::string& path);

/// Makes a folder for this user alone, whose path begins so; it may come to hold files, but no
/// folders. False, and nothing made: errno tells why.
[[nodiscard]] bool makeTemporaryFolder(const std::string& start, std::string& path);

/// To be called before a file is made that is temporary under a name of its own.
void rememberTemporary(const std::string& path);

/// To be called when the file or folder is removed or has another name: it is temporary no more.
void forgetTemporary(const std::string& path);

/// Removes those of this process, for one that ends at once. May be called in a signal's handler.
void removeTemporaries();

/// From here on SIGTERM, SIGHUP, SIGINT and SIGQUIT remove the temporary files and folders before
/// they end the process as ever. Those that are ignored stay so.
void removeTemporariesOnSignals();

/// While one lives those signals wait: what lies in the folder is to be replaced in steps.
class HeldSignals {
  public:
    HeldSignals();
    ~HeldSignals();
    HeldSignals(const HeldSignals&) = delete;
    HeldSignals& operator=(const HeldSignals&) = delete;
};

/// Removes temporary files in the folder that are this user's and older than a day: the programs
/// that made them were killed.
void removeOldTemporaries(const std::string& folder);

} // namespace polyfab
