// SPDX-License-Identifier: GPL-3.0-or-later
// What every backend keeps to, tried on each of them through the toy program.
#include "tests/platform/driver.h"
#include "tests/platform/toy_program.h"

#include <algorithm>
#include <array>
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
        // Escape in a prompt is a key that goes down and up there, and nowhere else.
        const int keys = row.result.starts_with("escape") ? 1 : 0;
        EXPECT_EQ(count("dialog keyDown 27"), keys) << row.command;
        EXPECT_EQ(count("dialog keyUp 27"), keys) << row.command;
        EXPECT_EQ(count("keyDown 27") + count("keyUp 27"), 0) << row.command;
    }
}

const Event escapeDown{EventKind::keyDown, 0, key::escape};
const Event escapeUp{EventKind::keyUp, 0, key::escape};

TEST_P(Contract, LongWorkSeesEscapeAndNothingElseGetsThrough) {
    driver->work({escapeDown, escapeUp});
    driver->work({});
    EXPECT_EQ(count("stopped") + count("done"), 2);
    EXPECT_EQ(toyState.log.back(), "done");
    for (const std::string& line : toyState.log) {
        EXPECT_FALSE(line.starts_with("keyDown") || line.starts_with("mouse")) << line;
    }
    driver->input(escapeDown); // held since before the command
    driver->work({});
    EXPECT_EQ(toyState.log.back(), "stopped");
}

TEST_P(Contract, EscapeCountsAsDownNoLongerThanItIs) {
    struct {
        const char* what;
        std::vector<Event> before, during, after;
        const char* first;
    } const cases[] = {
        {"released after the work", {}, {escapeDown}, {escapeUp}, "stopped"},
        {"released during the work", {escapeDown}, {escapeUp}, {}, "stopped"},
        {"a menu opens", {escapeDown, {EventKind::menuOpening}}, {}, {}, "done"},
        {"the window is left", {escapeDown, {EventKind::deactivate}}, {}, {}, "done"},
    };
    for (const auto& row : cases) {
        toyState.log.clear();
        for (const Event& event : row.before) driver->input(event);
        driver->work(row.during);
        EXPECT_EQ(count(row.first), 1) << row.what;
        for (const Event& event : row.after) driver->input(event);
        const auto done = count("done");
        driver->work({});
        EXPECT_EQ(count("done"), done + 1) << row.what;
        driver->input(escapeUp);
    }
}

TEST_P(Contract, AnEscapeThatClosedABoxStopsNothing) {
    driver->choose(toy::prompt, {text("a"), escape});
    driver->work({});
    EXPECT_EQ(count("done"), 1);
}

TEST_P(Contract, AKeyThatWentDownAlsoGoesUp) {
    driver->input({EventKind::keyDown, 0, key::ctrl});
    driver->work({{EventKind::keyUp, 0, key::ctrl}});
    EXPECT_EQ(count("keyUp 17"), 1);
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
        {EventKind::mouse, 0, 0, 3, 4, button::middle},
        {EventKind::wheel, 0, 0, 3, 4, 0, {}, -2},
        {EventKind::wheel, 0, 0, 3, 4, 0, {}, 0.25},
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

constexpr std::uint32_t white = 0xFFFFFFFF;

Bitmap whitePicture(int width, int height) {
    return {width, height, std::vector<std::uint32_t>(std::size_t(width * height), white)};
}

/// The smallest rectangle around what is not white: left, top, right and bottom, the last two just
/// beyond it.
std::array<int, 4> inked(const Bitmap& picture) {
    std::array<int, 4> box{picture.width, picture.height, 0, 0};
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            if (picture.pixels[std::size_t(y * picture.width + x)] == white) continue;
            box = {std::min(box[0], x), std::min(box[1], y), std::max(box[2], x + 1),
                   std::max(box[3], y + 1)};
        }
    }
    return box;
}

/// How dark the picture is, in all.
std::uint64_t ink(const Bitmap& picture) {
    std::uint64_t sum = 0;
    for (const std::uint32_t pixel : picture.pixels) sum += (white - pixel) & 0xFF;
    return sum;
}

