// SPDX-License-Identifier: GPL-3.0-or-later
// What only the real window has: menus worked by keys, shortcuts, and the looks of the prompts.
#ifdef POLYFAB_QT
#include "platform/qt/qt_platform.h"
#include "tests/platform/toy_program.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QScreen>
#include <QTest>
#include <QTimer>
#include <csignal>
#include <cstring>
#include <gtest/gtest.h>

namespace polyfab::test {
namespace {

using Log = std::vector<std::string>;

class QtWindow : public testing::Test {
  protected:
    QtWindow() {
        toyState = {};
        setPlatform(&backend);
        backend.start("");
        activate();
    }
    ~QtWindow() override {
        backend.destroyWindow();
        setPlatform(nullptr);
    }
    /// What came in since the last time, the activation left out.
    Log taken() {
        for (int i = 0; i < 5; ++i) QCoreApplication::processEvents();
        std::erase(toyState.log, "deactivate");
        return std::exchange(toyState.log, {});
    }
    /// Off screen a menu makes its window inactive, unlike elsewhere.
    void activate() {
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        QTest::keyRelease(&window, Qt::Key_F1); // no modifier is held any more
    }
    /// Opens a menu by Alt and its letter.
    QMenu* open(char letter) {
        activate();
        taken();
        QTest::keyClick(&window, letter, Qt::AltModifier);
        auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (menu == nullptr) throw std::runtime_error("no menu opens");
        return menu;
    }
    QtPlatform backend{toyProgram()};
    Window& window = backend.mainWindow();
};

const MenuBar bar = {
    {"&one", {{21, "&first"}, {22, "&second"}, {23, "another: &s"}, {24, "&grey", false}}},
    {"t&wo", {{25, "&first", true, false, false, "Ctrl+K"}, {26, "l&ast", true, true, true}}},
};

TEST_F(QtWindow, FitsOnASmallScreen) {
    const QSize room = window.screen()->availableSize();
    ASSERT_LT(room.width(), 1200); // off screen
    EXPECT_LT(window.width(), room.width());
    EXPECT_EQ(window.height(), 640);
}

TEST_F(QtWindow, LettersAndShortcutsWorkTheMenus) {
    backend.setMenuBar("A", bar);
    backend.setMenuBar("B", bar); // and the one before takes no part any more
    taken();
    const auto press = [&] {
        QTest::keyClick(&window.canvas(), Qt::Key_K, Qt::ControlModifier);
        Log log = taken();
        std::erase_if(log, [](const std::string& line) { return line.starts_with("key"); });
        return log;
    };
    EXPECT_EQ(press(), Log{"command 25"});
    backend.setMenuItem(25, false, false);
    EXPECT_EQ(press(), Log{});

    QTest::keyClick(open('w'), 'a');
    EXPECT_EQ(taken(), (Log{"menu", "command 26"}));
    QMenu* const menu = open('o');
    QTest::keyClick(menu, 's'); // two have it: it goes from one to the next
    QTest::keyClick(menu, 's');
    EXPECT_EQ(taken(), Log{"menu"});
    QTest::keyClick(menu, Qt::Key_Return);
    EXPECT_EQ(taken(), Log{"command 23"});
    QTest::keyClick(open('o'), 'g');
    EXPECT_EQ(taken(), Log{"menu"});
}

TEST_F(QtWindow, KeysStayWithTheCanvas) {
    backend.setMenuBar("A", bar);
    taken();
    QTest::keyClick(window.windowHandle(), Qt::Key_Alt);
    EXPECT_EQ(QApplication::focusWidget(), &window.canvas());
    window.menuBar()->setFocus(); // where a menu that was closed leaves it
    QTest::keyClick(window.windowHandle(), Qt::Key_Home);
    EXPECT_EQ(taken(), (Log{"keyDown 18", "keyUp 18", "keyDown 36", "keyUp 36"}));
    window.menuBar()->setFocus();
    QWidget other;
    other.show();
    other.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&other));
    activate();
    EXPECT_EQ(QApplication::focusWidget(), &window.canvas());
}

