// SPDX-License-Identifier: GPL-3.0-or-later
// Notes: what a command tells of what it did or left out, for the user to read or to leave.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace polyfab {

/// Tells it in the status line, where it stays until the user does something. Several notes of one
/// command stand there one after the other.
void note(const std::string& text);

/// The same, and in the title as well.
void noteInTitle(const std::string& text);

/// Whether the user wants a tool to stop that has changed nothing yet, which a note tells then.
[[nodiscard]] bool stopRequested();

/// What was noted since the last forgetNotes; "": nothing.
[[nodiscard]] const std::string& notes();
void forgetNotes();

/// The number as a person writes it: 12345 is "12,345".
[[nodiscard]] std::string counted(std::int64_t number);

/// The same with what is counted, which gets an "s" unless it is one: "1 face", "2,000 faces".
[[nodiscard]] std::string counted(std::int64_t number, const std::string& what);

/// "a, b, c": the first five, behind which "…" stands for the others.
[[nodiscard]] std::string listOf(const std::vector<std::string>& names);

/// What is said of so many, in the right number: "{line} {is} too long" is "1 line is too long" or
/// "2,000 lines are too long". The words in braces are nouns, "is", "was", "has" and "it".
[[nodiscard]] std::string sentence(std::int64_t count, std::string_view pattern);

/// Notes that of so many, unless there is none.
void noteCount(std::int64_t count, std::string_view pattern);

/// Sentences that wait until it is known whether they are true.
using Sentences = std::vector<std::string>;

/// Adds that of so many, unless there is none.
void addCount(Sentences& list, std::int64_t count, std::string_view pattern);
void noteAll(const Sentences& list);

/// "3 of 2,000 faces selected".
[[nodiscard]] std::string selectionText(std::int64_t selected, std::int64_t live);

} // namespace polyfab
