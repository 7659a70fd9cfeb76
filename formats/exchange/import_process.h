// SPDX-License-Identifier: GPL-3.0-or-later
// Runs the child process that imports or exports, and waits for its stream.
#pragma once

#include <string>
#include <vector>

namespace polyfab {

/// The program that is started as the child: this very one.
inline std::string exchangeProgram = "/proc/self/exe";

/// Seconds that the child may neither compute nor write anything.
inline double exchangePatience = 30;

/// Starts the child with these arguments behind exchangeArgument, the descriptor `input` (-1:
/// nothing) as its standard input, and collects what it writes to its standard output. The child is
/// stopped while Escape is down, and when it has done nothing for too long; it has ended on return.
/// Returns "" when it ended well, else why not: `output` is then worth nothing.
[[nodiscard]] std::string runExchangeProcess(const std::vector<std::string>& args, int input,
                                             std::vector<char>& output);

} // namespace polyfab