TEST_F(QtWindow, TheScrollBarTurnsTheWheel) {
    auto* const scroll = window.findChild<QScrollBar*>();
    taken();
    backend.setScrollBar({1, 4, 7});
    EXPECT_TRUE(scroll->isVisible() && scroll->value() == 1 && scroll->maximum() == 3);
    scroll->setValue(3);
    EXPECT_EQ(taken(), Log{"wheel -1 -1 steps -2.000000"});
    backend.setScrollBar({0, 4, 4});
    EXPECT_FALSE(scroll->isVisible());
    EXPECT_EQ(taken(), Log{});
}

TEST_F(QtWindow, ACommandSeesCtrlAsItIs) {
    backend.setMenuBar("A", bar);
    const auto choose = [&](Qt::KeyboardModifiers held) {
        QMenu* const menu = open('o');
        const QPoint place = menu->actionGeometry(menu->actions().constFirst()).center();
        QTest::mouseClick(menu, Qt::LeftButton, held, place);
        return taken();
    };
    EXPECT_EQ(choose(Qt::ControlModifier), (Log{"menu", "keyDown 17", "command 21"}));
    EXPECT_EQ(choose(Qt::NoModifier), (Log{"menu", "command 21"}));
    // Pressed in the window, released elsewhere, and the other way round.
    Canvas& canvas = window.canvas();
    QTest::keyPress(&canvas, Qt::Key_Control);
    QTest::keyClick(&window, Qt::Key_F1);
    taken();
    window.action(21)->trigger();
    EXPECT_EQ(taken(), (Log{"keyUp 17", "command 21"}));
    QTest::keyClick(&window, Qt::Key_F1, Qt::ControlModifier);
    window.action(21)->trigger();
    EXPECT_EQ(taken(), (Log{"keyDown 17", "command 21"}));
    QTest::keyRelease(&canvas, Qt::Key_Control, Qt::ControlModifier);
    EXPECT_EQ(taken(), Log{"keyUp 17"});
}

TEST_F(QtWindow, AKeyIsTheSameFromItsPressToItsRelease) {
    constexpr quint32 comma = 59, shift = 50;
    const auto send = [&](bool down, int key, quint32 scanCode, bool repeated = false) {
        QKeyEvent event(down ? QEvent::KeyPress : QEvent::KeyRelease, key, {}, scanCode, 0, 0, {},
                        repeated);
        QCoreApplication::sendEvent(&window.canvas(), &event);
    };
    taken();
    send(true, Qt::Key_Comma, comma); // a German keyboard
    send(true, Qt::Key_Shift, shift);
    send(true, Qt::Key_Semicolon, comma, true);
    send(false, Qt::Key_Semicolon, comma);
    EXPECT_EQ(taken(), (Log{"keyDown 188", "keyDown 16", "keyDown 188", "keyUp 188"}));
    // What is still held when a box closes does nothing until it is pressed anew.
    window.canvas().forgetKeys();
    send(true, Qt::Key_Shift, shift, true);
    send(false, Qt::Key_Shift, shift);
    EXPECT_EQ(taken(), Log{});
    send(true, Qt::Key_Shift, shift);
    send(true, Qt::Key_Shift, shift, true);
    EXPECT_EQ(taken(), (Log{"keyDown 16", "keyDown 16"}));
}

