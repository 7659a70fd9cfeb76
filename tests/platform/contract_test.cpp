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
    driver->choose(toy::title, {});
    EXPECT_EQ(platform().title(), "polyfab [*] [cow.obj] ");
    EXPECT_FALSE(driver->item(toy::title).checked); // only the program sets a mark

    EXPECT_EQ(driver->item(toy::yesNo).label, "&yes or no");
    EXPECT_TRUE(driver->item(toy::yesNo).enabled);
    EXPECT_FALSE(driver->item(toy::greyed).enabled);
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
    EXPECT_EQ(driver->pixel(101, 77), toyColor(101, 77));
    const int paints = toyState.paints;
    driver->pixel(1, 1);
    EXPECT_EQ(toyState.paints, paints);
    platform().requestPaint();
    driver->pixel(1, 1);
    EXPECT_EQ(toyState.paints, paints + 1);
    const int resizes = toyState.resizes;
    driver->resize({400, 300});
    EXPECT_GT(toyState.resizes, resizes);
    const Size size = platform().clientSize();
    EXPECT_EQ(std::pair(size.width, size.height), std::pair(400, 300));
    EXPECT_EQ(driver->pixel(399, 299), toyColor(399, 299));
}

TEST_P(Contract, TheClipboardGivesBackThePictureThatItGot) {
    const Bitmap picture{3, 2, {0xFF000000, 0xFFFF0000, 0xFF00FF00, 0xFF0000FF, 0xFF123456, ~0U}};
    platform().copyToClipboard(picture);
    const std::optional<Bitmap> found = platform().clipboardBitmap();
    ASSERT_TRUE(found);
    EXPECT_EQ(found->width, 3);
    EXPECT_EQ(found->pixels, picture.pixels);
}

TEST_P(Contract, TheStatusLineStandsBelowTheClientArea) {
    driver->resize({400, 300});
    const auto says = [&](const char* left) {
        const auto line = driver->statusLine();
        return line && line->left == left && line->right == "right";
    };
    driver->choose(toy::status, {});
    EXPECT_TRUE(says("<b>left"));
    driver->choose(toy::note, {});
    EXPECT_TRUE(says("done & noted"));
    EXPECT_EQ(driver->pixel(399, 299), toyColor(399, 299));
    driver->choose(toy::hideStatus, {});
    EXPECT_FALSE(driver->statusLine());
}

