// SPDX-License-Identifier: GPL-3.0-or-later
// The child process of an import or an export: it may crash, hang or ask for all memory there is
// without harm to the editor that started it.
#pragma once

#include <string>
#include <vector>

namespace polyfab {

/// The first argument of the program that makes it such a child.
inline constexpr const char* exchangeArgument = "--exchange-child";

/// Carries out ("import", FILE), which writes the mesh of that file as a stream to standard output,
/// or ("export", FILE), which reads a stream from standard input, writes it to that file and to
/// others beside it that the format may need, and then an empty stream to standard output. A
/// failure is a stream with nothing but its reason. Limits the memory and the processor time of
/// the process, and ends it.
[[noreturn]] void runExchangeChild(const std::vector<std::string>& args);

} // namespace polyfab
