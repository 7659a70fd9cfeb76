// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/window/user.h"

#include "editor/state.h"

#include <QApplication>
#include <QDropEvent>
#include <QLineEdit>
#include <QMenuBar>
#include <QMimeData>
#include <QPushButton>
#include <QTest>
#include <QUrl>

namespace polyfab::test {

User::User() {
    resetEditorState();
    setPlatform(&backend);
    backend.start("");
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    // A box is answered as soon as it is the active one.
    QObject::connect(&answering, &QTimer::timeout, &answering, [this] {
        QWidget* const box = QApplication::activeModalWidget();
        if (box == nullptr || !box->isVisible()) return;
        if (answers.empty()) {
            ADD_FAILURE() << "nobody answers " << box->windowTitle().toStdString();
            box->close();
            return;
        }
        const auto act = std::move(answers.front());
        answers.pop_front();
        act(*box);
    });
    answering.start(1);
    settle();
}

User::~User() {
    backend.destroyWindow();
    setPlatform(nullptr);
    resetEditorState();
}

void User::settle() {
    for (int i = 0; i < 10; ++i) QCoreApplication::processEvents();
}

void User::activate() {
    // Off screen a closed menu stays the active window until another one comes up.
    if (QApplication::activeWindow() != &window) {
        QWidget other;
        other.show();
        other.activateWindow();
        settle();
    }
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    settle();
}

void User::menu(char bar, char item) {
    activate();
    QTest::keyClick(&window, bar, Qt::AltModifier);
    QWidget* const popup = QApplication::activePopupWidget();
    ASSERT_NE(popup, nullptr) << "no menu opens by Alt+" << bar;
    QTest::keyClick(popup, item);
    settle();
    EXPECT_TRUE(answers.empty()) << "a box did not appear";
}

void User::press(Qt::Key key, Qt::KeyboardModifiers held) {
    QTest::keyClick(&window.canvas(), key, held);
    settle();
}

void User::hold(Qt::Key key) { QTest::keyPress(&window.canvas(), key); }

void User::release(Qt::Key key) { QTest::keyRelease(&window.canvas(), key); }

void User::mouseDown(QPoint at, Qt::MouseButton button) {
    activate();
    QTest::mousePress(&window.canvas(), button, {}, at / window.devicePixelRatioF());
    settle();
}

void User::mouseUp(QPoint at, Qt::MouseButton button) {
    QTest::mouseRelease(&window.canvas(), button, {}, at / window.devicePixelRatioF());
    settle();
}

void User::drop(const std::string& path) {
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(QString::fromStdString(path))});
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&window.canvas(), &enter);
    QDropEvent event(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&window.canvas(), &event);
    settle();
}

void User::answer(std::function<void(QWidget&)> act) { answers.push_back(std::move(act)); }

void User::answerButton(const QString& label) {
    answer([label](QWidget& box) {
        for (QPushButton* const button : box.findChildren<QPushButton*>()) {
            if (button->text().remove('&').compare(label, Qt::CaseInsensitive) == 0) {
                return QTest::mouseClick(button, Qt::LeftButton);
            }
        }
        ADD_FAILURE() << "no button " << label.toStdString();
        box.close();
    });
}

void User::answerText(const QString& text) {
    answer([text](QWidget& box) {
        auto* const line = qobject_cast<QLineEdit*>(box.focusWidget());
        ASSERT_NE(line, nullptr) << "no field has the focus";
        EXPECT_EQ(line->selectedText(), line->text()); // typing replaces the default
        QTest::keyClicks(line, text);
        QTest::keyClick(line, Qt::Key_Return);
    });
}

} // namespace polyfab::test
