// SPDX-License-Identifier: GPL-3.0-or-later
// Where the characters of a text begin: nobody may cut one in two.
#pragma once

namespace polyfab {

/// Whether this byte of a UTF-8 text goes on with the character of the byte before it.
[[nodiscard]] inline bool continuesCharacter(char byte) { return (byte & 0xC0) == 0x80; }

} // namespace polyfab
