// SPDX-License-Identifier: GPL-3.0-or-later
// What every backend keeps to, tried on each of them through the toy program.
#include "tests/platform/driver.h"
#include "tests/platform/toy_program.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace polyfab::test {
namespace {

Answer text(const char* answer) { return {Answer::Kind::text, answer}; }
const Answer escape{Answer::Kind::escape, ""};
const Answer cancel{Answer::Kind::cancel, ""};

class Contract : public testing::TestWithParam<std::unique_ptr<Driver> (*)()> {
  protected:
    void SetUp() override {
        toyState = {};
        driver = GetParam()();
    }
    void TearDown() override {
        driver.reset();
        setPlatform(nullptr);
    }
    static auto count(const std::string& line) {
        return std::count(toyState.log.begin(), toyState.log.end(), line);
    }
    std::unique_ptr<Driver> driver;
};

TEST_P(Contract, WindowHasASizeATitleAndMenus) {
    EXPECT_EQ(toyState.log, std::vector<std::string>{"create"});
    EXPECT_TRUE(driver->isOpen());
    EXPECT_GT(platform().clientSize().width, 0);
    driver->choose(toy::title, {});
    EXPECT_EQ(platform().title(), "polyfab [*] [cow.obj] ");
    EXPECT_FALSE(driver->item(toy::title).checked); // only the program sets a mark

    EXPECT_EQ(driver->item(toy::yesNo).label, "&yes or no");
    EXPECT_TRUE(driver->item(toy::yesNo).enabled);
    EXPECT_FALSE(driver->item(toy::greyed).enabled);
    EXPECT_FALSE(driver->item(toy::toggle).checked);
    driver->choose(toy::toggle, {});
    EXPECT_TRUE(driver->item(toy::toggle).checked);
    platform().setMenuItem(toy::yesNo, false, false);
    platform().setMenuItem(12345, true, true); // not there: ignored
    EXPECT_FALSE(driver->item(toy::yesNo).enabled);
    driver->choose(toy::otherMenu, {}); // replaces the very menu that it stands in
    EXPECT_EQ(driver->item(toy::yesNo).label, "b");
    EXPECT_EQ(driver->item(toy::warn).id, 0);
}

TEST_P(Contract, PictureIsShownPixelForPixelAndDrawnOnlyWhenDue) {
    for (const auto& [x, y] : {std::pair(0, 0), std::pair(17, 3), std::pair(101, 77)}) {
        EXPECT_EQ(driver->pixel(x, y), toyColor(x, y)) << x << "," << y;
    }
    const int paints = toyState.paints;
    driver->pixel(1, 1);
    EXPECT_EQ(toyState.paints, paints);
    platform().requestPaint();
    driver->pixel(1, 1);
    EXPECT_EQ(toyState.paints, paints + 1);

    const int resizes = toyState.resizes;
    driver->resize({400, 300});
    EXPECT_GT(toyState.resizes, resizes);
    EXPECT_EQ(platform().clientSize().width, 400);
    EXPECT_EQ(platform().clientSize().height, 300);
    EXPECT_EQ(driver->pixel(399, 299), toyColor(399, 299));
}

TEST_P(Contract, BoxesReturnWhatTheUserDid) {
    const std::string target = testing::TempDir() + "contract.OBJ";
    struct {
        int command;
        std::deque<Answer> answers;
        std::string result;
    } const cases[] = {
        {toy::yesNo, {text("yes")}, "yes"},
        {toy::yesNo, {text("no")}, "no"},
        {toy::yesNo, {escape}, "no"},
        {toy::yesNo, {cancel}, "no"},
        {toy::yesNoCancel, {text("yes")}, "yes"},
        {toy::yesNoCancel, {text("no")}, "no"},
        {toy::yesNoCancel, {escape}, "cancel"},
        {toy::yesNoCancel, {cancel}, "cancel"},
        {toy::prompt, {text("a"), text("b & c"), text("0")}, "accept|a|b & c|0"},
        {toy::prompt, {text("a"), escape}, "escape|a|two|1"},
        {toy::prompt, {text("a"), cancel}, "cancel|one|two|1"},
        {toy::saveFile, {text(target.c_str())}, "file " + target},
        {toy::saveFile, {cancel}, "no file"},
        {toy::openFile, {escape}, "no file"},
        {toy::warn, {}, "warned"},
        {toy::busy, {}, "was busy"},
    };
    for (const auto& row : cases) {
        toyState.log.clear();
        driver->choose(row.command, row.answers);
        EXPECT_EQ(count("command " + std::to_string(row.command)), 1);
        EXPECT_EQ(count(row.result), 1) << row.command << testing::PrintToString(toyState.log);
        EXPECT_EQ(count("disturbed"), 0) << row.command;
        // Escape in a prompt is a key that goes down and up.
        const int keys = row.result.starts_with("escape") ? 1 : 0;
        EXPECT_EQ(count("keyDown 27"), keys) << row.command;
        EXPECT_EQ(count("keyUp 27"), keys) << row.command;
    }
}

TEST_P(Contract, LongWorkSeesEscapeAndNothingElseGetsThrough) {
    driver->choose(toy::longWork, {escape});
    driver->choose(toy::longWork, {});
    EXPECT_EQ(count("stopped") + count("done"), 2);
    EXPECT_EQ(toyState.log.back(), "done");
    for (const std::string& line : toyState.log) {
        EXPECT_FALSE(line.starts_with("key") || line.starts_with("mouse")) << line;
    }
    driver->input({EventKind::keyDown, 0, key::escape}); // held since before the command
    driver->choose(toy::longWork, {});
    EXPECT_EQ(toyState.log.back(), "stopped");
}

TEST_P(Contract, CloseIsRefusedOrGranted) {
    driver->input({EventKind::close});
    driver->choose(toy::exit, {});
    EXPECT_TRUE(driver->isOpen());
    EXPECT_EQ(count("close"), 2);
    toyState.mayClose = true;
    driver->choose(toy::exit, {});
    EXPECT_FALSE(driver->isOpen());
    platform().destroyWindow(); // nothing left to destroy
    EXPECT_EQ(count("destroy"), 1);
}

TEST_P(Contract, InputArrives) {
    const Event events[] = {
        {EventKind::keyDown, 0, 'A'},
        {EventKind::keyUp, 0, 'A'},
        {EventKind::keyDown, 0, '1'},
        {EventKind::keyDown, 0, key::escape},
        {EventKind::keyUp, 0, key::escape},
        {EventKind::mouse, 0, 0, 38, 22, button::left | button::right},
        {EventKind::mouse, 0, 0, 3, 4, button::right},
        {EventKind::drop, 0, 0, 0, 0, 0, {"/tmp/a b.obj", "/tmp/%20[\xC3\xA9].dxf"}},
        {EventKind::deactivate},
        {EventKind::menuOpening},
    };
    for (const Event& event : events) {
        toyState.log.clear();
        driver->input(event);
        EXPECT_EQ(count(describe(event)), 1) << describe(event);
    }
}

INSTANTIATE_TEST_SUITE_P(Batch, Contract, testing::Values(makeBatchDriver));
#ifdef POLYFAB_QT
INSTANTIATE_TEST_SUITE_P(Qt, Contract, testing::Values(makeQtDriver));
#endif

} // namespace
} // namespace polyfab::test
