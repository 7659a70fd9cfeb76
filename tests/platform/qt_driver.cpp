// SPDX-License-Identifier: GPL-3.0-or-later
// The user of the real window, in the offscreen platform: boxes are answered by a timer that looks
// for the open one.
#include "platform/qt/qt_platform.h"
#include "tests/platform/driver.h"
#include "tests/platform/toy_program.h"

#include <QApplication>
#include <QCheckBox>
#include <QDropEvent>
#include <QFileDialog>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenuBar>
#include <QMimeData>
#include <QPushButton>
#include <QTimer>
#include <QUrl>
#include <QWindow>
#include <gtest/gtest.h>

namespace polyfab::test {
namespace {

/// One application for the whole test program, gone before its static objects are.
class Application : public testing::Environment {
    void SetUp() override {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
        application.emplace(argc, argv);
        QApplication::setQuitOnLastWindowClosed(false);
    }
    void TearDown() override { application.reset(); }

    int argc = 1;
    char name[8] = "polyfab";
    char* argv[2] = {name, nullptr};
    std::optional<QApplication> application;
};

[[maybe_unused]] const testing::Environment* const environment =
    testing::AddGlobalTestEnvironment(new Application);

void sendKey(const QWidget& box, int code, bool down) {
    const int toolkitKey = code == key::escape ? int(Qt::Key_Escape) : code; // letters are equal
    QKeyEvent event(down ? QEvent::KeyPress : QEvent::KeyRelease, toolkitKey, Qt::NoModifier);
    QCoreApplication::sendEvent(box.windowHandle(), &event);
}

/// A text goes into the next field; in a box without fields it names the button.
void answerBox(QWidget& box, const std::deque<Answer>& answers) {
    QList<QLineEdit*> lines = box.findChildren<QLineEdit*>();
    QList<QCheckBox*> ticks = box.findChildren<QCheckBox*>();
    QString wanted = qobject_cast<QFileDialog*>(&box) ? "save" : "accept";
    for (const Answer& answer : answers) {
        const QString text = QString::fromStdString(answer.text);
        if (answer.kind == Answer::Kind::escape) return sendKey(box, key::escape, true);
        if (answer.kind == Answer::Kind::cancel)
            wanted = "cancel";
        else if (!lines.isEmpty())
            lines.takeFirst()->setText(text);
        else if (!ticks.isEmpty())
            ticks.takeFirst()->setChecked(text == "1");
        else
            wanted = text;
    }
    for (QPushButton* const button : box.findChildren<QPushButton*>()) {
        if (button->text().remove('&').toLower() == wanted) return button->click();
    }
    box.close(); // no such button
}

void sendMouse(QWidget& target, const Event& mouse) {
    const QPointF place = QPointF(mouse.x, mouse.y) / target.devicePixelRatioF();
    const auto held = Qt::MouseButtons::fromInt(int(mouse.buttons)); // left 1, right 2 here too
    QMouseEvent event(QEvent::MouseMove, place, place, Qt::NoButton, held, Qt::NoModifier);
    QCoreApplication::sendEvent(&target, &event);
}

void drop(QWidget& target, const std::vector<std::string>& paths) {
    QMimeData data;
    QList<QUrl> urls;
    for (const auto& path : paths) urls << QUrl::fromLocalFile(QString::fromStdString(path));
    data.setUrls(urls);
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    enter.ignore();
    QCoreApplication::sendEvent(&target, &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent event(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&target, &event);
}

class QtDriver : public Driver {
  public:
    QtDriver() {
        setPlatform(&backend);
        backend.start("");
        settle();
    }
    ~QtDriver() override { backend.destroyWindow(); }
    void choose(int command, const std::deque<Answer>& answers) override {
        QTimer answering;
        QObject::connect(&answering, &QTimer::timeout, &answering, [this, &answers] {
            QWidget* const box = QApplication::activeModalWidget();
            if (!box) return duringWork(!answers.empty());
            disturb();
            answerBox(*box, answers);
        });
        answering.start(1);
        if (QAction* const action = window.action(command)) action->trigger();
        settle();
    }
    void input(const Event& event) override {
        QWidget other;
        const bool down = event.kind == EventKind::keyDown;
        if (down || event.kind == EventKind::keyUp) sendKey(window, event.key, down);
        if (event.kind == EventKind::mouse) sendMouse(window.canvas(), event);
        if (event.kind == EventKind::drop) drop(window.canvas(), event.paths);
        if (event.kind == EventKind::close) window.close();
        if (event.kind == EventKind::menuOpening) {
            QMenu* const menu = window.menuBar()->actions().constFirst()->menu();
            menu->popup(QPoint(0, 0));
            menu->hide();
        }
        if (event.kind == EventKind::deactivate) {
            other.show();
            other.activateWindow();
        }
        settle();
    }
    void resize(Size size) override {
        const double ratio = window.devicePixelRatioF();
        const QSize target(int(size.width / ratio), int(size.height / ratio));
        window.resize(window.size() + target - window.canvas().size());
        settle();
    }
    bool isOpen() override { return window.isVisible(); }
    MenuItem item(int id) override {
        const QAction* const action = window.action(id);
        if (!action) return {};
        return {id, action->text().toStdString(), action->isEnabled(), action->isCheckable(),
                action->isChecked()};
    }
    std::uint32_t pixel(int x, int y) override {
        return window.canvas().grab().toImage().pixel(x, y);
    }

  private:
    /// The user tries a key and the mouse while a command works, Escape last.
    void duringWork(bool stop) {
        if (!toyState.working) return;
        sendKey(window, 'A', true);
        sendMouse(window.canvas(), {EventKind::mouse, 0, 0, 5, 5, button::left});
        if (!stop) return;
        disturb();
        sendKey(window, key::escape, true);
        sendKey(window, key::escape, false);
    }
    /// What a window manager may do while a box is open.
    void disturb() {
        window.resize(window.size() + QSize(1, 1));
        backend.requestPaint();
        window.canvas().repaint();
    }
    /// Lets everything that is queued come through.
    static void settle() {
        for (int i = 0; i < 5; ++i) QCoreApplication::processEvents();
    }
    QtPlatform backend{toyProgram()};
    Window& window = backend.mainWindow();
};

} // namespace

std::unique_ptr<Driver> makeQtDriver() { return std::make_unique<QtDriver>(); }

} // namespace polyfab::test
