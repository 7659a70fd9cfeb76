// SPDX-License-Identifier: GPL-3.0-or-later
// The rules of the prompts: what they return, what stays in the buffers, when they ask again.
#include "editor/prompts.h"
#include "editor/state.h"
#include "tests/support/mesh_fixture.h"

#include <clocale>
#include <cmath>
#include <limits>

namespace polyfab::test {
namespace {

constexpr DialogResult accept = DialogResult::accept, cancel = DialogResult::cancel,
                       escape = DialogResult::escape;

std::string repeated(const std::string& text, int times) {
    std::string all;
    while (times-- > 0) all += text;
    return all;
}

class Prompts : public MeshTest {
  protected:
    Prompts() { reset(); }
    ~Prompts() override { reset(); }
    void reset() {
        resetPrompts();
        resetEditorState();
        shown.log.clear();
        shown.dialogAnswers.clear();
        shown.dialogResults.clear();
        shown.paintRequests = 0;
    }
    void user(const std::vector<std::string>& texts, DialogResult result = accept) {
        shown.dialogAnswers.push_back(texts);
        shown.dialogResults.push_back(result);
    }
};

TEST_F(Prompts, TextIsAnsweredWhenItDiffersFromTheQuestion) {
    const std::string e = "\xC3\xA9"; // two bytes
    struct {
        std::string question, preset, typed;
        DialogResult result;
        int returned;
        std::string answer;
    } const cases[] = {
        {"name?", "old", "new", accept, 1, "new"},
        {"name?", "old", "old", accept, 1, "old"},
        {"name?", "old", "", accept, 1, ""},
        {"name?", "old", "name?", accept, 0, "name?"},
        {"name?", "old", "new", cancel, 0, "old"},
        {"name?", "old", "new", escape, 0, "old"},
        {"name?", "old", std::string(127, 'x'), accept, 1, std::string(127, 'x')},
        {"name?", "old", std::string(256, 'x'), accept, 1, std::string(127, 'x')},
        {"name?", "old", repeated(e, 64), accept, 1, repeated(e, 63)},
        {"name?", repeated("\xF0\x9F\x98\x80", 32), "", cancel, 0,
         repeated("\xF0\x9F\x98\x80", 31)},
        {"name?", "old", std::string(200, '\x80'), accept, 1, std::string(123, '\x80')},
        // Both are cut to the same 127 bytes, and those are compared.
        {std::string(130, 'x'), "old", std::string(140, 'x'), accept, 0, std::string(127, 'x')},
    };
    for (const auto& row : cases) {
        reset();
        user({row.typed}, row.result);
        EXPECT_EQ(askText(row.question, row.preset), row.returned) << row.typed;
        EXPECT_EQ(prompts.answer[0], row.answer) << row.typed;
        EXPECT_EQ(prompts.question[0], row.question.substr(0, 127));
        EXPECT_EQ(prompts.cancelled, row.result != accept);
        EXPECT_EQ(shown.paintRequests, 1);
    }
}

std::vector<std::string> answers(int count) { return {prompts.answer, prompts.answer + count}; }

TEST_F(Prompts, TheFirstOfSeveralFieldsDecides) {
    using Texts = std::vector<std::string>;
    struct {
        Texts typed;
        DialogResult result;
        int returned;
        Texts answers;
    } const cases[] = {
        {{"1", "2", "3"}, accept, 1, {"1", "2", "3"}},
        {{"q1", "2", "3"}, accept, 0, {"q1", "2", "3"}},
        {{"1", "q2", "q3"}, accept, 1, {"1", "q2", "q3"}},
        {{"1", "2", "3"}, cancel, 0, {"d1", "d2", "d3"}},
        {{"1", "2", "3"}, escape, 0, {"d1", "d2", "d3"}},
    };
    for (const auto& row : cases) {
        reset();
        user(row.typed, row.result);
        EXPECT_EQ(askText3("q1", "d1", "q2", "d2", "q3", "d3"), row.returned);
        EXPECT_EQ(answers(3), row.answers);
        user(row.typed, row.result);
        EXPECT_EQ(askText2("q1", "d1", "q2", "d2"), row.returned);
        EXPECT_EQ(answers(2), Texts(row.answers.begin(), row.answers.begin() + 2));
        EXPECT_EQ(shown.log,
                  (Texts{"dialog|ASKDB3|q1=d1", "dialog|ASKDB3|q2=d2", "dialog|ASKDB3|q3=d3",
                         "dialog|ASKDB2|q1=d1", "dialog|ASKDB2|q2=d2"}));
    }
}

TEST_F(Prompts, NumbersAreAskedForUntilOneCanBeRead) {
    constexpr double inf = std::numeric_limits<double>::infinity();
    const std::string before = std::setlocale(LC_ALL, nullptr);
    std::setlocale(LC_ALL, "de_DE.UTF-8"); // decimal commas, where it is installed
    struct {
        std::vector<std::string> typed;
        DialogResult last;
        double number;
    } const cases[] = {
        {{"2.5"}, accept, 2.5},        {{"\t -1e-3 mm"}, accept, -1e-3},
        {{".5."}, accept, .5},         {{"0x10"}, accept, 16},
        {{"-Infinity"}, accept, -inf}, {{"1e999"}, accept, inf},
        {{"2,5"}, accept, 2},          {{"", "mm", "+-1", ".", "e5", "3"}, accept, 3},
        {{"4", ""}, cancel, 4}, // the second is not asked for
        {{"x", "5"}, cancel, 7.25},    {{"x", "5"}, escape, 7.25},
    };
    for (const auto& row : cases) {
        reset();
        for (const std::string& text : row.typed) user({text});
        shown.dialogResults.back() = row.last;
        EXPECT_EQ(askNumber("how far?", "7.25"), row.number) << row.typed.front();
    }
    reset();
    user({"nan"});
    EXPECT_TRUE(std::isnan(askNumber("how far?", "1")));
    user({"8"}, cancel);
    user({"9"});
    EXPECT_EQ(askNumber("how far?", "no number to fall back on"), 9);
    std::setlocale(LC_ALL, before.c_str());
}

TEST_F(Prompts, SeveralNumbersMustAllBeRead) {
    struct {
        std::vector<std::string> typed;
        DialogResult result;
        int returned;
        std::vector<double> numbers;
    } const cases[] = {
        {{"1", "2", "3"}, accept, 1, {1, 2, 3}},
        {{"0", "2", "3"}, accept, 1, {0, 2, 3}}, // the answer may be the text of the question
        {{"1", "x", "3"}, accept, 0, {1, -1, -1}},
        {{"", "2", "3"}, accept, 0, {-1, -1, -1}},
        {{"1", "2", "x"}, accept, 0, {1, 2, -1}},
        {{"1", "2", "3"}, cancel, 0, {-1, -1, -1}},
        {{"1", "2", "3"}, escape, 0, {-1, -1, -1}},
    };
    for (const auto& row : cases) {
        reset();
        std::vector<double> n(3, -1);
        user(row.typed, row.result);
        EXPECT_EQ(askNumbers3("0", "4", n[0], "b", "5", n[1], "c", "6", n[2]), row.returned);
        EXPECT_EQ(n, row.numbers);
        n = {-1, -1, row.numbers[2]};
        user(row.typed, row.result);
        const bool two = row.returned == 1 || row.typed[2] == "x";
        EXPECT_EQ(askNumbers2("0", "4", n[0], "b", "5", n[1]), two);
        EXPECT_EQ(n, row.numbers);
    }
}

TEST_F(Prompts, AnAxisPairIsTwoDifferentLetters) {
    struct {
        std::vector<std::string> typed;
        DialogResult first;
        int pair;
    } const cases[] = {
        {{"zx"}, accept, 'X' * 256 + 'Z'},
        {{"XY and more"}, accept, 'Y' * 256 + 'X'},
        {{"ab"}, accept, 'B' * 256 + 'A'},
        {{"xx", "xX", "", "yz"}, accept, 'Z' * 256 + 'Y'},
        {{"xy", "yz"}, cancel, 'Z' * 256 + 'Y'},
        {{"xy", "yz"}, escape, 'Z' * 256 + 'Y'},
        {{"which axes?", "yz"}, accept, 'Z' * 256 + 'Y'}, // unchanged
    };
    for (const auto& row : cases) {
        reset();
        for (const std::string& text : row.typed) user({text});
        shown.dialogResults.front() = row.first;
        EXPECT_EQ(askAxisPair("which axes?"), row.pair) << row.typed.front();
        EXPECT_EQ(shown.log.size(), row.typed.size());
    }
}

TEST_F(Prompts, YesNoAndCancelAreOneZeroAndMinusOne) {
    shown.choices = {Choice::yes, Choice::no, Choice::cancel};
    EXPECT_EQ(askYesNoCancel("weld?"), 1);
    EXPECT_EQ(askYesNoCancel("weld?", "caption"), 0);
    EXPECT_EQ(askYesNoCancel("weld?"), -1);
    EXPECT_EQ(shown.log, (std::vector<std::string>{"question||weld?", "question|caption|weld?",
                                                   "question||weld?"}));
}

TEST_F(Prompts, GroupAndMaterialBecomeTheCurrentOnes) {
    OB->addGroup("walls");
    OB->addMaterial(0x123456, "brick");
    struct {
        std::vector<std::string> typed;
        DialogResult result;
        int group, material;
        bool accepted;
    } const cases[] = {
        {{"roof", "tiles"}, accept, 1, 1, true},
        {{"walls", "tiles"}, escape, 0, 1, true}, // Escape keeps what was edited
        {{"roof", "brick"}, cancel, 0, 1, false},
        {{"walls ", "brick"}, accept, 0, 0, true},
    };
    for (const auto& row : cases) {
        user(row.typed, row.result);
        EXPECT_EQ(askGroupMaterial(*OB), row.accepted);
        EXPECT_EQ(prompts.accepted, row.accepted);
        EXPECT_EQ(OB->curgroup, row.group);
        EXPECT_EQ(OB->curmat, row.material);
    }
    EXPECT_EQ(OB->ng, 2);
    EXPECT_EQ(OB->nmat, 2);
    EXPECT_EQ(OB->materials[0].color, 0x123456u);
    EXPECT_EQ(OB->materials[1].color, defaultColor);
    EXPECT_EQ(shown.log[0], "dialog|GRMAT|group=walls");
    EXPECT_EQ(shown.log[3], "dialog|GRMAT|material=tiles");
}

TEST_F(Prompts, KeysEnterTheKeyTableOnly) {
    class Typing : public FakePlatform {
      public:
        std::vector<int> down;
        DialogResult dialog(Dialog& dialog) override {
            dialog.onKey({EventKind::keyDown, 0, 'C'});
            dialog.onKey({EventKind::keyDown, 0, 255});
            down = {keyIsDown('C'), keyIsDown(255)};
            dialog.onKey({EventKind::keyUp, 0, 'C'});
            return DialogResult::accept;
        }
    } typing;
    askText("name?", "a");
    EXPECT_EQ(typing.down, (std::vector<int>{1, 1}));
    EXPECT_FALSE(keyIsDown('C'));
    EXPECT_TRUE(keyIsDown(255)); // a backend tells of its release, too
    EXPECT_TRUE(typing.log.empty());
}

} // namespace
} // namespace polyfab::test
