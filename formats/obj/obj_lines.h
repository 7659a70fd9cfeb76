// SPDX-License-Identifier: GPL-3.0-or-later
// How OBJ text falls into lines and words, and the count of what its lines announce.
//
// A line ends at a line feed or a carriage return, so that CR LF makes an empty line more. A line
// that reaches the limit ends there, and the rest of it is the next line. Text behind the last line
// end is no line. All characters up to the blank part words; a word may hold any other.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace polyfab {

/// Characters a line can have. Counting is coarser than reading: the reading pass takes whole a
/// line that the counting pass splits, and then adds other numbers of elements than were counted.
inline constexpr std::size_t maxCountedLine = 127;
inline constexpr std::size_t maxObjLine = 1023;

/// Editors put it before the first line of OBJ files and material libraries.
inline constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

[[nodiscard]] inline bool isLineEnd(char c) { return c == '\n' || c == '\r'; }
[[nodiscard]] inline bool isBlank(char c) { return static_cast<unsigned char>(c) <= ' '; }

/// Whether the two are equal but for the case of letters; `lower` is in lower case.
[[nodiscard]] bool sameKeyword(std::string_view word, std::string_view lower);

struct ObjCounts {
    std::int64_t faces = 0;
    std::int64_t corners = 0; ///< one more for each face than it has
    std::int64_t points = 0;
    std::int64_t texcoords = 0;
    std::int64_t normals = 0;
    std::int64_t groups = 0;
    std::int64_t materials = 0;
};

/// Adds to `counts` what the complete lines at the start of `text` announce, and returns the number
/// of characters that these lines take. PieceReader::slack bytes behind the text must be readable.
[[nodiscard]] std::size_t countObjLines(std::string_view text, ObjCounts& counts);

/// One line cut into words.
class ObjLine {
  public:
    /// Takes the line at the start of `text` and returns how many characters that used up, its end
    /// included; 0 when the text holds no complete line.
    [[nodiscard]] std::size_t take(std::string_view text);
    /// Takes all of it as one line, however long.
    void set(std::string_view line);
    /// Forgets the words from the first behind the keyword on that begins with "#".
    void dropComment();

    /// A line without any word.
    [[nodiscard]] bool empty() const { return starts.empty(); }
    /// The words behind the keyword.
    [[nodiscard]] int arguments() const { return static_cast<int>(starts.size()) - 1; }
    [[nodiscard]] std::string_view keyword() const { return word(0); }
    /// Word k, followed by a NUL; word 0 is the keyword.
    [[nodiscard]] std::string_view word(int k) const;
    /// Everything from word k on with each blank as a space, those at the end included.
    [[nodiscard]] std::string rest(int k) const;
    /// The whole line with each blank as a space.
    [[nodiscard]] std::string whole() const;

  private:
    [[nodiscard]] std::string from(std::size_t start) const;

    std::string text;                ///< blanks are NUL
    std::vector<std::size_t> starts; ///< of the words
};

} // namespace polyfab
