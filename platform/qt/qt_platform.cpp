// SPDX-License-Identifier: GPL-3.0-or-later
// The windowing operations on a real window. A modal box or a busy notice lets toolkit events in
// while the program is in the midst of a command; what would read or change the mesh then (paint,
// resize, commands, drops) waits until that command is over. Only a dialog that shows what its
// fields mean lets paint events in.
#include "platform/qt/qt_platform.h"

#include "io/temporary_file.h"
#include "platform/end_signals.h"
#include "platform/qt/dialogs.h"
#include "platform/qt/search.h"
#include "platform/qt/text.h"

#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QFileInfo>
#include <QScreen>
#include <QSessionManager>
#include <QSocketNotifier>
#include <QTimer>
#include <QWindow>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <iterator>
#include <utility>

namespace polyfab {
namespace {

/// What goes with a modal box, however it ends. While it is open no work goes on, nor does Escape
/// stop any. Afterwards the window gets the keyboard back (not every window manager sees to that),
/// and an Escape that closed the box is not meant for what comes next.
class AroundBox {
  public:
    AroundBox(QWidget& owner, InputFilter& filter, WorkClock& workClock, QWidget& strip)
        : window(owner), input(filter), clock(workClock) {
        clock.boxOpens();
        strip.hide();
    }
    ~AroundBox() {
        clock.boxCloses();
        if (window.isVisible()) window.activateWindow();
        input.forgetEscape();
    }
    AroundBox(const AroundBox&) = delete;
    AroundBox& operator=(const AroundBox&) = delete;

  private:
    QWidget& window;
    InputFilter& input;
    WorkClock& clock;
};

/// Tells when the session manager ends the application, which it may do without a word before.
class QuitFilter : public QObject {
  public:
    QuitFilter(QObject* parent, std::function<void()> tell)
        : QObject(parent), told(std::move(tell)) {
        qApp->installEventFilter(this);
    }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched == qApp && event->type() == QEvent::Quit && event->spontaneous()) told();
        return false;
    }

  private:
    std::function<void()> told;
};

/// The user rests when nothing has come for this long, and still does each time this long again.
constexpr std::chrono::milliseconds restBegins(1000), restGoesOn(30'000);

/// Whose window is open or was; null: nobody's.
QtPlatform* watching = nullptr;

bool isInput(EventKind kind) {
    constexpr EventKind kinds[] = {EventKind::keyDown, EventKind::keyUp,   EventKind::mouse,
                                   EventKind::wheel,   EventKind::command, EventKind::drop,
                                   EventKind::start};
    return std::find(std::begin(kinds), std::end(kinds), kind) != std::end(kinds);
}

} // namespace

QtPlatform::QtPlatform(const Program& runProgram, const std::string& stateFolder)
    : program(runProgram), window({[this](const Event& event) { send(event); },
                                   [this](const Event& event) { queue(event); },
                                   [this]() -> const QImage& { return currentPicture(); }}),
      strip(&window.canvas()), busy(&window), folders(stateFolder) {
    busy.setFrameStyle(int(QFrame::Panel) | int(QFrame::Raised));
    busy.setAutoFillBackground(true);
    busy.setMargin(12);
    busy.setTextFormat(Qt::PlainText);
    busy.hide();
}

QtPlatform::~QtPlatform() { watching = nullptr; }

void QtPlatform::start(const std::string& file) {
    open = true;
    send({.kind = EventKind::create});
    firstFile = file;
    window.show();
    // Another screen may have other pixels, and only then does the same size mean another one.
    QObject::connect(window.windowHandle(), &QWindow::screenChanged, &window,
                     [this] { queue({.kind = EventKind::resize}); });
    beginWatch();
}

/// What ends the process from outside, and the moments in which the user rests.
void QtPlatform::beginWatch() {
    QObject::connect(qApp, &QGuiApplication::commitDataRequest, &window,
                     [this](QSessionManager& session) {
                         session.setRestartHint(QSessionManager::RestartNever);
                         send({.kind = EventKind::sessionEnd});
                     });
    new QuitFilter(&window, [this] { send({.kind = EventKind::sessionEnd}); }); // the window's own
    if (const int caught = catchEndSignals(); caught >= 0) {
        auto* const notifier = new QSocketNotifier(caught, QSocketNotifier::Read, &window);
        QObject::connect(notifier, &QSocketNotifier::activated, &window, [this] { endBySignal(); });
    }
    watching = this;
    [[maybe_unused]] static const int registered = std::atexit(endByExit);
    idle.setSingleShot(true);
    QObject::connect(&idle, &QTimer::timeout, &window, [this] { sendIdle(); });
}

