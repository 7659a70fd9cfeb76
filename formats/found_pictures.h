// SPDX-License-Identifier: GPL-3.0-or-later
// The pictures that the materials of one file name, and which of them are not there.
#pragma once

#include "formats/file_finder.h"
#include "picture/picture_source.h"
#include "workbench/notes.h"

#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace polyfab {

class FoundPictures {
  public:
    /// The names that follow stand in another file: there they may mean other pictures.
    void startFile() {
        before += std::ssize(named);
        named.clear();
    }

    /// Null when there is none. Two names of one file give one picture.
    std::shared_ptr<PictureSource> find(const std::string& name, FileFinder& finder) {
        const auto [entry, isNew] = named.try_emplace(name);
        if (!isNew) return entry->second;
        const std::string path = finder.find(name);
        if (path.empty()) {
            missing.push_back(name);
        } else {
            auto& picture = inFiles[path];
            if (picture == nullptr) picture = std::make_shared<PictureSource>(path);
            entry->second = picture;
        }
        return entry->second;
    }

    /// On those that are not there; "": all are.
    [[nodiscard]] std::string note() const {
        if (missing.empty()) return "";
        return "I can't find " + counted(std::ssize(missing)) + " of the "
               + counted(before + std::ssize(named))
               + " pictures of the materials: " + listOf(missing);
    }

  private:
    std::map<std::string, std::shared_ptr<PictureSource>> named, inFiles;
    std::vector<std::string> missing;
    std::ptrdiff_t before = 0; ///< names in the files before
};

} // namespace polyfab
