// SPDX-License-Identifier: GPL-3.0-or-later
// The mesh files that were read and written last, in this run and in those before it. They are kept
// in the state folder, where all running editors add theirs; without that folder there are none.
#pragma once

#include <string>
#include <vector>

namespace polyfab {

struct RecentFile {
    std::string path; ///< absolute
    bool imported;    ///< it was imported, not read in a format of our own
};

inline constexpr std::size_t mostRecentFiles = 10;

/// Puts the file before all others. What can't be kept is not: no file, a path with a line end
/// in it, or when the folder can't be written.
void noteRecentFile(const std::string& path, bool imported);

/// The latest first, at most mostRecentFiles.
[[nodiscard]] std::vector<RecentFile> recentFiles();

} // namespace polyfab
