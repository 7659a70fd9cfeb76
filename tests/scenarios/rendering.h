// SPDX-License-Identifier: GPL-3.0-or-later
// The lines of a batch run in the short form in which scenarios hold them.
#pragma once

#include <string>

namespace polyfab::test {

/// Lines of "EVENT VALUE | VALUE ...", each behind four blanks, for the event lines (JSON).
std::string renderEvents(const std::string& lines);

/// " KEY=VALUE KEY=VALUE" with what these two lines, of the state and the dump, hold. KEY.FIELD is
/// that field of each element, KEY/N is element N; `aliases` has names for some.
std::string renderFields(const std::string& keys, const std::string& stateAndDump);

} // namespace polyfab::test
