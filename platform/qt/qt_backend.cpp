// SPDX-License-Identifier: GPL-3.0-or-later
// The life of the window backend: a display, the application, the window, the event loop.
#include "platform/qt/qt_backend.h"

#include "platform/end_signals.h"
#include "platform/qt/menu_frame.h"
#include "platform/qt/qt_platform.h"

#include <QApplication>
#include <QThread>

#include <chrono>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <thread>

namespace polyfab {
namespace {

bool displayNamed() {
    for (const char* const name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
        const char* const value = std::getenv(name);
        if (value && *value) return true;
    }
    return false;
}

/// A window that cannot be made ends the program without counting as its failure.
constexpr int noWindow = 0;

void sayNoWindow(const char* why) {
    std::fprintf(stderr, "polyfab: %s; polyfab --batch runs without a window, see polyfab --help\n",
                 why);
}

/// Qt aborts the process when it finds the display dead, which is no reason for a core dump.
void endOnFatal(QtMsgType type, const QMessageLogContext&, const QString& text) {
    if (type == QtFatalMsg) {
        sayNoWindow(text.section(QLatin1Char('\n'), 0, 0).toLocal8Bit().constData());
        std::_Exit(noWindow);
    }
    if (type == QtCriticalMsg) std::fprintf(stderr, "%s\n", text.toLocal8Bit().constData());
}

QtMessageHandler usualHandler = nullptr;

/// One of Qt's backends calls exit() when the display dies. The other one ends the process at once
/// after these words, in whichever thread finds out; the window's thread is to save before that.
void saveWhenDisplayDies(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    usualHandler(type, context, text);
    if (!text.startsWith(QLatin1String("The Wayland connection"))) return;
    if (QThread::currentThread() == qApp->thread()) std::exit(EXIT_FAILURE);
    endsignals::note(SIGTERM);
    std::this_thread::sleep_for(std::chrono::seconds(10));
}

} // namespace

int runQt(const Program& program, int& argc, char** argv, const std::string& file,
          const std::string& stateFolder) {
    if (!displayNamed()) {
        sayNoWindow("there is no display (DISPLAY or WAYLAND_DISPLAY is not set)");
        return noWindow;
    }
    qInstallMessageHandler(endOnFatal);
    // A box that is native makes its owner no different.
    QCoreApplication::setAttribute(Qt::AA_DontCreateNativeWidgetSiblings);
    QApplication application(argc, argv);
    qInstallMessageHandler(nullptr);
    usualHandler = qInstallMessageHandler(saveWhenDisplayDies);
    QApplication::setStyle(new MenuFrame);
    // Qt has just taken the user's locale over; number text keeps its decimal point.
    std::setlocale(LC_NUMERIC, "C");
    // Only the program's own destroyWindow ends the run.
    QApplication::setQuitOnLastWindowClosed(false);
    QtPlatform window(program, stateFolder);
    Platform* const before = currentPlatform;
    setPlatform(&window);
    window.start(file);
    window.run();
    window.destroyWindow(); // a session that ends may stop the loop on its own
    setPlatform(before);
    return window.endedBy() != 0 ? statusOfSignal(window.endedBy()) : 0;
}

} // namespace polyfab
