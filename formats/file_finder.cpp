// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/file_finder.h"

#include "io/names_in.h"

#include <algorithm>
#include <cctype>
#include <system_error>

namespace polyfab {
namespace {

namespace fs = std::filesystem;

/// Whether the path, all links followed, is a regular file below the folder.
bool isFileBelow(const fs::path& folder, const fs::path& path, fs::path& file) {
    std::error_code failure;
    file = fs::canonical(path, failure);
    if (failure || !fs::is_regular_file(file, failure)) return false;
    return std::mismatch(folder.begin(), folder.end(), file.begin(), file.end()).first
           == folder.end();
}

} // namespace

bool sameButCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
        return std::tolower(static_cast<unsigned char>(x))
               == std::tolower(static_cast<unsigned char>(y));
    });
}

FileFinder::FileFinder(const std::vector<fs::path>& searched) {
    for (const fs::path& folder : searched) {
        std::error_code failure;
        const fs::path known = fs::canonical(folder, failure);
        const bool isNew = std::find(folders.begin(), folders.end(), known) == folders.end();
        if (!failure && isNew) folders.push_back(known);
    }
}

std::string FileFinder::find(const std::string& name) {
    const fs::path bare = fs::path(name).filename();
    for (const bool anyCase : {false, true}) {
        for (const fs::path& tried : {fs::path(name), bare}) {
            for (std::size_t i = 0; i < folders.size(); ++i) {
                std::string found = findIn(i, tried, anyCase);
                if (!found.empty()) return found;
            }
        }
    }
    return "";
}

std::string FileFinder::findIn(std::size_t folder, const fs::path& name, bool anyCase) {
    const fs::path& root = folders[folder];
    fs::path below = name.is_absolute() ? name.lexically_relative(root) : name.lexically_normal();
    if (below.empty() || *below.begin() == ".." || *below.begin() == ".") return "";
    if (anyCase) below = withOwnCase(root, below);
    fs::path file;
    return !below.empty() && isFileBelow(root, root / below, file) ? file.string() : "";
}

/// The name as the folder spells it, part by part; empty when it has no such file.
fs::path FileFinder::withOwnCase(const fs::path& folder, const fs::path& name) {
    fs::path spelt;
    for (const fs::path& part : name) {
        const Names& names = namesIn(folder / spelt);
        const auto found = std::find_if(names.begin(), names.end(), [&](const std::string& n) {
            return sameButCase(n, part.native());
        });
        if (found == names.end()) return {};
        spelt /= *found;
    }
    return spelt;
}

const FileFinder::Names& FileFinder::namesIn(const fs::path& folder) {
    const auto [entry, isNew] = listed.try_emplace(folder.string());
    if (!isNew) return entry->second;
    entry->second = polyfab::namesIn(folder.string());
    std::sort(entry->second.begin(), entry->second.end());
    return entry->second;
}

std::string fileNameIn(std::string_view text) {
    constexpr std::string_view around = " \t\"";
    const std::size_t begin = text.find_first_not_of(around);
    if (begin == std::string_view::npos) return "";
    std::string name(text.substr(begin, text.find_last_not_of(around) + 1 - begin));
    std::replace(name.begin(), name.end(), '\\', '/');
    return name;
}

fs::path folderOf(const std::string& path) {
    const fs::path folder = fs::path(path).parent_path();
    return folder.empty() ? "." : folder;
}

} // namespace polyfab
