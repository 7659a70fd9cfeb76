// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/file_finder.h"

#include "io/names_in.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <iterator>
#include <system_error>

namespace polyfab {
namespace fs = std::filesystem;

/// At the end of a path from elsewhere.
constexpr std::ptrdiff_t mostFolders = 3;

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
    const fs::path path = name;
    std::vector<fs::path> names{path, path.filename()};
    const std::ptrdiff_t parts = std::distance(path.begin(), path.end());
    for (std::ptrdiff_t kept = std::min<std::ptrdiff_t>(mostFolders + 1, parts - 1); kept > 1;
         --kept) {
        fs::path& end = names.emplace_back();
        for (auto part = std::prev(path.end(), kept); part != path.end(); ++part) end /= *part;
    }
    return findAny(names);
}

std::string FileFinder::findPath(const std::string& name) { return findAny({name}); }

std::string FileFinder::findAny(const std::vector<fs::path>& names) {
    for (const bool anyCase : {false, true}) {
        for (const fs::path& name : names) {
            for (const fs::path& folder : folders) {
                std::string found = findFrom(folder, name, anyCase);
                if (!found.empty()) return found;
            }
        }
    }
    return "";
}

/// Folders are left and entered in the text of the name only: none but ours are looked into.
std::string FileFinder::findFrom(const fs::path& folder, const fs::path& name, bool anyCase) {
    const fs::path place = (folder / name).lexically_normal();
    for (const fs::path& root : folders) {
        fs::path below = place.lexically_relative(root);
        if (below.empty() || *below.begin() == ".." || *below.begin() == ".") continue;
        if (anyCase) below = withOwnCase(root, below);
        std::string file;
        if (!below.empty() && isOurs(root / below, file)) return file;
    }
    return "";
}

/// Whether the path, all links followed, is a regular file in one of the folders.
bool FileFinder::isOurs(const fs::path& path, std::string& file) const {
    std::error_code failure;
    const fs::path known = fs::canonical(path, failure);
    if (failure || !fs::is_regular_file(known, failure)) return false;
    file = known.string();
    return std::any_of(folders.begin(), folders.end(), [&](const fs::path& folder) {
        return std::mismatch(folder.begin(), folder.end(), known.begin(), known.end()).first
               == folder.end();
    });
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
