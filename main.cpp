// SPDX-License-Identifier: GPL-3.0-or-later
// Chooses a backend by the command line and starts the editor on it.
#include "editor/window.h"
#include "formats/import_child.h"
#include "platform/batch/arguments.h"
#include "platform/batch/batch.h"
#ifdef POLYFAB_QT
#include "platform/qt/qt_backend.h"
#endif

#include <cstdio>
#include <string>
#include <vector>

namespace {

constexpr char usage[] = "usage: polyfab [FILE]                open the editor's window\n"
                         "       polyfab --batch [--size WxH] [FILE] [STEP ...]\n"
                         "                                     run without a window\n"
                         "       polyfab --convert IN OUT      read IN, write OUT\n"
                         "       polyfab --help-commands       list the menu commands\n"
                         "       polyfab --help | --version\n";

int print(const std::string& text) {
    return std::fputs(text.c_str(), stdout) < 0 || std::fflush(stdout) != 0 ? 2 : 0;
}

int openWindow([[maybe_unused]] int& argc, [[maybe_unused]] char** argv,
               [[maybe_unused]] const std::string& file) {
#ifdef POLYFAB_QT
    return polyfab::runQt(polyfab::editorProgram(), argc, argv, file);
#else
    std::fputs("polyfab: this build has no window; see polyfab --help\n", stderr);
    return 1;
#endif
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
    const std::string first = args.empty() ? "" : args.front();
    if (first == "--batch") return polyfab::runBatch(program, {args.begin() + 1, args.end()});
    if (first == "--convert" && args.size() == 3) {
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
