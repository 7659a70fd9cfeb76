// SPDX-License-Identifier: GPL-3.0-or-later
#include "io/save_in_place.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace polyfab {
namespace {

struct Descriptor {
    explicit Descriptor(int opened) : number(opened) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (number >= 0) ::close(number);
    }
    int number;
};

bool writeAll(int to, const char* next, ssize_t left) {
    while (left > 0) {
        const ssize_t count = ::write(to, next, static_cast<std::size_t>(left));
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        next += count;
        left -= count;
    }
    return true;
}

/// Makes the bytes of the one file those of the other, on the disk.
bool copyBytes(const std::string& from, const std::string& to, int flags) {
    const Descriptor source(::open(from.c_str(), O_RDONLY | O_CLOEXEC));
    const Descriptor target(::open(to.c_str(), O_WRONLY | O_CLOEXEC | flags, 0600));
    if (source.number < 0 || target.number < 0) return false;
    std::vector<char> piece(std::size_t{1} << 20);
    off_t size = 0;
    for (;;) {
        const ssize_t got = ::read(source.number, piece.data(), piece.size());
        if (got < 0 && errno == EINTR) continue;
        if (got < 0 || !writeAll(target.number, piece.data(), got)) return false;
        if (got == 0) break;
        size += got;
    }
    return ::ftruncate(target.number, size) == 0 && ::fsync(target.number) == 0;
}

/// A name in the folder by which the user finds the copy; "" when there is none left.
std::string nameOfCopy(const std::string& folder, const std::string& path) {
    constexpr int most = 100;
    constexpr std::size_t longest = 200; // so that the rest of the name fits
    const std::string last = std::filesystem::path(path).filename().string().substr(0, longest);
    for (int i = 1; i <= most; ++i) {
        std::string name = folder + "/before-saving-";
        name.append(std::to_string(i)).append("-").append(last);
        struct stat found {};
        if (::lstat(name.c_str(), &found) != 0) return name;
    }
    return "";
}

} // namespace

bool canOnlyBeWrittenInPlace(const std::string& path) {
    std::error_code failure;
    const std::filesystem::path real = std::filesystem::canonical(path, failure);
    struct stat file {
    }, folder{};
    const std::string parent = real.parent_path();
    if (failure || ::stat(real.c_str(), &file) != 0 || ::stat(parent.c_str(), &folder) != 0) {
        return false;
    }
    if (!S_ISREG(file.st_mode) || ::faccessat(AT_FDCWD, real.c_str(), W_OK, AT_EACCESS) != 0) {
        return false;
    }
    const uid_t user = ::geteuid();
    const bool sticky = (folder.st_mode & S_ISVTX) != 0 && user != 0 && user != file.st_uid
                        && user != folder.st_uid;
    return sticky || ::faccessat(AT_FDCWD, parent.c_str(), W_OK | X_OK, AT_EACCESS) != 0;
}

bool writeInPlace(const std::string& from, const std::string& to, const std::string& folder) {
    const std::string copy = nameOfCopy(folder, to);
    if (copy.empty()) return false;
    const bool kept = copyBytes(to, copy, O_CREAT | O_EXCL);
    const bool written = kept && copyBytes(from, to, 0);
    if (kept && !written && !copyBytes(copy, to, 0)) {
        inPlaceOffer.copyStays(copy);
    } else {
        ::unlink(copy.c_str());
    }
    return written;
}

} // namespace polyfab
