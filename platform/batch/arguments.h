// SPDX-License-Identifier: GPL-3.0-or-later
// The words of a batch command line: argument files, numbers, sizes, keys and mouse messages.
#pragma once

#include "platform/platform.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace polyfab {

/// Replaces each "@FILE" by the lines of that file, leaving out blank ones and those that begin
/// with "#"; an "@" in the file itself is plain text. Returns an empty text, or what is wrong.
[[nodiscard]] std::string expandArgumentFiles(std::vector<std::string>& args);

/// The whole text as a decimal number, or nothing.
std::optional<int> parseInt(std::string_view text);

/// "WxH", each side 1 to 32767.
std::optional<Size> parseSize(std::string_view text);

/// A key's name, a letter, a digit, or a virtual-key code 0 to 255. One digit alone is the digit
/// key; the codes below 10 are written with a leading zero.
std::optional<int> parseKey(std::string_view text);

/// "X,Y" or "X,Y,BUTTONS" as a mouse event.
std::optional<Event> parseMouse(std::string_view text);

/// The parts between the separators; with `keepEmpty` also those without a character.
std::vector<std::string> splitText(std::string_view text, char separator, bool keepEmpty = false);

/// With A-Z as a-z; other bytes stay.
std::string lowerCase(std::string_view text);

} // namespace polyfab
