// SPDX-License-Identifier: GPL-3.0-or-later
// The life of the window backend: a display, the application, the window, the event loop.
#include "platform/qt/qt_backend.h"

#include "platform/qt/qt_platform.h"

#include <QApplication>

#include <clocale>
#include <cstdio>
#include <cstdlib>

namespace polyfab {
namespace {

bool displayNamed() {
    for (const char* const name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
        const char* const value = std::getenv(name);
        if (value && *value) return true;
    }
    return false;
}

} // namespace

int runQt(const Program& program, int& argc, char** argv, const std::string& file) {
    if (!displayNamed()) {
        // Qt would abort the process here.
        std::fputs("polyfab: there is no display (DISPLAY or WAYLAND_DISPLAY is not set); "
                   "polyfab --batch runs without one, see polyfab --help\n",
                   stderr);
        return 1;
    }
    QApplication application(argc, argv);
    // Qt has just taken the user's locale over; number text keeps its decimal point.
    std::setlocale(LC_NUMERIC, "C");
    // Only the program's own destroyWindow ends the run.
    QApplication::setQuitOnLastWindowClosed(false);
    QtPlatform window(program);
    Platform* const before = currentPlatform;
    setPlatform(&window);
    window.start(file);
    window.run();
    window.destroyWindow(); // a session that ends may stop the loop on its own
    setPlatform(before);
    return 0;
}

} // namespace polyfab