TEST_P(Contract, TextFillsItsLineInItsColor) {
    for (const int height : {8, 15, 40}) {
        Bitmap picture = whitePicture(600, 100);
        const Font font{height, 400};
        const int width = platform().textWidth("Hygiene|", font);
        platform().drawText(picture, 20, 30, "Hygiene|", font, 0xFFFF8001);
        const auto [left, top, right, bottom] = inked(picture);
        EXPECT_NEAR(left, 20, 1 + height / 8) << height;
        EXPECT_NEAR(right, 20 + width, 1 + height / 4) << height;
        EXPECT_GE(top, 30) << height;
        EXPECT_LE(bottom, 30 + height + 1) << height;
        EXPECT_GE(bottom - top, height * 2 / 3) << height;
        if (height < 40) continue; // thin lines cover no pixel wholly
        EXPECT_NE(std::find(picture.pixels.begin(), picture.pixels.end(), 0xFFFF8001),
                  picture.pixels.end());
        for (const std::uint32_t pixel : picture.pixels) ASSERT_GE(pixel, 0xFFFF8001);
    }
}

TEST_P(Contract, TextIsCutOffAtThePicturesSides) {
    const Font font{20, 400};
    Bitmap whole = whitePicture(200, 100);
    platform().drawText(whole, 50, 40, "Wg\xC3\xA9y", font, 0xFF000000);
    const auto [left, top, right, bottom] = inked(whole);
    // The picture as a window of 30 x 12 pixels on the whole, at places that cut each side off.
    for (const auto& [x, y] :
         {std::pair(left + 5, top + 3), std::pair(left - 10, top - 4),
          std::pair(right - 15, bottom - 8), std::pair(left - 10, bottom - 8),
          std::pair(right - 15, top - 4), std::pair(left - 40, top), std::pair(right + 10, top),
          std::pair(left, top - 30), std::pair(left, bottom + 30)}) {
        Bitmap part = whitePicture(30, 12);
        platform().drawText(part, 50 - x, 40 - y, "Wg\xC3\xA9y", font, 0xFF000000);
        Bitmap expected = whitePicture(30, 12);
        for (int row = std::max(0, -y); row < std::min(12, 100 - y); ++row) {
            for (int column = std::max(0, -x); column < std::min(30, 200 - x); ++column) {
                expected.pixels[std::size_t(row * 30 + column)] =
                    whole.pixels[std::size_t((y + row) * 200 + x + column)];
            }
        }
        EXPECT_EQ(part.pixels, expected.pixels) << x << "," << y;
    }
}

TEST_P(Contract, TextIsMeasured) {
    const auto width = [](const std::string& text, int height = 16, int weight = 400) {
        return platform().textWidth(text, {height, weight});
    };
    EXPECT_EQ(width(""), 0);
    EXPECT_GT(width("i"), 0);
    EXPECT_GT(width("iW"), width("i"));
    EXPECT_GT(width("WW"), width("ii")); // proportional
    EXPECT_GT(width("name", 32), width("name", 16));
    EXPECT_EQ(width("a\xFFz"), width("a\xEF\xBF\xBDz"));
    EXPECT_EQ(width("\xC3"), width("\xEF\xBF\xBD"));
    EXPECT_EQ(width("name", 0) + width("name", -5), 0);

    Bitmap thin = whitePicture(300, 40), bold = thin, bad = thin, empty;
    platform().drawText(thin, 0, 0, "name", {32, 200}, 0xFF000000);
    platform().drawText(bold, 0, 0, "name", {32, 700}, 0xFF000000);
    EXPECT_GT(ink(bold), ink(thin) * 5 / 4);
    for (const char* const text : {"\xC3", "\x80", "\xF8\x88", "\xED\xA0\x80", "\xC0\xAF"}) {
        bad = whitePicture(300, 40);
        platform().drawText(bad, 0, 0, text, {32, 400}, 0xFF000000);
        EXPECT_GT(ink(bad), 0U);
    }
    platform().drawText(empty, 0, 0, "name", {32, 400}, 0xFF000000);
    platform().drawText(bad = whitePicture(9, 9), 0, 0, "name", {0, 400}, 0xFF000000);
    EXPECT_EQ(ink(bad), 0U);
}

INSTANTIATE_TEST_SUITE_P(Batch, Contract, testing::Values(makeBatchDriver));
#ifdef POLYFAB_QT
INSTANTIATE_TEST_SUITE_P(Qt, Contract, testing::Values(makeQtDriver));
#endif

} // namespace
} // namespace polyfab::test
