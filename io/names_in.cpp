// SPDX-License-Identifier: GPL-3.0-or-later
#include "io/names_in.h"

#include <dirent.h>
#include <filesystem>
#include <memory>
#include <system_error>

namespace polyfab {

std::vector<std::string> namesIn(const std::string& folder) {
    struct Close {
        void operator()(DIR* opened) const { ::closedir(opened); }
    };
    const std::unique_ptr<DIR, Close> opened(::opendir(folder.c_str()));
    std::vector<std::string> names;
    while (const dirent* const entry = opened ? ::readdir(opened.get()) : nullptr) {
        names.emplace_back(entry->d_name);
    }
    return names;
}

bool isFreeName(const std::string& path) {
    std::error_code failure;
    const auto status = std::filesystem::symlink_status(path, failure);
    return status.type() == std::filesystem::file_type::not_found;
}

} // namespace polyfab
