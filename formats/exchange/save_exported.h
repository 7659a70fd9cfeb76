// SPDX-License-Identifier: GPL-3.0-or-later
// From the folder where the exporter writes to the files that the user wants.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace polyfab {

class SaveFile;

/// Where the exporter writes; removed with everything in it.
class ScratchFolder {
  public:
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    std::filesystem::path path; ///< "" when it could not be made

  private:
    int lock = -1; ///< which the system takes away with the process
};

/// Removes the scratch folders of this user whose programs live no more.
void removeDeadScratchFolders();

/// How a reason ends when the user wants a file beside the target to stay.
inline constexpr std::string_view wasKept = " was to be kept";

/// Takes everything over that the exporter wrote into the folder: the file that is named like the
/// target, into `file`, which is open for it, and those beside it. All are complete on the disk
/// before the first of them replaces an old one. Whenever the program is killed, the target and
/// what it refers to fit. Returns "" or what went wrong; the old files are then as they were or,
/// where only the last of the files beside it failed, the target refers to new ones of other names.
[[nodiscard]] std::string saveExported(const std::filesystem::path& folder,
                                       const std::filesystem::path& target, SaveFile& file);

} // namespace polyfab
