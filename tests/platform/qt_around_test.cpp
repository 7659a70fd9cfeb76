// SPDX-License-Identifier: GPL-3.0-or-later
// What the real window has around its client area: tool bar, context menu, search and manual.
#ifdef POLYFAB_QT
#include "platform/qt/icons.h"
#include "platform/qt/qt_platform.h"
#include "tests/platform/toy_program.h"

#include <QApplication>
#include <QLineEdit>
#include <QMenu>
#include <QScrollBar>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

namespace polyfab::test {
namespace {

class QtAround : public testing::Test {
  protected:
    QtAround() {
        toyState = {};
        setPlatform(&backend);
        backend.start("");
        backend.setMenuBar("A", {{"&one",
                                  {{.id = 21, .label = "&weld", .key = "W", .name = "weld all"},
                                   {.label = "inner", .items = {{22, "&grey", false}, {23, "on"}}},
                                   {.id = 24, .label = "&b", .advice = "melts all points"}}}});
        settle();
    }
    ~QtAround() override {
        backend.destroyWindow();
        setPlatform(nullptr);
    }
    static void settle() {
        for (int i = 0; i < 5; ++i) QCoreApplication::processEvents();
    }
    static bool came(const std::string& line) {
        return std::count(toyState.log.begin(), toyState.log.end(), line) == 1;
    }
    QtPlatform backend{toyProgram()};
    Window& window = backend.mainWindow();
};

TEST_F(QtAround, ButtonsAndContextMenuAreTheCommandsOfTheMenus) {
    const Size before = backend.clientSize();
    backend.setToolBar({{21, "undo"}, {}, {22, "redo"}, {99, "fit"}});
    const QList<QAction*> buttons = window.toolBar().actions();
    ASSERT_EQ(buttons.size(), 4);
    EXPECT_TRUE(buttons[0]->isEnabled() && !buttons[2]->isEnabled() && !buttons[3]->isEnabled());
    backend.setMenuItem(22, true, false);
    EXPECT_TRUE(buttons[2]->isEnabled());
    backend.showToolBar(false);
    settle();
    EXPECT_EQ(backend.clientSize().height, before.height);
    buttons[0]->trigger();
    settle();
    EXPECT_TRUE(came("command 21"));
    EXPECT_NE(themedIcon("undo").pixmap(32, QIcon::Normal).toImage(),
              themedIcon("undo").pixmap(32, QIcon::Disabled).toImage());

    backend.openContextMenu({21, 0, 99, 22});
    settle();
    auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_TRUE(menu != nullptr);
    EXPECT_EQ(menu->actions().size(), 3);
    menu->actions().constLast()->trigger();
    menu->close();
    settle();
    EXPECT_TRUE(came("command 22"));
}

TEST_F(QtAround, TheSearchRunsWhatIsFound) {
    const struct {
        const char* typed;
        int downs;
        const char* result;
    } cases[] = {{"weld", 0, "command 21"}, {"MELTS points", 0, "command 24"},
                 {"24", 0, "command 24"},   {"inner", 1, "command 23"},
                 {"inner", 0, nullptr},     {"none", 0, nullptr}};
    for (const auto& row : cases) {
        toyState.log.clear();
        QTimer::singleShot(0, [&] {
            QWidget* const box = QApplication::activeModalWidget();
            auto* const line = box->findChild<QLineEdit*>();
            QTest::keyClicks(line, row.typed);
            for (int i = 0; i < row.downs; ++i) QTest::keyClick(line, Qt::Key_Down);
            QTest::keyClick(line, Qt::Key_Return); // on what is grey it does nothing
            QTest::keyClick(line, Qt::Key_Escape);
        });
        backend.searchCommands();
        settle();
        EXPECT_TRUE(row.result ? came(row.result) : toyState.log.size() <= 1) << row.typed;
    }
}

TEST_F(QtAround, TheManualOpensAtItsChapters) {
    backend.openHelp("");
    const auto windows = QApplication::topLevelWidgets();
    const auto found = std::find_if(windows.begin(), windows.end(),
                                    [](QWidget* each) { return each->windowTitle() == "manual"; });
    ASSERT_TRUE(found != windows.end());
    auto& pages = *(*found)->findChild<QTextBrowser*>();
    EXPECT_TRUE(pages.toPlainText().contains("The two panes"));
    EXPECT_EQ(pages.verticalScrollBar()->value(), 0);
    int last = 0;
    for (const char* const chapter : {"the-box", "picking-by-name", "without-a-window"}) {
        backend.openHelp(chapter);
        settle();
        EXPECT_GT(pages.verticalScrollBar()->value(), last) << chapter;
        last = pages.verticalScrollBar()->value();
    }
    const QUrl picture("tools/weld-after.png");
    EXPECT_FALSE(pages.loadResource(QTextDocument::ImageResource, picture).isNull());
    backend.showPage("keys", "| a | b |\n|---|---|\n| Ctrl\\+\\+ | grow |\n");
    EXPECT_TRUE(pages.toPlainText().contains("Ctrl++"));
}

} // namespace
} // namespace polyfab::test
#endif
