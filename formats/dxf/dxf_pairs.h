// SPDX-License-Identifier: GPL-3.0-or-later
// A DXF file as pairs of a group code and a value, whether it is text or binary.
#pragma once

#include <cstddef>
#include <string_view>

namespace polyfab {

struct DxfPair {
    int code = 0;
    std::string_view text; ///< where the value is a text; "" otherwise
    double number = 0;     ///< what the value is as a number; 0 where it is none
};

/// Whether a file that begins so is a binary one.
[[nodiscard]] bool isBinaryDxf(std::string_view beginning);

/// Hands out the pairs of a file whose bytes are followed by a NUL.
class DxfPairs {
  public:
    explicit DxfPairs(std::string_view file);

    /// False at the end of the file, which a pair that is cut off is too.
    [[nodiscard]] bool next(DxfPair& pair) {
        return codeSize == 0 ? nextOfText(pair) : nextOfBinary(pair);
    }

  private:
    [[nodiscard]] bool nextOfText(DxfPair& pair);
    [[nodiscard]] bool nextOfBinary(DxfPair& pair);
    [[nodiscard]] bool line(std::string_view& text);
    [[nodiscard]] bool take(std::size_t count, std::string_view& taken);
    [[nodiscard]] bool takeCode(int& code);

    std::string_view rest;
    std::size_t codeSize = 0; ///< bytes of a group code; 0: the file is text
};

} // namespace polyfab
