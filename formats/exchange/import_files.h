// SPDX-License-Identifier: GPL-3.0-or-later
// The files that an importer opens: the one that the user named, and what that refers to as long as
// it is a regular file in the same folder or below. Links are followed first, so that none leads
// out.
#pragma once

#include <assimp/cfileio.h>

#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace polyfab {

class ImportFiles {
  public:
    /// `grown` is told, whenever a file is opened first, how many bytes all of them have.
    explicit ImportFiles(const std::string& path, std::function<void(std::uint64_t)> grown = {});
    ImportFiles(const ImportFiles&) = delete;
    ImportFiles& operator=(const ImportFiles&) = delete;

    /// For the library, which must be done with them before this object goes.
    aiFileIO* operations() { return &io; }

    /// What the file asked for and did not get, a sentence each.
    [[nodiscard]] const std::vector<std::string>& notes() const { return list; }

  private:
    static aiFile* open(aiFileIO* io, const char* path, const char* mode);
    /// The descriptor; -1, and noted why, for what the file may not have.
    int openFile(const std::string& path);
    void refuse(const std::string& path, const char* why);
    void count(int file);

    aiFileIO io;
    std::string main;   ///< the file as the user named it
    std::string folder; ///< its folder, as the paths that the library makes begin; "" or with a "/"
    std::string realMain, realFolder; ///< without links
    std::function<void(std::uint64_t)> told;
    std::set<std::pair<std::uint64_t, std::uint64_t>> known; ///< those opened: device and number
    std::uint64_t bytes = 0;
    std::set<std::string> names; ///< of what was refused, without folders
    std::vector<std::string> list;
};

} // namespace polyfab
