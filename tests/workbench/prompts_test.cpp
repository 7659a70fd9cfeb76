// SPDX-License-Identifier: GPL-3.0-or-later
// The rules of the prompts: what they return, what stays in the buffers, when they ask again.
#include "workbench/prompts.h"

#include "tests/support/mesh_fixture.h"
#include "workbench/state.h"

#include <clocale>
#include <limits>

namespace polyfab::test {
namespace {

using Texts = std::vector<std::string>;
constexpr DialogResult accept = DialogResult::accept, cancel = DialogResult::cancel,
                       escape = DialogResult::escape;

class Prompts : public MeshTest {
  protected:
    ~Prompts() override {
        resetPrompts();
        resetWorkbench();
    }
    void user(const Texts& texts, DialogResult result = accept) {
        shown.dialogAnswers.push_back(texts);
        shown.dialogResults.push_back(result);
    }
};

std::string repeated(const std::string& text, int times) {
    std::string all;
    while (times-- > 0) all += text;
    return all;
}

TEST_F(Prompts, TextIsAnsweredWhenItDiffersFromTheQuestion) {
    const std::string x127(127, 'x');
    const auto expect = [&](const std::string& typed, DialogResult result, int returned,
                            const std::string& answer) {
        user({typed}, result);
        shown.paintRequests = 0;
        EXPECT_EQ(askText("name?", "old"), returned) << typed;
        EXPECT_EQ(prompts.answer[0], answer);
        EXPECT_EQ(prompts.cancelled, result != accept);
        EXPECT_EQ(shown.paintRequests, 1);
    };
    expect("old", accept, 1, "old");
    expect("", accept, 1, "");
    expect("name?", accept, 0, "name?");
    expect("new", cancel, 0, "old");
    expect("new", escape, 0, "old");
    expect(x127, accept, 1, x127);
    expect(repeated("\xC3\xA9", 64), accept, 1, repeated("\xC3\xA9", 63));
    expect(std::string(200, '\x80'), accept, 1, std::string(123, '\x80'));
    // Both are cut to the same 127 bytes, and those are compared.
    user({x127 + "x"});
    EXPECT_EQ(askText(x127 + "xxx", repeated("\xF0\x9F\x98\x80", 32)), 0);
    EXPECT_EQ(shown.log.back(), "dialog|ASKDB|" + x127 + "=" + repeated("\xF0\x9F\x98\x80", 31));
}

TEST_F(Prompts, OfSeveralFieldsTheFirstDecidesAndAllNumbersMustBeRead) {
    const auto expect = [&](const Texts& typed, DialogResult result, int text,
                            const std::vector<double>& numbers) { // made of three -1
        for (int i = 0; i < 4; ++i) user(typed, result);
        const Texts kept = result == accept ? typed : Texts{"4", "5", "6"};
        std::vector<double> n(3, -1);
        EXPECT_EQ(askText2("0", "4", "b", "5"), text);
        EXPECT_EQ(prompts.answer[1], kept[1]);
        EXPECT_EQ(askText3("0", "4", "b", "5", "c", "6"), text);
        EXPECT_EQ(Texts(prompts.answer, prompts.answer + 3), kept);
        EXPECT_EQ(askNumbers3("0", "4", n[0], "b", "5", n[1], "c", "6", n[2]), numbers[2] >= 0);
        EXPECT_EQ(n, numbers);
        n = {-1, -1, numbers[2]};
        EXPECT_EQ(askNumbers2("0", "4", n[0], "b", "5", n[1]), numbers[1] >= 0);
        EXPECT_EQ(n, numbers);
    };
    expect({"1", "2", "3"}, accept, 1, {1, 2, 3});
    expect({"0", "2", "3"}, accept, 0, {0, 2, 3}); // the text of the question
    expect({"1", "b", "c"}, accept, 1, {1, -1, -1});
    expect({"1", "2", "x"}, accept, 1, {1, 2, -1});
    expect({"1", "2", "3"}, cancel, 0, {-1, -1, -1});
    expect({"1", "2", "3"}, escape, 0, {-1, -1, -1});
    EXPECT_EQ(shown.log[4], "dialog|ASKDB3|c=6");
    EXPECT_EQ(shown.log.back(), "dialog|ASKDB2|b=5");
}

TEST_F(Prompts, OnlyBlanksMayFollowANumberThatIsAskedForAlone) {
    double number = -1;
    for (const char* text : {"", "30,5", "1/3", "40 50", "1024x768"}) {
        EXPECT_FALSE(parseOnlyNumber(text, number)) << text;
    }
    EXPECT_EQ(number, -1);
    EXPECT_TRUE(parseOnlyNumber(" 30.5 \t", number));
    EXPECT_EQ(number, 30.5);
}

TEST_F(Prompts, AxesAreAskedForUntilTheyAreTwo) {
    const auto expect = [&](const Texts& typed, int answer, DialogResult first = accept) {
        shown.log.clear();
        for (const std::string& text : typed) user({text});
        shown.dialogResults.front() = first;
        EXPECT_EQ(askAxisPair("?"), answer) << typed.front();
        EXPECT_EQ(shown.log.size(), typed.size());
    };
    expect({"zx"}, 'X' * 256 + 'Z');
    expect({"XY and more"}, 'Y' * 256 + 'X');
    expect({"xX", "", "yz"}, 'Z' * 256 + 'Y');
    expect({"xy", "yz"}, 'Z' * 256 + 'Y', cancel);
    expect({"?", "yz"}, 'Z' * 256 + 'Y'); // unchanged
}

TEST_F(Prompts, NumbersHaveADecimalPointAndASoundDefault) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    std::setlocale(LC_ALL, "de_DE.UTF-8"); // decimal commas, where it is installed
    user({"2.5,5"});
    EXPECT_EQ(askNumber("?", "1"), 2.5);
    user({"8"}, cancel);
    user({"9"});
    EXPECT_EQ(askNumber("?", "no number to fall back on"), 9);
    std::setlocale(LC_ALL, before.c_str());
}

TEST_F(Prompts, KeysEnterTheKeyTableOnly) {
    struct : FakePlatform {
        DialogResult dialog(Dialog& dialog) override {
            for (const int code : {int{'A'}, int{'C'}}) dialog.onKey({EventKind::keyDown, 0, code});
            dialog.onKey({EventKind::keyUp, 0, 'C'}); // which elsewhere refreshes the title
            return DialogResult::accept;
        }
    } typing;
    askText("name?", "a");
    EXPECT_TRUE(keyIsDown('A') && !keyIsDown('C'));
    EXPECT_TRUE(typing.log.empty());
}

} // namespace
} // namespace polyfab::test
