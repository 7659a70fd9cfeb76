// SPDX-License-Identifier: GPL-3.0-or-later
// Looks for files that other files name, in some folders and nowhere else: a mesh from anywhere
// shall not make the editor open whatever it likes.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace polyfab {

class FileFinder {
  public:
    explicit FileFinder(const std::vector<std::filesystem::path>& searched);

    /// The regular file of this name (as fileNameIn gives it), seen from the first folder from
    /// which there is one that lies in one of them; else by its bare name; else by the last folders
    /// and the name of a path, which may come from another machine; else so again without regard
    /// to case. "": there is none.
    [[nodiscard]] std::string find(const std::string& name);
    /// The same without looking for the bare name.
    [[nodiscard]] std::string findPath(const std::string& name);

  private:
    using Names = std::vector<std::string>;

    [[nodiscard]] std::string findAny(const std::vector<std::filesystem::path>& names);
    [[nodiscard]] std::string findFrom(const std::filesystem::path& folder,
                                       const std::filesystem::path& name, bool anyCase);
    [[nodiscard]] bool isOurs(const std::filesystem::path& path, std::string& file) const;
    [[nodiscard]] std::filesystem::path withOwnCase(const std::filesystem::path& folder,
                                                    const std::filesystem::path& name);
    const Names& namesIn(const std::filesystem::path& folder);

    std::vector<std::filesystem::path> folders; ///< canonical
    std::map<std::string, Names> listed;        ///< what is in each that was looked through, sorted
};

/// A name as files of materials give it, as a path: without quotes and blanks around it, and with
/// slashes in place of backslashes.
[[nodiscard]] std::string fileNameIn(std::string_view text);

[[nodiscard]] bool sameButCase(std::string_view a, std::string_view b);

/// The folder of a file, "." for a bare name.
[[nodiscard]] std::filesystem::path folderOf(const std::string& path);

} // namespace polyfab