void QtPlatform::sendIdle() {
    const bool busyNow = depth > 0 || QApplication::mouseButtons() != Qt::NoButton;
    if (!busyNow) send({.kind = EventKind::idle});
    idle.start(busyNow ? restBegins : restGoesOn);
}

void QtPlatform::endBySignal() {
    endSignal = takeEndSignal();
    if (endSignal == 0) return;
    send({.kind = EventKind::sessionEnd});
    // What waits for a box, or is at work, could not go on with the window gone.
    if (depth > 0) {
        removeTemporaries();
        std::_Exit(statusOfSignal(endSignal));
    }
    destroyWindow();
}

/// The toolkit calls exit() when the display dies.
void QtPlatform::endByExit() {
    if (watching != nullptr) watching->send({.kind = EventKind::sessionEnd});
    removeTemporaries();
}

void QtPlatform::run() {
    if (open) loop.exec();
}

void QtPlatform::send(const Event& event) {
    if (!open && event.kind != EventKind::destroy) return;
    const bool isKey = event.kind == EventKind::keyDown || event.kind == EventKind::keyUp;
    if (isKey && event.key == 0) return; // a key without a code
    if (event.kind == EventKind::resize) {
        paintDue = true;
        if (depth > 0) {
            waiting.push_back(event);
            return;
        }
    }
    if (event.kind == EventKind::deactivate || event.kind == EventKind::menuOpening) {
        input.forgetEscape();
    }
    if (depth == 0) lastLook = {}; // new work looks at once
    if (isInput(event.kind)) idle.start(restBegins);
    ++depth;
    program.handle(event);
    --depth;
    if (depth > 0) return;
    for (const KeyName& key : input.takeReleased()) window.canvas().keyWentUp(key);
    if (paintDue) window.canvas().update();
    if (!waiting.empty()) QTimer::singleShot(0, &window, [this] { sendQueued(); });
}

void QtPlatform::queue(const Event& event) {
    waiting.push_back(event);
    QTimer::singleShot(0, &window, [this] { sendQueued(); });
}

void QtPlatform::sendQueued() {
    if (depth > 0 || waiting.empty()) return;
    const Event event = std::move(waiting.front());
    waiting.pop_front();
    if (const bool read = event.kind == EventKind::drop || event.kind == EventKind::start;
        read && event.paths.size() == 1) {
        folders.use(QFileInfo(QFile::decodeName(event.paths.front().c_str())).absolutePath());
    }
    if (event.kind == EventKind::command) {
        // The key may have gone down or up while a menu had the keyboard.
        window.canvas().tellCtrl(QApplication::queryKeyboardModifiers() & Qt::ControlModifier);
    }
    send(event);
}

const QImage& QtPlatform::currentPicture() {
    if (paintDue && depth == paintDepth) {
        paintDue = false;
        send(Event{});
        if (depth > 0) return image;
        if (const auto file = std::exchange(firstFile, std::nullopt)) {
            Event started{.kind = EventKind::start};
            if (!file->empty()) started.paths = {*file};
            queue(started);
        }
    }
    image.setDevicePixelRatio(window.devicePixelRatioF());
    return image;
}

void QtPlatform::setTitle(const std::string& text) {
    windowTitle = text;
    window.setWindowTitle(titleText(text));
}

void QtPlatform::setMenuBar(const std::string&, const MenuBar& bar) { window.showMenuBar(bar); }

void QtPlatform::setMenuItem(int id, bool enabled, bool checked) {
    window.setItem(id, enabled, checked);
}

/// In the handler that asks for it the window still waits for the end of that.
void QtPlatform::openContextMenu(const std::vector<int>& commands) {
    QTimer::singleShot(0, &window, [this, commands] {
        if (open && depth == 0) window.openContextMenu(commands);
    });
}

void QtPlatform::searchCommands() {
    const AroundBox around(window, input, clock, strip);
    const int command = askCommand(owner(), window.shownMenuBar());
    if (command != 0) queue({.kind = EventKind::command, .command = command});
}

void QtPlatform::requestPaint() {
    paintDue = true;
    window.canvas().update();
}

void QtPlatform::present(const Bitmap& shown) {
    bitmap = shown;
    image = QImage(reinterpret_cast<const uchar*>(bitmap.pixels.data()), bitmap.width,
                   bitmap.height, QImage::Format_RGB32);
}

