// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/exchange/import_files.h"

#include "formats/exchange/library_file.h"
#include "io/file_name.h"
#include "io/read_file.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace polyfab {
namespace {

namespace fs = std::filesystem;

constexpr const char* outside = "lies outside its folder";
constexpr const char* missing = "is not there";
constexpr const char* irregular = "is no regular file";
constexpr const char* closed = "can't be opened";

/// Also of what is not there; "" where a folder on the way can't be looked into.
std::string realPath(const std::string& path) {
    std::error_code failure;
    const fs::path real = fs::weakly_canonical(path.empty() ? "." : path, failure);
    return failure ? "" : real.string();
}

bool isBelow(const std::string& path, const std::string& folder) {
    return folder == "/" || path.starts_with(folder + "/");
}

/// A regular file's descriptor, or -1. It waits neither for the other end of a pipe nor for a
/// device.
int openRegular(const std::string& path) {
    const int file =
        ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_NOFOLLOW | O_CLOEXEC);
    struct stat status {};
    if (file >= 0 && ::fstat(file, &status) == 0 && S_ISREG(status.st_mode)) return file;
    const int reason = file >= 0 ? EINVAL : errno;
    if (file >= 0) ::close(file);
    errno = reason;
    return -1;
}

bool isPartOfName(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return std::isalnum(byte) != 0 || byte >= 0x80 || c == '_' || c == '-' || c == '.' || c == '%';
}

/// As the last part of a path or alone, not as a part of another name or as a folder.
bool standsIn(std::string_view text, const std::string& name) {
    for (auto at = text.find(name); at != std::string_view::npos; at = text.find(name, at + 1)) {
        const std::size_t end = at + name.size();
        const bool begins = at == 0 || !isPartOfName(text[at - 1]);
        const char next = end < text.size() ? text[end] : ' ';
        if (begins && !isPartOfName(next) && next != '/' && next != '\\') return true;
    }
    return false;
}

/// Whether the file itself asks for that name: importers also try names that nobody gave.
bool isNamedIn(const std::string& path, const std::string& name) {
    constexpr std::size_t longest = 255;
    if (name.empty() || name.size() > longest) return false;
    PieceReader file(path);
    std::string_view text;
    while (file.isOpen() && file.next(std::min(text.size(), longest + 2), text)) {
        if (standsIn(text, name)) return true;
    }
    return false;
}

void closeFile(aiFileIO*, aiFile* file) { closeLibraryFile(file); }

} // namespace

ImportFiles::ImportFiles(const std::string& path, std::function<void(std::uint64_t)> grown)
    : io{open, closeFile, reinterpret_cast<aiUserData>(this)}, main(path),
      folder(path.substr(0, path.find_last_of('/') + 1)), realMain(realPath(path)),
      realFolder(realPath(folder)), told(std::move(grown)) {}

aiFile* ImportFiles::open(aiFileIO* io, const char* path, const char* mode) {
    ImportFiles& files = *reinterpret_cast<ImportFiles*>(io->UserData);
    const int file = *mode == 'r' ? files.openFile(path) : -1;
    if (file < 0) return nullptr;
    files.count(file);
    return libraryFile(::fdopen(file, "rb"));
}

int ImportFiles::openFile(const std::string& path) {
    std::error_code failure;
    // Names that come as parts of addresses have blanks and the like in codes.
    const bool coded = path.find('%') != std::string::npos && !fs::exists(path, failure);
    const std::string place = realPath(coded ? withoutPercents(path) : path);
    const bool inReach = place == realMain || isBelow(place, realFolder);
    const int file = inReach ? openRegular(place) : -1;
    if (file >= 0) return file;
    const char* const why = errno == ENOENT ? missing : errno == EINVAL ? irregular : closed;
    refuse(path, inReach ? why : outside);
    return -1;
}

void ImportFiles::refuse(const std::string& path, const char* why) {
    constexpr std::size_t most = 20;
    const std::string name = path.starts_with(folder) ? path.substr(folder.size()) : path;
    if (name.starts_with('/')) why = outside; // the importer put the folder before it
    const std::string last = fileNameOf(name);
    // The importer's own message tells of the file itself.
    if (path == main || list.size() == most || names.contains(last) || !isNamedIn(realMain, last)) {
        return;
    }
    names.insert(last);
    list.push_back("the file asks for " + name + ", which " + why + ": left out");
}

void ImportFiles::count(int file) {
    struct stat status {};
    if (::fstat(file, &status) != 0 || !known.emplace(status.st_dev, status.st_ino).second) return;
    bytes += static_cast<std::uint64_t>(status.st_size);
    if (told) told(bytes);
}

} // namespace polyfab
