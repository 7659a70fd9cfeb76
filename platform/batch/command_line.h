// SPDX-License-Identifier: GPL-3.0-or-later
// The program's command line: which run it asks for.
#pragma once

#include "platform/platform.h"

#include <optional>
#include <string>
#include <vector>

namespace polyfab {

/// Carries out a command line that asks for no window, or that makes no sense, and returns the exit
/// status. Nothing: it asks for one, and `args` is now the file to open there, if any.
std::optional<int> runCommandLine(const Program& program, std::vector<std::string>& args);

} // namespace polyfab
