// SPDX-License-Identifier: GPL-3.0-or-later
#include "io/state_folder.h"

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <pwd.h>
#include <sys/stat.h>
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

void makePrivateFolder(const std::string& path) {
    const fs::path folder = path;
    struct stat status {};
    if (::stat(path.c_str(), &status) == 0 || folder == folder.parent_path()) return;
    makePrivateFolder(folder.parent_path());
    if (::mkdir(path.c_str(), 0700) == 0) ::chmod(path.c_str(), 0700);
}

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
    makePrivateFolder(folder);
    ::chmod(folder.c_str(), 0700);
    return folder;
}

std::optional<std::string> readStateFile(const std::string& path) {
    constexpr std::size_t most = std::size_t{1} << 20;
    const int file = ::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (file < 0) return std::nullopt;
    struct stat status {};
    std::string text(most + 1, '\0');
    const bool regular = ::fstat(file, &status) == 0 && S_ISREG(status.st_mode);
    const ssize_t got = regular ? ::read(file, text.data(), text.size()) : -1;
    ::close(file);
    if (got < 0 || static_cast<std::size_t>(got) > most) return std::nullopt;
    text.resize(static_cast<std::size_t>(got));
    return text;
}

} // namespace polyfab
