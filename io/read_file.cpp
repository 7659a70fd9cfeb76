// SPDX-License-Identifier: GPL-3.0-or-later
// Plain read(2) into one buffer: no second copy, and the buffer stays in the processor's cache.
#include "io/read_file.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <new>
#include <sys/stat.h>
#include <unistd.h>

namespace polyfab {
namespace {

int openForReading(const std::string& path, Links links, std::int64_t& length) {
    // Without O_NONBLOCK a named pipe would wait here for somebody to write into it.
    const int refuse = links == Links::refused ? O_NOFOLLOW : 0;
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | refuse);
    struct stat status {};
    if (file >= 0 && (fstat(file, &status) != 0 || !S_ISREG(status.st_mode))) {
        close(file);
        return -1;
    }
    length = status.st_size;
    return file;
}

} // namespace

PieceReader::PieceReader(const std::string& path, Links links)
    : file(openForReading(path, links, length)),
      buffer(new (std::nothrow) char[maxKept + pieceSize + slack]) {
    if (buffer == nullptr && file >= 0) {
        close(file);
        file = -1;
    }
}

PieceReader::~PieceReader() {
    if (file >= 0) close(file);
}

bool PieceReader::next(std::size_t kept, std::string_view& text) {
    if (kept != 0) std::memmove(buffer.get(), text.data() + text.size() - kept, kept);
    ssize_t got = 0;
    do {
        got = read(file, buffer.get() + kept, pieceSize);
    } while (got < 0 && errno == EINTR);
    broken = got < 0;
    if (!broken) done += got;
    text = {buffer.get(), kept + static_cast<std::size_t>(got < 0 ? 0 : got)};
    std::memset(buffer.get() + text.size(), 0, slack);
    return got > 0;
}

std::optional<std::string> wholeFile(const std::string& path, std::int64_t most) {
    PieceReader file(path);
    if (!file.isOpen() || file.size() > most) return std::nullopt;
    std::string bytes;
    bytes.reserve(static_cast<std::size_t>(file.size()));
    for (std::string_view piece; file.next(0, piece) && file.bytesRead() <= most;) bytes += piece;
    if (file.failed() || file.bytesRead() > most) return std::nullopt;
    return bytes;
}

bool hasBytes(const std::string& path, std::string_view bytes, Links links) {
    PieceReader file(path, links);
    if (!file.isOpen() || file.size() != std::ssize(bytes)) return false;
    std::string_view piece;
    while (file.next(0, piece) && bytes.starts_with(piece)) bytes.remove_prefix(piece.size());
    return bytes.empty() && !file.failed();
}

bool haveSameBytes(const std::string& a, const std::string& b) {
    const PieceReader first(a), second(b);
    if (!first.isOpen() || !second.isOpen() || first.size() != second.size()) return false;
    const std::optional<std::string> bytes = wholeFile(b, second.size());
    return bytes && hasBytes(a, *bytes);
}

} // namespace polyfab