TEST_F(QtWindow, ProgressLiesOverTheBottomOnly) {
    for (int i = 0; i < 5; ++i) QCoreApplication::processEvents();
    const QRgb full = window.palette().color(QPalette::Highlight).rgb();
    const auto picture = [&] { return window.canvas().grab().toImage(); };
    const QImage without = picture();
    const QWidget* const focus = QApplication::focusWidget();
    taken();
    /// How many pixels of the bar are full; the lowest row of the picture that shows through.
    const auto look = [&](const char* text, double fraction) {
        backend.showProgress(text, fraction);
        const QImage shown = picture();
        int count = 0, row = shown.height() - 1;
        for (int y = 0; y < shown.height(); ++y) {
            for (int x = 0; x < shown.width(); ++x) count += shown.pixel(x, y) == full;
        }
        const auto bytes = static_cast<std::size_t>(shown.bytesPerLine());
        while (row > 0 && std::memcmp(shown.scanLine(row), without.scanLine(row), bytes) != 0) {
            --row;
        }
        return std::pair(count, row);
    };
    const std::string longText(3000, 'n');
    const auto [none, bottom] = look("counting", 0);
    const auto [half, sameBottom] = look(longText.c_str(), 0.5);
    const auto [all, stillSame] = look("counting", 1);
    EXPECT_EQ(none, 0);
    EXPECT_TRUE(half > 0 && std::abs(all - 2 * half) < all / 20) << half << " " << all;
    EXPECT_TRUE(bottom == sameBottom && bottom == stillSame);
    EXPECT_TRUE(bottom > without.height() * 3 / 4 && bottom < without.height() - 10) << bottom;
    EXPECT_GT(look("counting", -1).first, 0);
    const QImage moving = picture();
    look("counting", -1);
    EXPECT_NE(picture(), moving);
    EXPECT_EQ(look("", 0), std::pair(0, without.height() - 1));
    EXPECT_EQ(QApplication::focusWidget(), focus);
    EXPECT_EQ(taken(), Log{});
}

TEST_F(QtWindow, MouseAndWheelArriveWhateverTheirKind) {
    const QPoint place(8, 12);
    const QPoint pixel = place * window.devicePixelRatioF();
    const std::string at = ' ' + std::to_string(pixel.x()) + ' ' + std::to_string(pixel.y());
    taken();
    QTest::mouseDClick(&window.canvas(), Qt::LeftButton, {}, place);
    QTest::mouseRelease(&window.canvas(), Qt::LeftButton, {}, place);
    EXPECT_EQ(taken(), (Log{"mouse" + at + " 1", "mouse" + at}));
    QTest::mouseClick(&window.canvas(), Qt::MiddleButton, {}, place);
    EXPECT_EQ(taken(), (Log{"mouse" + at + " 4", "mouse" + at}));
    QWheelEvent sideways(place, place, QPoint(), QPoint(-60, 0), Qt::NoButton, Qt::AltModifier,
                         Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&window.canvas(), &sideways);
    EXPECT_EQ(taken(), Log{"wheel" + at + " steps -0.500000"});
}

/// Opens the prompt and lets `act` be its user.
DialogResult use(Dialog& dialog, const std::function<void(QWidget&)>& act) {
    QTimer::singleShot(0, [&act] {
        QWidget* const box = QApplication::activeModalWidget();
        ASSERT_TRUE(QTest::qWaitForWindowActive(box));
        act(*box);
        if (box->isVisible()) box->close();
    });
    return platform().dialog(dialog);
}

Dialog promptOf(int fields) {
    Dialog dialog{"ASKDB", "", {}};
    for (int i = 0; i < fields; ++i) dialog.fields.push_back({"", "text"});
    return dialog;
}

TEST_F(QtWindow, TheUserRestsWhenNothingComesAndNoButtonIsDown) {
    const auto restsIn = [](int milliseconds) {
        toyState.rests = 0;
        QTest::qWait(milliseconds);
        return toyState.rests;
    };
    QTest::mousePress(&window.canvas(), Qt::LeftButton);
    EXPECT_EQ(restsIn(1300), 0);
    QTest::mouseRelease(&window.canvas(), Qt::LeftButton);
    EXPECT_EQ(restsIn(1600), 1); // a moment later, and not again so soon
}

TEST_F(QtWindow, ASignalEndsTheRunAfterTheProgramHeardOfIt) {
    taken();
    std::raise(SIGTERM);
    EXPECT_EQ(taken(), (Log{"sessionEnd", "destroy"}));
    EXPECT_EQ(backend.endedBy(), SIGTERM);
}

