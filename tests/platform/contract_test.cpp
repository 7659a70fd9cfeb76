// SPDX-License-Identifier: GPL-3.0-or-later
// What every backend keeps to, tried on each of them through the toy program.
#include "tests/platform/driver.h"
#include "tests/platform/toy_program.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace polyfab::test {
namespace {

using How = Reply::How;

struct Backend {
    const char* name;
    std::unique_ptr<Driver> (*make)();
    friend void PrintTo(const Backend& backend, std::ostream* out) { *out << backend.name; }
};

class Contract : public testing::TestWithParam<Backend> {
  protected:
    void SetUp() override {
        resetToy();
        driver = GetParam().make();
    }
    void TearDown() override {
        toyProgram().mayClose = true;
        driver.reset();
    }
    static int count(EventKind kind) {
        const std::vector<Event>& all = toyProgram().events;
        return int(std::count_if(all.begin(), all.end(),
                                 [kind](const Event& event) { return event.kind == kind; }));
    }
    /// The last event of this kind; an empty one if there is none.
    static Event last(EventKind kind) {
        Event found;
        for (const Event& event : toyProgram().events) {
            if (event.kind == kind) found = event;
        }
        EXPECT_EQ(found.kind, kind);
        return found;
    }
    std::unique_ptr<Driver> driver;
};

TEST_P(Contract, WindowIsCreatedOnceWithAClientSize) {
    EXPECT_EQ(count(EventKind::create), 1);
    EXPECT_GT(platform().clientSize().width, 0);
    EXPECT_TRUE(driver->isOpen());
}

TEST_P(Contract, TitleReadsBackToTheLetter) {
    driver->choose(toy::title, {});
    EXPECT_EQ(platform().title(), "polyfab [*] [cow.obj] ");
}

TEST_P(Contract, MenuItemsShowTheirState) {
    EXPECT_TRUE(driver->item(toy::yesNo).enabled);
    EXPECT_EQ(driver->item(toy::yesNo).label, "&yes or no");
    EXPECT_FALSE(driver->item(toy::greyed).enabled);
    EXPECT_FALSE(driver->item(toy::toggle).checked);
    driver->choose(toy::toggle, {});
    EXPECT_TRUE(driver->item(toy::toggle).checked);
    platform().setMenuItem(toy::yesNo, false, false);
    platform().setMenuItem(12345, true, true); // not there: ignored
    EXPECT_FALSE(driver->item(toy::yesNo).enabled);
}

TEST_P(Contract, MenuBarIsReplacedFromWithinACommand) {
    driver->choose(toy::otherMenu, {});
    EXPECT_EQ(driver->item(toy::yesNo).id, toy::yesNo);
    EXPECT_EQ(driver->item(toy::warn).id, 0);
}

TEST_P(Contract, ResizeTellsTheNewSizeAndRedraws) {
    const int before = toyProgram().resizes;
    driver->resize({400, 300});
    EXPECT_GT(toyProgram().resizes, before);
    EXPECT_EQ(platform().clientSize().width, 400);
    EXPECT_EQ(platform().clientSize().height, 300);
    EXPECT_EQ(driver->pixel(399, 299), toyColor(399, 299));
}

TEST_P(Contract, PictureIsShownPixelForPixelAndDrawnOnlyWhenDue) {
    for (const auto& [x, y] : {std::pair(0, 0), std::pair(17, 3), std::pair(101, 77)}) {
        EXPECT_EQ(driver->pixel(x, y), toyColor(x, y)) << x << "," << y;
    }
    const int paints = toyProgram().paints;
    driver->pixel(1, 1);
    EXPECT_EQ(toyProgram().paints, paints);
    platform().requestPaint();
    driver->pixel(1, 1);
    EXPECT_EQ(toyProgram().paints, paints + 1);
}

TEST_P(Contract, QuestionsReturnWhatTheUserDid) {
    struct Case {
        int command;
        How how;
        const char* result;
    };
    constexpr Case cases[] = {
        {toy::yesNo, How::yes, "question yes"},
        {toy::yesNo, How::no, "question no"},
        {toy::yesNo, How::escape, "question no"},
        {toy::yesNo, How::closeBox, "question no"},
        {toy::yesNoCancel, How::yes, "question yes"},
        {toy::yesNoCancel, How::no, "question no"},
        {toy::yesNoCancel, How::cancel, "question cancel"},
        {toy::yesNoCancel, How::escape, "question cancel"},
        {toy::yesNoCancel, How::closeBox, "question cancel"},
    };
    for (const Case& row : cases) {
        toyProgram().log.clear();
        driver->choose(row.command, {row.how, {}, ""});
        EXPECT_EQ(toyProgram().log, std::vector<std::string>{row.result}) << row.command;
    }
}

TEST_P(Contract, MessagesReturn) {
    driver->choose(toy::warn, {});
    driver->choose(toy::notice, {});
    driver->choose(toy::busyWork, {});
    EXPECT_EQ(count(EventKind::command), 3);
}

TEST_P(Contract, FileDialogGivesThePathOrNothing) {
    const std::string target = testing::TempDir() + "contract.OBJ";
    driver->choose(toy::saveFile, {How::path, {}, target});
    driver->choose(toy::saveFile, {How::cancel, {}, ""});
    driver->choose(toy::openFile, {How::escape, {}, ""});
    EXPECT_EQ(toyProgram().log, (std::vector<std::string>{"file " + target, "no file", "no file"}));
}

TEST_P(Contract, PromptReturnsItsFields) {
    struct Case {
        Reply reply;
        const char* result;
    };
    const Case cases[] = {
        {{How::accept, {"a", "b & c", "0"}, ""}, "accept|a|b & c|0"},
        {{How::cancel, {"a"}, ""}, "cancel|one|two|1"},
        {{How::closeBox, {"a", "b"}, ""}, "cancel|one|two|1"},
        {{How::escape, {}, ""}, "escape|one|two|1"},
    };
    for (const Case& row : cases) {
        toyProgram().log.clear();
        driver->choose(toy::prompt, row.reply);
        EXPECT_EQ(toyProgram().log, std::vector<std::string>{row.result});
    }
}

TEST_P(Contract, EscapeInAPromptIsAKeyThatGoesDownAndUp) {
    driver->choose(toy::prompt, {How::escape, {}, ""});
    EXPECT_EQ(count(EventKind::keyDown), 1);
    EXPECT_EQ(last(EventKind::keyDown).key, key::escape);
    EXPECT_EQ(last(EventKind::keyUp).key, key::escape);
}

TEST_P(Contract, CloseIsRefusedOrGranted) {
    driver->close();
    EXPECT_TRUE(driver->isOpen());
    driver->choose(toy::exit, {});
    EXPECT_TRUE(driver->isOpen());
    EXPECT_EQ(count(EventKind::close), 2);
    toyProgram().mayClose = true;
    driver->choose(toy::exit, {});
    EXPECT_FALSE(driver->isOpen());
    EXPECT_EQ(count(EventKind::destroy), 1);
    platform().destroyWindow();
    EXPECT_EQ(count(EventKind::destroy), 1);
}

TEST_P(Contract, KeysMouseAndWindowEventsArrive) {
    for (const int code : {int('A'), int('1'), key::escape, key::f2}) {
        driver->key(code, true);
        EXPECT_EQ(last(EventKind::keyDown).key, code);
        driver->key(code, false);
        EXPECT_EQ(last(EventKind::keyUp).key, code);
    }
    driver->mouse(38, 22, button::left | button::right);
    const Event mouse = last(EventKind::mouse);
    EXPECT_EQ(mouse.x, 38);
    EXPECT_EQ(mouse.y, 22);
    EXPECT_EQ(mouse.buttons, button::left | button::right);
    driver->openMenu();
    EXPECT_EQ(count(EventKind::menuOpening), 1);
    driver->deactivate();
    EXPECT_EQ(count(EventKind::deactivate), 1);
}

TEST_P(Contract, DropsBringTheirPaths) {
    const std::vector<std::string> paths = {"/tmp/a b.obj", "/tmp/%20[\xC3\xA9].dxf"};
    driver->drop(paths);
    EXPECT_EQ(last(EventKind::drop).paths, paths);
}

constexpr Backend backends[] = {
#ifdef POLYFAB_QT
    {"qt", makeQtDriver},
#endif
    {"batch", makeBatchDriver},
};

INSTANTIATE_TEST_SUITE_P(Backends, Contract, testing::ValuesIn(backends),
                         [](const auto& row) { return std::string(row.param.name); });

} // namespace
} // namespace polyfab::test
