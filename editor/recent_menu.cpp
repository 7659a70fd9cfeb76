// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/recent_menu.h"

#include "editor/recent_files.h"
#include "formats/import_mesh.h"
#include "formats/mesh_files.h"

#include <filesystem>
#include <optional>
#include <system_error>

namespace polyfab {
namespace {

std::optional<RecentFile> recentFile(int number) {
    const std::vector<RecentFile> files = recentFiles();
    const auto place = static_cast<std::size_t>(number);
    return place < files.size() ? std::optional(files[place]) : std::nullopt;
}

/// A path as a menu shows it: of a long one the end, from a folder on.
std::string menuPath(std::string path) {
    constexpr std::size_t most = 60;
    if (path.size() > most) {
        const std::size_t folder = path.find('/', path.size() - most);
        if (folder != std::string::npos) path = "..." + path.substr(folder);
    }
    for (std::size_t at = 0; (at = path.find('&', at)) != std::string::npos; at += 2) {
        path.insert(at, 1, '&');
    }
    return path;
}

} // namespace

Shown shownRecentFile(int number) {
    const auto file = recentFile(number);
    if (!file) return {"", false, true};
    const std::string key = number == 9 ? "1&0" : "&" + std::to_string(number + 1);
    std::error_code failure;
    return {key + " " + menuPath(file->path),
            std::filesystem::is_regular_file(file->path, failure)};
}

void openRecentFile(int number) {
    const auto file = recentFile(number);
    if (!file) return;
    file->imported ? importNamedMesh(file->path, false) : readNamedMeshFile(file->path);
}

} // namespace polyfab