TEST_F(QtWindow, PromptsAreFilledInFromTheKeyboard) {
    const struct {
        int fields;
        std::string label;
        int tabs; ///< behind the fields, before the Return
        DialogResult result;
    } cases[] = {
        {1, "a & b?", 0, DialogResult::accept},
        {1, "how far? " + std::string(300, 'n') + " or " + std::string(60, 'x'), 1,
         DialogResult::cancel},
        {2, "name?", 0, DialogResult::accept},
        {3, "how many of these shall there be along the longer side of it?", 2,
         DialogResult::accept},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.label);
        Dialog dialog = promptOf(row.fields);
        dialog.fields[0].label = row.label;
        dialog.title = row.fields == 2 ? "its own" : "";
        backend.nameBoxes("smoothing");
        const DialogResult result = use(dialog, [&](QWidget& box) {
            const auto* const label = box.findChild<QLabel*>();
            const auto* const first = box.findChild<QLineEdit*>();
            EXPECT_EQ(label->text().toStdString(), row.label);
            EXPECT_EQ(box.windowTitle(), row.fields == 2 ? "its own" : "smoothing");
            EXPECT_EQ(label->geometry().bottom() < first->geometry().top(), row.fields == 1);
            EXPECT_EQ(label->geometry().right() < first->geometry().left(), row.fields > 1);
            EXPECT_TRUE(box.rect().contains(label->geometry()));
            EXPECT_GE(label->height(), label->heightForWidth(label->width()));
            if (!label->wordWrap()) {
                EXPECT_GE(label->width(), label->fontMetrics().horizontalAdvance(label->text()));
            }
            EXPECT_EQ(first->accessibleName().toStdString(), row.label);
            for (int i = 0; i < row.fields + row.tabs; ++i) {
                const auto* const line = qobject_cast<QLineEdit*>(box.focusWidget());
                ASSERT_EQ(line != nullptr, i < row.fields);
                if (line) {
                    EXPECT_EQ(line->selectedText(), "text");
                    EXPECT_GE(line->width(), line->fontMetrics().averageCharWidth() * 40);
                    QTest::keyClicks(box.focusWidget(), QString::number(i));
                }
                QTest::keyClick(box.focusWidget(), Qt::Key_Tab);
            }
            QTest::keyClick(box.focusWidget(), Qt::Key_Return); // presses what has the focus
        });
        EXPECT_EQ(result, row.result);
        for (int i = 0; i < row.fields && result == DialogResult::accept; ++i) {
            EXPECT_EQ(dialog.fields[std::size_t(i)].text, std::to_string(i));
        }
    }
}

TEST_F(QtWindow, WhatAPromptShowsIsPaintedWhileItIsOpen) {
    bool painted = false;
    window.action(toy::preview)->trigger();
    QTimer::singleShot(0, [&painted] {
        QWidget* const box = QApplication::activeModalWidget();
        ASSERT_NE(box, nullptr);
        const int paints = toyState.paints;
        box->findChild<QLineEdit*>()->setText("new");
        painted = QTest::qWaitFor([paints] { return toyState.paints > paints; }, 2000);
        box->close();
    });
    taken();
    EXPECT_TRUE(painted);
}

TEST_F(QtWindow, KeysInAPromptAreToldToItAlone) {
    Dialog dialog = promptOf(1);
    Log keys;
    dialog.onKey = [&](const Event& event) { keys.push_back(describe(event)); };
    taken();
    use(dialog, [](QWidget& box) {
        QTest::keyClick(box.windowHandle(), Qt::Key_C);
        QTest::keyPress(box.windowHandle(), Qt::Key_Shift);
        QTest::keyClick(box.windowHandle(), Qt::Key_VolumeUp); // has no code
        QTest::keyPress(box.windowHandle(), Qt::Key_Return);
    });
    EXPECT_EQ(keys,
              (Log{"keyDown 67", "keyUp 67", "keyDown 16", "keyDown 13", "keyUp 13", "keyUp 16"}));
    EXPECT_EQ(dialog.fields[0].text, "c");
    for (const std::string& line : taken()) EXPECT_FALSE(line.starts_with("key")) << line;
    EXPECT_EQ(window.canvas().internalWinId(), 0U); // the prompt's own window is no matter of it
}

} // namespace
} // namespace polyfab::test
#endif
