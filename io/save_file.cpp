// SPDX-License-Identifier: GPL-3.0-or-later
#include "io/save_file.h"

#include "io/file_rights.h"
#include "io/save_in_place.h"
#include "io/temporary_file.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
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

/// Makes a rename last. Where the system cannot, the old or the new file is whole all the same.
void syncDirectory(const std::string& directory) {
    const int handle = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle < 0) return;
    ::fsync(handle);
    ::close(handle);
}

} // namespace

SaveFile::~SaveFile() { discard(); }

bool SaveFile::open(const std::string& path, FileKind kind) {
    // A write beyond the limit on file sizes shall fail like any other, not end the program.
    std::signal(SIGXFSZ, SIG_IGN);
    if (kind == FileKind::state) return openState(path);
    target = followLinks(path);
    // Nothing is written here to a file that will be replaced: this finds out whether we may.
    // Appending matters when standard output goes to a file.
    // A pipe that nobody reads is refused instead of waited for.
    file = ::open(path.c_str(), O_WRONLY | O_APPEND | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (file < 0 && errno == ENOENT && !target.empty()) {
        file =
            makeTemporary(directoryOf(target), 0666, temporary); // the system takes off the umask
        return file >= 0;
    }
    struct stat old {};
    if (file < 0 || ::fstat(file, &old) != 0) return false;
    if (target.empty() || !S_ISREG(old.st_mode)) return ::fcntl(file, F_SETFL, O_APPEND) == 0;
    return openBeside(path, std::exchange(file, -1));
}

bool SaveFile::openState(const std::string& path) {
    target = path;
    file = makeTemporary(directoryOf(target), 0600, temporary);
    return file >= 0 && ::fchmod(file, 0600) == 0; // which a umask may have narrowed
}

bool SaveFile::openBeside(const std::string& path, int old) {
    if (inPlaceOffer.folderFor != nullptr && canOnlyBeWrittenInPlace(path)) {
        copyFolder = inPlaceOffer.folderFor(path);
    }
    const bool inPlace = !copyFolder.empty();
    file = makeTemporary(inPlace ? copyFolder : directoryOf(target), 0600, temporary);
    struct stat status {};
    // Attributes can be read only through a descriptor for reading, and not each file has one.
    const int readable = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    const bool ready =
        file >= 0 && ::fstat(old, &status) == 0 && (inPlace || copyRights(file, readable, status));
    const int reason = errno;
    if (readable >= 0) ::close(readable);
    ::close(old);
    errno = reason;
    return ready;
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
    if (!temporary.empty() && !failed) failed = !replace();
    discard();
    return !failed;
}

bool SaveFile::replace() {
    if (!copyFolder.empty()) return writeInPlace(temporary, target, copyFolder);
    if (::rename(temporary.c_str(), target.c_str()) != 0) return false;
    forgetTemporary(std::exchange(temporary, {}));
    syncDirectory(directoryOf(target));
    removeOldTemporaries(directoryOf(target));
    return true;
}

void SaveFile::discard() {
    if (file >= 0) ::close(std::exchange(file, -1));
    if (temporary.empty()) return;
    ::unlink(temporary.c_str());
    forgetTemporary(std::exchange(temporary, {}));
}

} // namespace polyfab
