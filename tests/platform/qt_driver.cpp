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
#include <QTest>
#include <QTimer>
#include <QUrl>
#include <QWindow>
#include <chrono>
#include <gtest/gtest.h>
#include <thread>

namespace polyfab::test {
namespace {

void sendKey(const QWidget& box, int code, bool down) {
    const int toolkitKey = code == key::escape ? int(Qt::Key_Escape)
                           : code == key::ctrl ? int(Qt::Key_Control)
                                               : code; // letters are equal
    // A modifier's own event carries what held before it.
    const bool held = code == key::ctrl && !down;
    QKeyEvent event(down ? QEvent::KeyPress : QEvent::KeyRelease, toolkitKey,
                    held ? Qt::ControlModifier : Qt::NoModifier);
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
    const auto held = Qt::MouseButtons::fromInt(int(mouse.buttons)); // as the bits of button
    QMouseEvent event(QEvent::MouseMove, place, place, Qt::NoButton, held, Qt::NoModifier);
    QCoreApplication::sendEvent(&target, &event);
}

void sendWheel(QWidget& target, const Event& wheel) {
    const QPointF place = QPointF(wheel.x, wheel.y) / target.devicePixelRatioF();
    QWheelEvent event(place, place, QPoint(), QPoint(0, int(wheel.steps * 120)), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
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
    explicit QtDriver(const Program& program) : backend(program) {
        setPlatform(&backend);
        backend.start("");
        settle();
        QTest::keyRelease(&window, Qt::Key_F1); // no modifier is held any more
    }
    ~QtDriver() override { backend.destroyWindow(); }
    void choose(int command, const std::deque<Answer>& answers) override {
        const auto answering = answerWith(answers);
        if (QAction* const action = window.action(command)) action->trigger();
        settle();
    }
    void work(const std::vector<Event>& typed) override {
        QTimer typing;
        const auto type = [this, &typed] {
            for (const Event& event : typed) {
                sendKey(window, event.key, event.kind == EventKind::keyDown);
            }
        };
        QObject::connect(&typing, &QTimer::timeout, &typing, [&] {
            if (!toyState.working) return;
            typing.stop();
            disturb();
            EXPECT_FALSE(window.close());
            sendMouse(window.canvas(), {EventKind::mouse, 0, 0, 5, 5, button::left});
            sendKey(window, 'A', true);
            sendKey(window, 'A', false);
            type();
        });
        typing.start(1);
        if (QAction* const action = window.action(toy::longWork)) action->trigger();
        settle();
        if (typing.isActive()) type(); // the work was over at once
    }
    void input(const Event& event, const std::deque<Answer>& answers) override {
        const auto answering = answerWith(answers);
        QWidget other;
        const bool down = event.kind == EventKind::keyDown;
        if (down || event.kind == EventKind::keyUp) sendKey(window, event.key, down);
        if (event.kind == EventKind::mouse) sendMouse(window.canvas(), event);
        if (event.kind == EventKind::wheel) sendWheel(window.canvas(), event);
        if (event.kind == EventKind::drop) drop(window.canvas(), event.paths);
        if (event.kind == EventKind::close) window.close();
        if (event.kind == EventKind::menuOpening) {
            QMenu* const menu = window.menuBar()->actions().constFirst()->menu();
            menu->popup(QPoint(0, 0));
            menu->hide();
        }
        if (event.kind == EventKind::deactivate) {
            window.activateWindow();
            settle();
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
    std::optional<StatusLine> statusLine() override {
        const StatusBar& bar = window.statusLine();
        return bar.isVisible() ? std::optional(bar.line()) : std::nullopt;
    }
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
    /// The user of the boxes, for as long as he is kept.
    std::unique_ptr<QTimer> answerWith(const std::deque<Answer>& answers) {
        auto answering = std::make_unique<QTimer>();
        QObject::connect(answering.get(), &QTimer::timeout, &window, [this, &answers] {
            QWidget* const box = QApplication::activeModalWidget();
            if (!box) return;
            const double before = backend.workSeconds();
            std::this_thread::sleep_for(std::chrono::milliseconds(25));
            disturb();
            EXPECT_EQ(backend.workSeconds(), before); // the user takes his time
            answerBox(*box, answers);
        });
        answering->start(1);
        return answering;
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
    QtPlatform backend;
    Window& window = backend.mainWindow();
};

} // namespace

std::unique_ptr<Driver> makeQtDriver() { return makeQtDriverOf(toyProgram()); }

std::unique_ptr<Driver> makeQtDriverOf(const Program& program) {
    return std::make_unique<QtDriver>(program);
}

} // namespace polyfab::test
