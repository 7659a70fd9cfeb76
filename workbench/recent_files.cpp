// SPDX-License-Identifier: GPL-3.0-or-later
// One file a line: "read" or "import", a blank, the path.
#include "workbench/recent_files.h"

#include "io/save_file.h"
#include "io/state_folder.h"

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <string_view>
#include <system_error>

namespace polyfab {
namespace {

constexpr std::string_view readMark = "read ", importMark = "import ";

std::vector<RecentFile> files;

std::string listPath() { return stateFolder + "/recent-files"; }

} // namespace

void loadRecentFiles() {
    files.clear();
    if (stateFolder.empty()) return;
    std::istringstream list(readStateFile(listPath()).value_or(""));
    for (std::string line; files.size() < mostRecentFiles && std::getline(list, line);) {
        const bool imported = line.starts_with(importMark);
        const std::string_view mark = imported ? importMark : readMark;
        if (line.starts_with(mark) && line.size() > mark.size()) {
            files.push_back({line.substr(mark.size()), imported});
        }
    }
}

void noteRecentFile(const std::string& path, bool imported) {
    if (stateFolder.empty() || path.find('\n') != std::string::npos) return;
    std::error_code failure;
    const std::string whole = std::filesystem::weakly_canonical(path, failure);
    if (failure || !std::filesystem::is_regular_file(whole, failure)) return;
    loadRecentFiles();
    std::erase_if(files, [&](const RecentFile& file) { return file.path == whole; });
    files.insert(files.begin(), {whole, imported});
    files.resize(std::min(files.size(), mostRecentFiles));
    SaveFile list;
    if (!list.open(listPath(), FileKind::state)) return;
    for (const RecentFile& file : files) {
        list.append(file.imported ? importMark : readMark);
        list.append(file.path);
        list.append("\n");
    }
    static_cast<void>(list.commit());
}

void findMissingRecentFiles() {
    for (RecentFile& file : files) {
        std::error_code failure;
        file.missing = !std::filesystem::is_regular_file(file.path, failure);
    }
}

const std::vector<RecentFile>& recentFiles() { return files; }

} // namespace polyfab
