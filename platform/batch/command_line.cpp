// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/batch/command_line.h"

#include "platform/batch/arguments.h"
#include "platform/batch/batch.h"

#include <cstdio>
#include <limits>
#include <string_view>

namespace polyfab {
namespace {

using Args = std::vector<std::string>;

constexpr int wrongCommandLine = 2;

constexpr char usage[] = "usage: polyfab [FILE]                open the editor's window\n"
                         "       polyfab --batch [--size WxH] [--state-folder DIR]\n"
                         "                       [--recovery-seconds N] [FILE] [STEP ...]\n"
                         "                                     run without a window\n"
                         "       polyfab --convert IN OUT      read IN, write OUT\n"
                         "       polyfab --help-commands       list the menu commands\n"
                         "       polyfab --describe-commands   list what they do\n"
                         "       polyfab --help | --version\n"
                         "       polyfab --undo-memory MIB ... memory for undo; 0: none\n";

int print(const std::string& text) {
    const bool printed = std::fputs(text.c_str(), stdout) >= 0 && std::fflush(stdout) == 0;
    return printed ? 0 : wrongCommandLine;
}

/// Nobody can undo a conversion.
int convert(const Program& program, const Args& args) {
    program.setUndoMemory(0);
    return runConvert(program, args[0], args[1]);
}

constexpr std::size_t anyNumber = std::numeric_limits<std::size_t>::max();

/// The runs without a window, by their first word.
struct RunRow {
    std::string_view word;
    std::size_t least, most; ///< arguments that follow
    int (*run)(const Program&, const Args&);
};

constexpr RunRow runRows[] = {
    {"--batch", 0, anyNumber, runBatch},
    {"--convert", 2, 2, convert},
    {"--help-commands", 0, 0,
     [](const Program& program, const Args&) { return print(commandList(program)); }},
    {"--describe-commands", 0, 0,
     [](const Program& program, const Args&) { return print(describedCommands(program)); }},
    {"--version", 0, 0,
     [](const Program& program, const Args&) {
         return print("polyfab " POLYFAB_VERSION "\n" + program.about());
     }},
    {"--help", 0, 0, [](const Program&, const Args&) { return print(usage); }},
};

/// Takes the option that may stand before all others. One that makes no sense stays there, where
/// nothing else knows it.
void takeUndoMemory(const Program& program, Args& args) {
    if (args.size() < 2 || args.front() != "--undo-memory") return;
    const std::optional<int> mebibytes = parseInt(args[1]);
    if (!mebibytes || *mebibytes < 0) return;
    program.setUndoMemory(static_cast<std::uint64_t>(*mebibytes) << 20);
    args.erase(args.begin(), args.begin() + 2);
}

} // namespace

std::optional<int> runCommandLine(const Program& program, Args& args) {
    if (const std::string wrong = expandArgumentFiles(args); !wrong.empty()) {
        std::fprintf(stderr, "polyfab: %s\n", wrong.c_str());
        return wrongCommandLine;
    }
    takeUndoMemory(program, args);
    if (args.empty()) return std::nullopt;
    const Args rest(args.begin() + 1, args.end());
    for (const RunRow& row : runRows) {
        const bool fits = rest.size() >= row.least && rest.size() <= row.most;
        if (row.word == args.front() && fits) return row.run(program, rest);
    }
    if (rest.empty() && !args.front().starts_with('-')) return std::nullopt;
    std::fputs(usage, stderr);
    return wrongCommandLine;
}

} // namespace polyfab
