// SPDX-License-Identifier: GPL-3.0-or-later
// Chooses a backend by the command line and starts the editor on it.
#include "editor/history/undo.h"
#include "editor/window.h"
#include "formats/import_child.h"
#include "io/state_folder.h"
#include "platform/batch/arguments.h"
#include "platform/batch/batch.h"
#ifdef POLYFAB_QT
#include "platform/qt/qt_backend.h"
#endif

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace {

constexpr char usage[] = "usage: polyfab [FILE]                open the editor's window\n"
                         "       polyfab --batch [--size WxH] [--state-folder DIR]\n"
                         "                       [--recovery-seconds N] [FILE] [STEP ...]\n"
                         "                                     run without a window\n"
                         "       polyfab --convert IN OUT      read IN, write OUT\n"
                         "       polyfab --help-commands       list the menu commands\n"
                         "       polyfab --help | --version\n"
                         "       polyfab --undo-memory MIB ... memory for undo; 0: none\n";

/// How often the window's mesh is saved, if it is altered.
[[maybe_unused]] constexpr int recoverySeconds = 120;

int print(const std::string& text) {
    return std::fputs(text.c_str(), stdout) < 0 || std::fflush(stdout) != 0 ? 2 : 0;
}

int openWindow([[maybe_unused]] int& argc, [[maybe_unused]] char** argv,
               [[maybe_unused]] const std::string& file) {
#ifdef POLYFAB_QT
    const std::string folder = polyfab::userStateFolder();
    const polyfab::Program& program = polyfab::editorProgram();
    if (!folder.empty()) program.useStateFolder(folder, recoverySeconds);
    return polyfab::runQt(program, argc, argv, file, folder);
#else
    std::fputs("polyfab: this build has no window; see polyfab --help\n", stderr);
    return 1;
#endif
}

/// Takes the option that may stand before all others. One that makes no sense stays there, where
/// nothing else knows it.
void takeUndoMemory(std::vector<std::string>& args) {
    if (args.size() < 2 || args.front() != "--undo-memory") return;
    const auto mebibytes = polyfab::parseInt(args[1]);
    if (!mebibytes || *mebibytes < 0) return;
    polyfab::setUndoMemory(static_cast<std::uint64_t>(*mebibytes) << 20);
    args.erase(args.begin(), args.begin() + 2);
}

} // namespace

int main(int argc, char** argv) {
    const polyfab::Program& program = polyfab::editorProgram();
    std::vector<std::string> args(argv + (argc > 0 ? 1 : 0), argv + argc);
    // Not for users: what the program starts to import or export a file. Its words are as they are.
    if (!args.empty() && args.front() == polyfab::exchangeArgument) {
        polyfab::runExchangeChild({args.begin() + 1, args.end()});
    }
    if (const std::string wrong = polyfab::expandArgumentFiles(args); !wrong.empty()) {
        std::fprintf(stderr, "polyfab: %s\n", wrong.c_str());
        return 2;
    }
    takeUndoMemory(args);
    const std::string first = args.empty() ? "" : args.front();
    if (first == "--batch") return polyfab::runBatch(program, {args.begin() + 1, args.end()});
    if (first == "--convert" && args.size() == 3) {
        polyfab::setUndoMemory(0);
        return polyfab::runConvert(program, args[1], args[2]);
    }
    if (args.size() <= 1) {
        if (first == "--help-commands") return print(polyfab::commandList(program));
        if (first == "--version") return print("polyfab " POLYFAB_VERSION "\n");
        if (first == "--help") return print(usage);
        if (!first.starts_with('-')) return openWindow(argc, argv, first);
    }
    std::fputs(usage, stderr);
    return 2;
}
