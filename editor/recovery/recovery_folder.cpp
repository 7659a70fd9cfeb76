// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/recovery/recovery_folder.h"

#include "io/state_folder.h"

#include <algorithm>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace polyfab {
namespace {

namespace fs = std::filesystem;

constexpr const char* prefix = "recovery-";
constexpr const char* keptSuffix = ".kept";

/// The first of "BASE", "BASE-2", "BASE-3", ... with the suffix for which `act` succeeds; "" when
/// none of them will do.
template <typename Act>
std::string firstName(const std::string& base, const std::string& suffix, Act act) {
    constexpr int most = 100;
    for (int i = 1; i <= most; ++i) {
        std::string name = base;
        if (i > 1) name.append("-").append(std::to_string(i));
        name += suffix;
        if (act(name)) return name;
    }
    return "";
}

/// Whether a folder of this name can be one that `make` made.
bool isOurs(const std::string& name) {
    return name.starts_with(prefix)
           && name.find_first_not_of("0123456789-", std::strlen(prefix)) == std::string::npos;
}

} // namespace

RecoveryFolder::RecoveryFolder(RecoveryFolder&& other) noexcept
    : path(std::exchange(other.path, {})), lock(std::exchange(other.lock, -1)) {}

RecoveryFolder& RecoveryFolder::operator=(RecoveryFolder&& other) noexcept {
    std::swap(path, other.path);
    std::swap(lock, other.lock);
    return *this;
}

RecoveryFolder::~RecoveryFolder() { release(); }

void RecoveryFolder::release() {
    if (lock >= 0) ::close(lock);
    lock = -1;
    path.clear();
}

RecoveryFolder RecoveryFolder::lockOf(std::string folder) {
    constexpr int flags = O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
    const int file = ::open((folder + "/lock").c_str(), flags, 0600);
    if (file < 0) return {};
    ::fchmod(file, 0600); // which a umask may have narrowed
    RecoveryFolder held(std::move(folder), file);
    // A lock file that somebody has removed since it was opened locks nothing any more.
    struct stat found;
    const bool locked = ::flock(file, LOCK_EX | LOCK_NB) == 0 && ::fstat(file, &found) == 0;
    if (!locked || found.st_nlink == 0) held.release();
    return held;
}

RecoveryFolder RecoveryFolder::make(const std::string& state) {
    RecoveryFolder made;
    makePrivateFolder(state); // somebody may have cleaned up
    const std::string base = state + "/" + prefix + std::to_string(::getpid());
    firstName(base, "", [&](const std::string& name) {
        if (::mkdir(name.c_str(), 0700) != 0 || ::chmod(name.c_str(), 0700) != 0) return false;
        made = lockOf(name); // fails when another editor has just taken it for one of the dead
        return static_cast<bool>(made);
    });
    return made;
}

std::vector<RecoveryFolder> RecoveryFolder::leftBehind(const std::string& state) {
    std::vector<std::pair<fs::file_time_type, RecoveryFolder>> found;
    std::error_code failure;
    for (fs::directory_iterator entry(state, failure), end; !failure && entry != end;
         entry.increment(failure)) {
        std::error_code none;
        if (!isOurs(entry->path().filename()) || entry->is_symlink(none)
            || !entry->is_directory(none)) {
            continue;
        }
        RecoveryFolder folder = lockOf(entry->path());
        if (!folder) continue; // its editor lives
        const fs::file_time_type time = fs::last_write_time(folder.file(), none);
        if (none) {
            folder.remove(); // its editor ended before it saved anything
        } else {
            found.emplace_back(time, std::move(folder));
        }
    }
    std::sort(found.begin(), found.end(),
              [](const auto& a, const auto& b) { return a.first > b.first; });
    std::vector<RecoveryFolder> folders;
    for (auto& [time, folder] : found) folders.push_back(std::move(folder));
    return folders;
}

bool RecoveryFolder::isThere() const {
    struct stat held, named;
    return ::fstat(lock, &held) == 0 && ::stat((path + "/lock").c_str(), &named) == 0
           && held.st_ino == named.st_ino && held.st_dev == named.st_dev;
}

bool RecoveryFolder::holdsFile() const {
    std::error_code failure;
    return isThere() && fs::is_regular_file(file(), failure);
}

void RecoveryFolder::remove() {
    std::error_code ignored;
    if (lock >= 0) {
        // Only what the editor has put there: whatever else somebody keeps in it stays.
        std::vector<fs::path> files{file(), path + "/lock"};
        for (const auto& entry : fs::directory_iterator(path, ignored)) {
            const std::string name = entry.path().filename();
            if (name.starts_with(".polyfab-")) files.push_back(entry.path());
        }
        for (const fs::path& name : files) fs::remove(name, ignored);
        fs::remove(path, ignored);
    }
    release();
}

std::string RecoveryFolder::removeButKeepFile() {
    // A link fails where a rename would replace what was kept before.
    std::string kept = firstName(path, keptSuffix, [this](const std::string& name) {
        return ::link(file().c_str(), name.c_str()) == 0;
    });
    if (!kept.empty()) remove();
    return kept;
}

} // namespace polyfab
