// SPDX-License-Identifier: GPL-3.0-or-later
// Where the characters of a text begin: nobody may cut one in two.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>

namespace polyfab {

/// Whether this byte of a UTF-8 text goes on with the character of the byte before it.
[[nodiscard]] inline bool continuesCharacter(char byte) { return (byte & 0xC0) == 0x80; }

/// The first bytes of the text, without a part of a character.
[[nodiscard]] inline std::string beginningOf(const std::string& text, std::size_t most) {
    std::size_t size = std::min(most, text.size());
    while (size > 0 && size < text.size() && continuesCharacter(text[size])) --size;
    return text.substr(0, size);
}

} // namespace polyfab
