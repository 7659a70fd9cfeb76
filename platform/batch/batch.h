// SPDX-License-Identifier: GPL-3.0-or-later
// Batch mode: the same program without a window, driven by the command line. Exit statuses: 0 all
// done, 1 all done but a box with an exclamation icon was shown, 2 the command line is wrong (or a
// picture or the output cannot be written, or there is not enough memory), 3 a question was left
// unanswered.
#pragma once

#include "platform/platform.h"

#include <string>
#include <vector>

namespace polyfab {

/// Runs [--size WxH] [--state-folder DIR] [--recovery-seconds N] [FILE] [STEP ...], argument files
/// already expanded. Prints what the program would have shown on standard output, one JSON object a
/// line, and diagnostics on standard error. Returns the exit status.
int runBatch(const Program& program, const std::vector<std::string>& args);

/// Reads one file and writes another, formats by suffix; prints and returns as runBatch. Nothing is
/// written when reading showed an exclamation box.
int runConvert(const Program& program, const std::string& input, const std::string& output);

/// The table of commands as text: id, menu, label and "ready" or "later", parted by tabs.
std::string commandList(const Program& program);

/// The same with what people want to know: id, menu, label, shortcut and a sentence.
std::string describedCommands(const Program& program);

} // namespace polyfab
