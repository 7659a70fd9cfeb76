// SPDX-License-Identifier: GPL-3.0-or-later
// The mesh files that were read and written last, in this run and in those before it. They are kept
// in the state folder, where all running editors add theirs; without that folder there are none.
#pragma once

#include <string>
#include <vector>

namespace polyfab {

struct RecentFile {
    std::string path;     ///< absolute
    bool imported;        ///< it was imported or exported, not of a format of our own
    bool missing = false; ///< when it was looked for last
};

inline constexpr std::size_t mostRecentFiles = 10;

/// Reads the list.
void loadRecentFiles();

/// Reads the list anew, puts the file before all others and writes the list. What is no file, or
/// has a line end in its path, is left out.
void noteRecentFile(const std::string& path, bool imported);

/// Looks which of the files are missing now, which may take long where disks are far away.
void findMissingRecentFiles();

/// The latest first, at most mostRecentFiles. It changes only when it is read: what other editors
/// add meanwhile does not push a file out of the menu row that names it.
[[nodiscard]] const std::vector<RecentFile>& recentFiles();

} // namespace polyfab
