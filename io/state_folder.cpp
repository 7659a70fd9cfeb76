// SPDX-License-Identifier: GPL-3.0-or-later
#include "io/state_folder.h"

#include <cstdlib>
#include <filesystem>
#include <pwd.h>
#include <system_error>
#include <unistd.h>

namespace polyfab {
namespace {

namespace fs = std::filesystem;

/// The absolute path that the variable holds, or none.
fs::path pathIn(const char* variable) {
    const char* const value = std::getenv(variable);
    const fs::path path = value == nullptr ? "" : value;
    return path.is_absolute() ? path : fs::path();
}

} // namespace

std::string userStateFolder() {
    fs::path base = pathIn("XDG_STATE_HOME");
    if (base.empty()) {
        fs::path home = pathIn("HOME");
        if (const passwd* const user = ::getpwuid(::getuid()); home.empty() && user != nullptr) {
            home = user->pw_dir;
        }
        if (home.empty()) return "";
        base = home / ".local" / "state";
    }
    const fs::path folder = base / "polyfab";
    std::error_code failure;
    if (fs::create_directories(folder, failure)) {
        fs::permissions(folder, fs::perms::owner_all, failure);
    }
    return folder;
}

} // namespace polyfab
