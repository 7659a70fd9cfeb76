// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/commands/recent.h"

#include "formats/exchange/import_mesh.h"
#include "formats/mesh_files.h"
#include "io/utf8.h"
#include "platform/platform.h"
#include "workbench/recent_files.h"

#include <algorithm>
#include <iterator>
#include <vector>

namespace polyfab {
namespace {

/// The file of this number, or null.
const RecentFile* fileAt(int number) {
    const std::vector<RecentFile>& files = recentFiles();
    return number >= 0 && number < std::ssize(files) ? &files[static_cast<std::size_t>(number)]
                                                     : nullptr;
}

/// A path as a menu shows it: of a long one the end, from a folder or at least a character on.
std::string menuPath(std::string path) {
    constexpr std::size_t most = 60;
    if (path.size() > most) {
        std::size_t start = path.size() - most;
        const std::size_t folder = path.find('/', start);
        while (continuesCharacter(path[start])) ++start;
        path = "..." + path.substr(folder == std::string::npos ? start : folder);
    }
    std::replace_if(
        path.begin(), path.end(), [](unsigned char c) { return c < 32; }, ' ');
    for (std::size_t at = 0; (at = path.find('&', at)) != std::string::npos; at += 2) {
        path.insert(at, 1, '&');
    }
    return path;
}

} // namespace

Shown shownRecentFile(int number) {
    const RecentFile* const file = fileAt(number);
    if (file == nullptr) return {"", false, true};
    const std::string key = number == 9 ? "1&0" : "&" + std::to_string(number + 1);
    return {key + " " + menuPath(file->path), !file->missing};
}

void openRecentFile(int number) {
    const RecentFile* const file = fileAt(number);
    if (file == nullptr) return;
    const RecentFile opened = *file; // the list changes when it is opened
    opened.imported ? importNamedMesh(opened.path, false) : readNamedMeshFile(opened.path);
}

int plainCommand(int id) {
    const RecentFile* const file = fileAt(id - commandid::firstRecentFile);
    return file == nullptr ? id : file->imported ? commandid::importMesh : commandid::readMesh;
}

} // namespace polyfab
