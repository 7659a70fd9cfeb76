// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/recent_menu.h"

#include "editor/recent_files.h"
#include "formats/import_mesh.h"
#include "formats/mesh_files.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>
#include <vector>

namespace polyfab {
namespace {

struct Entry {
    RecentFile file;
    bool missing = false;
};

std::vector<Entry> entries;

/// The entry of this number, or null.
const Entry* entryAt(int number) {
    return number >= 0 && number < std::ssize(entries) ? &entries[static_cast<std::size_t>(number)]
                                                       : nullptr;
}

/// A path as a menu shows it: of a long one the end, from a folder on.
std::string menuPath(std::string path) {
    constexpr std::size_t most = 60;
    if (path.size() > most) {
        const std::size_t folder = path.find('/', path.size() - most);
        if (folder != std::string::npos) path = "..." + path.substr(folder);
    }
    std::replace_if(
        path.begin(), path.end(), [](unsigned char c) { return c < 32; }, ' ');
    for (std::size_t at = 0; (at = path.find('&', at)) != std::string::npos; at += 2) {
        path.insert(at, 1, '&');
    }
    return path;
}

} // namespace

void loadRecentFiles() {
    std::vector<Entry> loaded;
    for (RecentFile& file : recentFiles()) loaded.push_back({std::move(file)});
    entries = std::move(loaded);
}

void findMissingRecentFiles() {
    for (Entry& entry : entries) {
        std::error_code failure;
        entry.missing = !std::filesystem::is_regular_file(entry.file.path, failure);
    }
}

Shown shownRecentFile(int number) {
    const Entry* const entry = entryAt(number);
    if (entry == nullptr) return {"", false, true};
    const std::string key = number == 9 ? "1&0" : "&" + std::to_string(number + 1);
    return {key + " " + menuPath(entry->file.path), !entry->missing};
}

void openRecentFile(int number) {
    const Entry* const entry = entryAt(number);
    if (entry == nullptr) return;
    const auto [path, imported] = entry->file; // a copy: the list changes when it is opened
    imported ? importNamedMesh(path, false) : readNamedMeshFile(path);
}

int plainCommand(int id) {
    constexpr int readCommand = 256, importCommand = 2001;
    const Entry* const entry = entryAt(id - firstRecentFileCommand);
    return entry == nullptr ? id : entry->file.imported ? importCommand : readCommand;
}

} // namespace polyfab
