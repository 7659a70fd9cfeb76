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
#include <QMessageBox>
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
  public:
    void SetUp() override {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
        application = std::make_unique<QApplication>(argc, argv);
        QApplication::setQuitOnLastWindowClosed(false);
    }
    void TearDown() override { application.reset(); }

  private:
    int argc = 1;
    char name[8] = "polyfab";
    char* argv[2] = {name, nullptr};
    std::unique_ptr<QApplication> application;
};

[[maybe_unused]] const testing::Environment* const environment =
    testing::AddGlobalTestEnvironment(new Application);

void sendKey(QObject* target, int toolkitKey, bool down) {
    QKeyEvent event(down ? QEvent::KeyPress : QEvent::KeyRelease, toolkitKey, Qt::NoModifier);
    QCoreApplication::sendEvent(target, &event);
}

int toolkitKey(int code) {
    if (code == key::escape) return Qt::Key_Escape;
    return code == key::f2 ? int(Qt::Key_F2) : code; // letters and digits are the same
}

void answerMessage(QMessageBox& box, const Reply& reply) {
    const bool yes = reply.how == Reply::How::yes;
    const bool no = reply.how == Reply::How::no;
    box.button(yes                               ? QMessageBox::Yes
               : no                              ? QMessageBox::No
               : reply.how == Reply::How::accept ? QMessageBox::Ok
                                                 : QMessageBox::Cancel)
        ->click();
}

void answerFile(QFileDialog& box, const Reply& reply) {
    if (reply.how == Reply::How::path) {
        box.selectFile(QString::fromStdString(reply.path));
        QMetaObject::invokeMethod(&box, "accept");
    } else {
        box.reject();
    }
}

void answerPrompt(QDialog& box, const Reply& reply) {
    const QList<QLineEdit*> lines = box.findChildren<QLineEdit*>();
    const QList<QCheckBox*> ticks = box.findChildren<QCheckBox*>();
    for (std::size_t i = 0; i < reply.fields.size(); ++i) {
        const auto index = qsizetype(i);
        if (index < lines.size()) {
            lines[index]->setText(QString::fromStdString(reply.fields[i]));
        } else {
            ticks[index - lines.size()]->setChecked(reply.fields[i] == "1");
        }
    }
    const QString wanted = reply.how == Reply::How::accept ? "accept" : "cancel";
    for (QPushButton* const button : box.findChildren<QPushButton*>()) {
        if (button->text() == wanted) return button->click();
    }
}

void answerBox(QWidget& box, const Reply& reply) {
    if (reply.how == Reply::How::escape) return sendKey(box.windowHandle(), Qt::Key_Escape, true);
    if (reply.how == Reply::How::closeBox) return void(box.close());
    if (auto* const message = qobject_cast<QMessageBox*>(&box))
        return answerMessage(*message, reply);
    if (auto* const file = qobject_cast<QFileDialog*>(&box)) return answerFile(*file, reply);
    answerPrompt(*qobject_cast<QDialog*>(&box), reply);
}

class QtDriver : public Driver {
  public:
    QtDriver() : window(toyAsProgram()), before(currentPlatform) {
        setPlatform(&window);
        window.start("");
        settle();
    }
    ~QtDriver() override {
        window.destroyWindow();
        setPlatform(before);
    }
    void choose(int command, const Reply& reply) override {
        QTimer answering;
        QObject::connect(&answering, &QTimer::timeout, &answering, [this, &reply] {
            QWidget* const box = QApplication::activeModalWidget();
            if (!box) return;
            disturb();
            answerBox(*box, reply);
        });
        answering.start(1);
        if (QAction* const action = window.mainWindow().action(command)) action->trigger();
        settle();
    }
    bool isOpen() override { return window.mainWindow().isVisible(); }
    MenuItem item(int id) override {
        const QAction* const action = window.mainWindow().action(id);
        if (!action) return {};
        return {id, action->text().toStdString(), action->isEnabled(), action->isCheckable(),
                action->isChecked()};
    }
    void resize(Size size) override {
        Window& main = window.mainWindow();
        const double ratio = main.devicePixelRatioF();
        const QSize target(int(size.width / ratio), int(size.height / ratio));
        main.resize(main.size() + target - main.canvas().size());
        settle();
    }
    std::uint32_t pixel(int x, int y) override {
        return window.mainWindow().canvas().grab().toImage().pixel(x, y);
    }
    void key(int code, bool down) override {
        sendKey(window.mainWindow().windowHandle(), toolkitKey(code), down);
    }
    void mouse(int x, int y, unsigned buttons) override {
        const double ratio = window.mainWindow().devicePixelRatioF();
        Qt::MouseButtons held;
        if (buttons & button::left) held |= Qt::LeftButton;
        if (buttons & button::right) held |= Qt::RightButton;
        QMouseEvent event(QEvent::MouseMove, QPointF(x, y) / ratio, QPointF(x, y) / ratio,
                          Qt::NoButton, held, Qt::NoModifier);
        QCoreApplication::sendEvent(&window.mainWindow().canvas(), &event);
    }
    void drop(const std::vector<std::string>& paths) override {
        QMimeData data;
        QList<QUrl> urls;
        for (const std::string& path : paths) {
            urls << QUrl::fromLocalFile(QString::fromStdString(path));
        }
        data.setUrls(urls);
        QWidget& target = window.mainWindow().canvas();
        QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        enter.ignore();
        QCoreApplication::sendEvent(&target, &enter);
        EXPECT_TRUE(enter.isAccepted());
        QDropEvent event(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&target, &event);
        settle();
    }
    void close() override { window.mainWindow().close(); }
    void openMenu() override {
        QMenu* const menu = window.mainWindow().menuBar()->actions().constFirst()->menu();
        menu->popup(QPoint(0, 0));
        menu->hide();
    }
    void deactivate() override {
        QWidget other;
        other.show();
        other.activateWindow();
        settle();
    }

  private:
    /// What a window manager may do while a box is open.
    void disturb() {
        Window& main = window.mainWindow();
        main.resize(main.size() + QSize(1, 1));
        window.requestPaint();
        main.canvas().repaint();
    }
    /// Lets everything that is queued come through.
    static void settle() {
        for (int i = 0; i < 5; ++i) QCoreApplication::processEvents();
    }
    QtPlatform window;
    Platform* before;
};

} // namespace

std::unique_ptr<Driver> makeQtDriver() { return std::make_unique<QtDriver>(); }

} // namespace polyfab::test
