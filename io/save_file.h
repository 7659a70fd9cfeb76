// SPDX-License-Identifier: GPL-3.0-or-later
// Saving so that nothing is ever lost: the text goes to a temporary file beside the target, is
// flushed to the disk and renamed over it. Whatever happens before the rename (a full disk, a
// crash, a question that unwinds the stack) leaves the old file as it was.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

struct stat;

namespace polyfab {

/// What a file is to the user.
enum class FileKind {
    document, ///< links are followed, an old file's permissions kept
    state,    ///< for this user alone, whatever stood there; a link is replaced
};

class SaveFile {
  public:
    /// Bytes that may be written behind `room()`.
    static constexpr std::size_t maxRoom = 4096;

    SaveFile() = default;
    SaveFile(const SaveFile&) = delete;
    SaveFile& operator=(const SaveFile&) = delete;
    /// Without a commit: removes the temporary file, leaves the old file as it was.
    ~SaveFile();

    /// Begins to save; once per object. A symbolic link is followed, even to where nothing is yet.
    /// Permissions, attributes and access list of an old file are kept, and its owner where that is
    /// allowed. What is no regular file (a pipe, a device, standard output) is written directly.
    /// Where the folder takes no files the user may be asked whether to write in place.
    /// False, and nothing changed: the target is a directory or not ours to write, or no file can
    /// be made beside it. errno then tells why.
    [[nodiscard]] bool open(const std::string& path, FileKind kind = FileKind::document);

    /// Where the next bytes go: print up to `maxRoom` of them, then tell `wrote` where they end.
    /// After an error the bytes go nowhere and `commit` fails.
    char* room() {
        if (used > buffer.size() - maxRoom) flush();
        return buffer.data() + used;
    }
    void wrote(const char* end) { used = static_cast<std::size_t>(end - buffer.data()); }
    void append(std::string_view text);

    /// Writes all there is to the disk, so that only the replacing is left for `commit`: several
    /// files that belong together are finished first. False when anything went wrong since `open`.
    [[nodiscard]] bool finish();

    /// Finishes the file and puts it in place of the old one. False when anything went wrong since
    /// `open`: the old file is as it was. Temporary files that killed programs of this user have
    /// left in the folder are removed.
    [[nodiscard]] bool commit();

  private:
    bool openState(const std::string& path);
    bool openBeside(const std::string& path, int old);
    void flush();
    bool replace();
    void discard();

    std::string target;    ///< the file to replace, links followed
    std::string temporary; ///< "" while none exists
    int file = -1;
    std::string
        copyFolder; ///< for a copy of the old file, which is written in place; "": it is not
    bool failed = false;
    std::size_t used = 0;
    std::array<char, 1 << 16> buffer;
};

} // namespace polyfab
