// SPDX-License-Identifier: GPL-3.0-or-later
// Chooses a backend by the command line and starts the editor on it.
#include "editor/window.h"
#include "formats/exchange/import_child.h"
#include "formats/exchange/save_exported.h"
#include "io/last_resort.h"
#include "io/state_folder.h"
#include "platform/batch/command_line.h"
#ifdef POLYFAB_QT
#include "platform/qt/qt_backend.h"
#endif

#include <cstdio>
#include <new>
#include <string>
#include <vector>

namespace {

int openWindow([[maybe_unused]] int& argc, [[maybe_unused]] char** argv,
               [[maybe_unused]] const std::string& file) {
#ifdef POLYFAB_QT
    const std::string folder = polyfab::userStateFolder();
    const polyfab::Program& program = polyfab::editorProgram();
    if (!folder.empty()) program.useStateFolder(folder, polyfab::usualRecoverySeconds);
    return polyfab::runQt(program, argc, argv, file, folder);
#else
    std::fputs("polyfab: this build has no window; see polyfab --help\n", stderr);
    return 1;
#endif
}

} // namespace

int main(int argc, char** argv) try {
    polyfab::makeFaultsErrors();
    std::vector<std::string> args(argv + (argc > 0 ? 1 : 0), argv + argc);
    // Not for users: what the program starts to import or export a file. Its words are as they are.
    if (!args.empty() && args.front() == polyfab::exchangeArgument) {
        polyfab::runExchangeChild({args.begin() + 1, args.end()});
    }
    polyfab::removeDeadScratchFolders();
    const auto status = polyfab::runCommandLine(polyfab::editorProgram(), args);
    return status ? *status : openWindow(argc, argv, args.empty() ? "" : args.front());
} catch (const std::bad_alloc&) {
    std::fputs("polyfab: I can't get enough memory\n", stderr);
    return 2;
}
