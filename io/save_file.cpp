// SPDX-License-Identifier: GPL-3.0-or-later
#include "io/save_file.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace polyfab {
namespace {

/// The name behind any chain of symbolic links, whether it exists or not; "" for a chain without
/// end, and for links of the process table: those stand for open files, which no name replaces.
std::string followLinks(const std::string& path) {
    constexpr int maxLinks = 40;
    std::filesystem::path name = path;
    for (int i = 0; i < maxLinks; ++i) {
        std::error_code noLink;
        const std::filesystem::path next = std::filesystem::read_symlink(name, noLink);
        if (noLink) return name;
        if (name.native().starts_with("/proc/")) return {};
        name = name.parent_path() / next;
    }
    return {};
}

std::string directoryOf(const std::string& path) {
    const std::string directory = std::filesystem::path(path).parent_path();
    return directory.empty() ? "." : directory;
}

/// A name that is short whatever the target's name is: the longest names have no room for more.
std::string randomName() {
    constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyz012345";
    unsigned char bytes[6] = {};
    [[maybe_unused]] const ssize_t got = ::getrandom(bytes, sizeof bytes, 0);
    std::string name = ".polyfab-";
    for (const unsigned char byte : bytes) name += letters[byte % letters.size()];
    return name;
}

/// Gives the new file the owner and permissions of the old one as far as we may: nobody gets a
/// right by a change of owner or group that the old file did not give.
bool copyOwnership(int file, const struct stat& old) {
    const bool owner = ::fchown(file, old.st_uid, old.st_gid) == 0;
    const bool group = owner || ::fchown(file, static_cast<uid_t>(-1), old.st_gid) == 0;
    mode_t mode = old.st_mode & (owner ? 07777U : 0777U);
    if (!group) mode = (mode & 0707U) | (mode & 07U) << 3;
    return ::fchmod(file, mode) == 0;
}

/// Makes a rename last. Where the system cannot, the old or the new file is whole all the same.
void syncDirectory(const std::string& directory) {
    const int handle = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle < 0) return;
    ::fsync(handle);
    ::close(handle);
}

} // namespace

SaveFile::~SaveFile() { discard(); }

bool SaveFile::open(const std::string& path) {
    // A write beyond the limit on file sizes shall fail like any other, not end the program.
    std::signal(SIGXFSZ, SIG_IGN);
    target = followLinks(path);
    // Nothing is written here to a file that will be replaced: this finds out whether we may.
    // Appending matters when standard output goes to a file.
    file = ::open(path.c_str(), O_WRONLY | O_APPEND | O_NOCTTY | O_CLOEXEC);
    if (file < 0) return errno == ENOENT && !target.empty() && openTemporary(nullptr);
    struct stat old;
    if (::fstat(file, &old) != 0) return false;
    if (target.empty() || !S_ISREG(old.st_mode)) return true;
    ::close(std::exchange(file, -1));
    return openTemporary(&old);
}

bool SaveFile::openTemporary(const struct stat* replaced) {
    const mode_t mode = replaced == nullptr ? 0666 : 0600; // the system takes off the umask
    constexpr int tries = 100;
    for (int i = 0; i < tries && file < 0; ++i) {
        temporary = directoryOf(target) + "/" + randomName();
        file = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
        if (file < 0 && errno != EEXIST) break;
    }
    if (file < 0) temporary.clear();
    return file >= 0 && (replaced == nullptr || copyOwnership(file, *replaced));
}

void SaveFile::append(std::string_view text) {
    while (!text.empty()) {
        const std::size_t count = std::min(text.size(), maxRoom);
        char* const out = room();
        std::memcpy(out, text.data(), count);
        wrote(out + count);
        text.remove_prefix(count);
    }
}

void SaveFile::flush() {
    const char* next = buffer.data();
    while (used > 0 && !failed) {
        const ssize_t count = ::write(file, next, used);
        if (count < 0 && errno == EINTR) continue;
        failed = count <= 0;
        if (failed) break;
        next += count;
        used -= static_cast<std::size_t>(count);
    }
    used = 0;
}

bool SaveFile::finish() {
    if (file < 0) return false;
    flush();
    if (!temporary.empty() && !failed) failed = ::fsync(file) != 0;
    return !failed;
}

bool SaveFile::commit() {
    if (file < 0) return false;
    static_cast<void>(finish());
    if (::close(std::exchange(file, -1)) != 0) failed = true;
    if (!temporary.empty() && !failed) failed = ::rename(temporary.c_str(), target.c_str()) != 0;
    if (failed) {
        discard();
    } else if (!temporary.empty()) {
        temporary.clear();
        syncDirectory(directoryOf(target));
    }
    return !failed;
}

void SaveFile::discard() {
    if (file >= 0) ::close(std::exchange(file, -1));
    if (!temporary.empty()) ::unlink(temporary.c_str());
    temporary.clear();
}

} // namespace polyfab