TEST_P(Contract, BoxesReturnWhatTheUserDid) {
    const std::string target = testing::TempDir() + "contract.OBJ";
    struct {
        int command;
        std::deque<Answer> answers;
        std::string result;
    } const cases[] = {
        {toy::yesNo, {text("yes")}, "yes"},
        {toy::yesNo, {cancel}, "no"},
        {toy::yesNoCancel, {text("no")}, "no"},
        {toy::yesNoCancel, {cancel}, "cancel"},
        {toy::prompt, {text("a"), text("b & c"), text("0")}, "accept|a|b & c|0"},
        {toy::prompt, {text("a"), escape}, "escape|a|two|1"},
        {toy::prompt, {text("a"), cancel}, "cancel|one|two|1"},
        {toy::preview, {text("a"), text("b"), text("0")}, "changed|a|two|1"},
        {toy::preview, {text("a"), text("b"), cancel}, "cancel|one|two|1"},
        {toy::saveFile, {text(target.c_str())}, "file " + target},
        {toy::saveFile, {cancel}, "no file"},
        {toy::openFile, {escape}, "no file"},
        {toy::warn, {}, "command " + std::to_string(toy::warn)},
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
    constexpr int ctrl = key::ctrl;
    const struct {
        std::vector<Event> before, during, after;
        const char* result;
        const char* told = "";
    } cases[] = {
        {{escapeDown}, {}, {escapeUp}, "stopped"},
        {{}, {escapeDown}, {escapeUp}, "stopped"},
        {{escapeDown}, {escapeUp}, {}, "stopped"},
        {{escapeDown, {EventKind::menuOpening}}, {}, {escapeUp}, "done"},
        {{escapeDown, {EventKind::deactivate}}, {}, {escapeUp}, "done"},
        // A key that went down also goes up.
        {{{EventKind::keyDown, 0, ctrl}}, {{EventKind::keyUp, 0, ctrl}}, {}, "done", "keyUp 17"},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(&row - cases);
        for (const Event& event : row.before) driver->input(event);
        toyState.log.clear();
        driver->work(row.during);
        EXPECT_EQ(count(row.result), 1);
        for (const std::string& line : toyState.log) {
            EXPECT_FALSE(line.starts_with("keyDown") || line.starts_with("mouse")) << line;
        }
        EXPECT_TRUE(*row.told == '\0' || count(row.told) == 1);
        for (const Event& event : row.after) driver->input(event);
        driver->work({});
        EXPECT_EQ(toyState.log.back(), "done");
    }
    // An Escape that closed a box stops nothing.
    driver->choose(toy::prompt, {text("a"), escape});
    driver->work({});
    EXPECT_EQ(toyState.log.back(), "done");
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
        {EventKind::mouse, 0, 0, 38, 22, button::left | button::right},
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

TEST_P(Contract, TextFillsItsLineInItsColor) {
    for (const int height : {8, 40}) {
        Bitmap picture = whitePicture(600, 100);
        const Font font{height, 400};
        const int width = platform().textWidth("Hygiene|", font);
        platform().drawText(picture, 20, 30, "Hygiene|", font, 0xFFFF8001);
        int left = 600, top = 100, right = 0, bottom = 0;
        for (int i = 0; i < 600 * 100; ++i) {
            if (picture.pixels[std::size_t(i)] == white) continue;
            left = std::min(left, i % 600);
            right = std::max(right, i % 600);
            top = std::min(top, i / 600);
            bottom = i / 600;
        }
        EXPECT_NEAR(left, 20, 1 + height / 8) << height;
        EXPECT_NEAR(right, 20 + width, 2 + height / 4) << height;
        EXPECT_GE(top, 30) << height;
        EXPECT_LE(bottom, 30 + height) << height;
        EXPECT_GE(bottom - top, height * 2 / 3 - 1) << height;
        if (height < 40) continue; // thin lines cover no pixel wholly
        EXPECT_EQ(*std::min_element(picture.pixels.begin(), picture.pixels.end()), 0xFFFF8001);
    }
}

TEST_P(Contract, TextIsCutOffAtThePicturesSides) {
    const Font font{20, 400};
    const char* const shown = "Wg\xC3\xA9y";
    Bitmap whole = whitePicture(200, 100);
    platform().drawText(whole, 50, 40, shown, font, 0xFF000000);
    const int right = 50 + platform().textWidth(shown, font);
    // The picture as a window of 30 x 12 pixels on the whole, at places that cut each side off.
    for (const auto& [x, y] :
         {std::pair(55, 46), std::pair(40, 36), std::pair(right - 15, 52), std::pair(10, 44),
          std::pair(right + 10, 44), std::pair(50, 10), std::pair(50, 70)}) {
        Bitmap part = whitePicture(30, 12), expected = part;
        platform().drawText(part, 50 - x, 40 - y, shown, font, 0xFF000000);
        for (int i = 0; i < 30 * 12; ++i) {
            expected.pixels[std::size_t(i)] =
                whole.pixels[std::size_t((y + i / 30) * 200 + x + i % 30)];
        }
        EXPECT_EQ(part.pixels, expected.pixels) << x << "," << y;
    }
}

TEST_P(Contract, TextIsMeasured) {
    const auto width = [](const std::string& text, int height = 16) {
        return platform().textWidth(text, {height, 400});
    };
    /// How dark such a text is, in all.
    const auto ink = [](const std::string& text, Font font) {
        Bitmap picture = whitePicture(300, 40);
        platform().drawText(picture, 0, 0, text, font, 0xFF000000);
        std::uint64_t sum = 0;
        for (const std::uint32_t pixel : picture.pixels) sum += (white - pixel) & 0xFF;
        return sum;
    };
    EXPECT_GT(width("WW"), width("ii")); // proportional
    EXPECT_GT(width("name", 32), width("name", 16));
    EXPECT_EQ(width("a\xFFz"), width("a\xEF\xBF\xBDz"));
    EXPECT_EQ(width("") + width("name", 0) + width("name", -5), 0);
    EXPECT_GT(ink("name", {32, 700}), ink("name", {32, 200}) * 5 / 4);
    for (const char* const bad : {"\xC3", "\xF8\x88", "\xED\xA0\x80"}) {
        EXPECT_GT(ink(bad, {32, 400}), 0U);
    }
    EXPECT_EQ(ink("name", {0, 400}), 0U);
    Bitmap empty;
    platform().drawText(empty, 0, 0, "name", {32, 400}, 0xFF000000);
}

INSTANTIATE_TEST_SUITE_P(Batch, Contract, testing::Values(makeBatchDriver));
#ifdef POLYFAB_QT
INSTANTIATE_TEST_SUITE_P(Qt, Contract, testing::Values(makeQtDriver));
#endif

} // namespace
} // namespace polyfab::test
