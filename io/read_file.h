// SPDX-License-Identifier: GPL-3.0-or-later
// Reads a file from start to end in pieces through one buffer, so that a file of any size costs
// about one megabyte.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace polyfab {

/// Whether the last part of a path may be a symbolic link.
enum class Links { followed, refused };

class PieceReader {
  public:
    static constexpr std::size_t pieceSize = std::size_t{1} << 20;
    /// The most bytes that `next` can be asked to keep.
    static constexpr std::size_t maxKept = 4096;
    /// Zero bytes that follow every text, for scanners that look at whole blocks.
    static constexpr std::size_t slack = 128;

    explicit PieceReader(const std::string& path, Links links = Links::followed);
    ~PieceReader();
    PieceReader(const PieceReader&) = delete;
    PieceReader& operator=(const PieceReader&) = delete;

    /// False when the file can't be opened for reading or is no regular file (a folder, a pipe):
    /// readers go through a file twice.
    [[nodiscard]] bool isOpen() const { return file >= 0; }

    /// True once a read has failed, which `next` reports as the end.
    [[nodiscard]] bool failed() const { return broken; }

    /// Bytes that the file had when it was opened, and those that were read so far.
    [[nodiscard]] std::int64_t size() const { return length; }
    [[nodiscard]] std::int64_t bytesRead() const { return done; }

    /// Reads on: `text` becomes its own last `kept` bytes followed by up to pieceSize new ones, and
    /// is valid until the next call. False when there are no new ones: `text` is then just the kept
    /// ones.
    [[nodiscard]] bool next(std::size_t kept, std::string_view& text);

  private:
    std::int64_t length = 0; ///< set as the file is opened
    int file;
    std::int64_t done = 0;
    bool broken = false;
    std::unique_ptr<char[]> buffer;
};

/// The whole file; nothing when it can't be read, is no regular one or has more bytes than that.
/// May throw std::bad_alloc.
[[nodiscard]] std::optional<std::string>
wholeFile(const std::string& path, std::int64_t most = std::numeric_limits<std::int64_t>::max());

/// Whether it is a regular file of just these bytes, which is read if it has as many. May throw
/// std::bad_alloc.
[[nodiscard]] bool hasBytes(const std::string& path, std::string_view bytes,
                            Links links = Links::followed);

/// Whether both are regular files of the same bytes. May throw std::bad_alloc.
[[nodiscard]] bool haveSameBytes(const std::string& a, const std::string& b);

} // namespace polyfab
