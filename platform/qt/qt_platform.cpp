// SPDX-License-Identifier: GPL-3.0-or-later
// The windowing operations on a real window. A modal box or a busy notice lets toolkit events in
// while the program is in the midst of a command; what would read or change the mesh then (paint,
// resize, commands, drops) waits until that command is over.
#include "platform/qt/qt_platform.h"

#include "platform/qt/dialogs.h"
#include "platform/qt/help.h"
#include "platform/qt/text.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QScreen>
#include <QTimer>
#include <QWindow>

#include <utility>

namespace polyfab {
namespace {

/// What follows a modal box, however it ends: the window gets the keyboard back (not every window
/// manager sees to that), and an Escape that closed the box is not meant for what comes next.
struct AfterBox {
    QWidget& window;
    InputFilter& input;
    ~AfterBox() {
        if (window.isVisible()) window.activateWindow();
        input.forgetEscape();
    }
};

} // namespace

QtPlatform::QtPlatform(const Program& runProgram)
    : program(runProgram), window({[this](const Event& event) { send(event); },
                                   [this](const Event& event) { queue(event); },
                                   [this]() -> const QImage& { return currentPicture(); }}),
      busy(&window), directory(QDir::currentPath()) {
    busy.setFrameStyle(int(QFrame::Panel) | int(QFrame::Raised));
    busy.setAutoFillBackground(true);
    busy.setMargin(12);
    busy.setTextFormat(Qt::PlainText);
    busy.hide();
}

void QtPlatform::start(const std::string& file) {
    open = true;
    send({.kind = EventKind::create});
    firstFile = file;
    window.show();
    // Another screen may have other pixels, and only then does the same size mean another one.
    QObject::connect(window.windowHandle(), &QWindow::screenChanged, &window,
                     [this] { queue({.kind = EventKind::resize}); });
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
    if (event.kind == EventKind::drop && event.paths.size() == 1) {
        directory = QFileInfo(QFile::decodeName(event.paths.front().c_str())).absolutePath();
    }
    if (event.kind == EventKind::command) {
        // The key may have gone down or up while a menu had the keyboard.
        window.canvas().tellCtrl(QApplication::queryKeyboardModifiers() & Qt::ControlModifier);
    }
    send(event);
}

const QImage& QtPlatform::currentPicture() {
    if (paintDue && depth == 0) {
        paintDue = false;
        send(Event{});
        if (!firstFile.empty()) {
            queue({.kind = EventKind::drop, .paths = {std::exchange(firstFile, {})}});
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
    QAction* const action = window.action(id);
    if (!action) return;
    action->setEnabled(enabled);
    action->setChecked(checked);
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
    loop.exit();
}

void QtPlatform::message(const std::string& title, const std::string& text, Icon icon) {
    const AfterBox afterBox{window, input};
    showMessage(owner(), title, text, icon);
}

Choice QtPlatform::question(const std::string& title, const std::string& text, Buttons buttons) {
    const AfterBox afterBox{window, input};
    return askQuestion(owner(), title, text, buttons);
}

std::optional<std::string> QtPlatform::fileDialog(const FileRequest& request) {
    const AfterBox afterBox{window, input};
    return askFile(owner(), request, directory);
}

DialogResult QtPlatform::dialog(Dialog& dialog) {
    const AfterBox afterBox{window, input};
    return askFields(owner(), dialog);
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
    // Without this the display may not hear of it before the work is done.
    constexpr int milliseconds = 20;
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents, milliseconds);
}

void QtPlatform::beep() { QApplication::beep(); }

bool QtPlatform::escapeDown() {
    input.beginWork();
    QCoreApplication::processEvents();
    input.endWork();
    return input.escapePressed() || input.escapeDown();
}

void QtPlatform::openHelp() {
    const AfterBox afterBox{window, input};
    showManual(owner());
}

std::optional<Bitmap> QtPlatform::clipboardBitmap() const {
    const QImage found = QApplication::clipboard()->image().convertToFormat(QImage::Format_RGB32);
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

void QtPlatform::drawText(Bitmap& drawn, int x, int y, const std::string& text, const Font& font,
                          std::uint32_t color) {
    paintText(drawn, x, y, text, font, color);
}

int QtPlatform::textWidth(const std::string& text, const Font& font) {
    return paintedWidth(text, font);
}

} // namespace polyfab