void QtPlatform::requestClose() { queue({.kind = EventKind::close}); }

void QtPlatform::destroyWindow() {
    if (!open) return;
    open = false;
    waiting.clear();
    send({.kind = EventKind::destroy});
    window.hide();
    help.reset();
    loop.exit();
}

void QtPlatform::message(const std::string& title, const std::string& text, Icon icon) {
    const AroundBox around(window, input, clock, strip);
    showMessage(owner(), named(title), text, icon);
}

Choice QtPlatform::question(const std::string& title, const std::string& text, Buttons buttons,
                            Choice marked) {
    const AroundBox around(window, input, clock, strip);
    return askQuestion(owner(), named(title), text, buttons, marked);
}

std::optional<std::string> QtPlatform::fileDialog(const FileRequest& request) {
    const AroundBox around(window, input, clock, strip);
    return askFile(owner(), request, folders);
}

DialogResult QtPlatform::dialog(Dialog& dialog) {
    const AroundBox around(window, input, clock, strip);
    const int before = std::exchange(paintDepth, dialog.onChange ? depth : 0);
    const DialogResult result = askFields(owner(), named(dialog.title), dialog);
    paintDepth = before;
    return result;
}

/// Without looking at the events the display may not hear of what is shown before work is done.
void QtPlatform::letShow() {
    constexpr int milliseconds = 20;
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents, milliseconds);
}

void QtPlatform::showBusy(const std::string& text) {
    if (!text.empty()) {
        notices.push_back(text);
    } else if (!notices.empty()) {
        notices.pop_back();
    }
    busy.setVisible(!notices.empty());
    if (!notices.empty()) {
        busy.setText(QString::fromStdString(notices.back()));
        busy.adjustSize();
        busy.move((window.width() - busy.width()) / 2, (window.height() - busy.height()) / 2);
        busy.raise();
        busy.repaint();
    }
    letShow();
}

void QtPlatform::showProgress(const std::string& text, double fraction) {
    if (text.empty()) return strip.hide();
    strip.tell(QString::fromStdString(text), fraction);
    letShow();
}

void QtPlatform::beep() { QApplication::beep(); }

bool QtPlatform::escapeDown() {
    // Work may ask for every one of its millions of elements.
    constexpr std::chrono::milliseconds pause(4);
    if (const auto now = std::chrono::steady_clock::now(); now - lastLook >= pause) {
        input.beginWork();
        QCoreApplication::processEvents();
        input.endWork();
        lastLook = std::chrono::steady_clock::now();
    }
    return input.escapePressed() || input.escapeDown();
}

HelpWindow& QtPlatform::helpWindow() {
    if (!help) help = std::make_unique<HelpWindow>(window);
    return *help;
}

void QtPlatform::openHelp(const std::string& chapter) {
    helpWindow().showChapter(QString::fromStdString(chapter));
}

void QtPlatform::showPage(const std::string& pageTitle, const std::string& text) {
    helpWindow().showText(QString::fromStdString(pageTitle), QString::fromStdString(text));
}

std::optional<Bitmap> QtPlatform::clipboardBitmap() const {
    const QImage found = QApplication::clipboard()->image().convertToFormat(QImage::Format_ARGB32);
    if (found.isNull()) return std::nullopt;
    Bitmap copy;
    copy.width = found.width();
    copy.height = found.height();
    for (int y = 0; y < found.height(); ++y) {
        const auto* const row = reinterpret_cast<const std::uint32_t*>(found.constScanLine(y));
        copy.pixels.insert(copy.pixels.end(), row, row + found.width());
    }
    return copy;
}

void QtPlatform::copyToClipboard(const Bitmap& copied) {
    const QImage shared(reinterpret_cast<const uchar*>(copied.pixels.data()), copied.width,
                        copied.height, 4 * copied.width, QImage::Format_RGB32);
    QApplication::clipboard()->setImage(shared.copy());
}

void QtPlatform::drawText(Bitmap& drawn, int x, int y, const std::string& text, const Font& font,
                          std::uint32_t color) {
    paintText(drawn, x, y, text, font, color);
}

int QtPlatform::desktopTextHeight() const {
    return int(std::ceil(window.fontMetrics().height() * window.devicePixelRatioF()));
}

int QtPlatform::textWidth(const std::string& text, const Font& font) {
    return paintedWidth(text, font);
}

} // namespace polyfab
