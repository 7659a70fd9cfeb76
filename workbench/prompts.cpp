// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/prompts.h"

#include "io/utf8.h"
#include "workbench/notes.h"
#include "workbench/state.h"

#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <locale.h>
#include <string_view>
#include <utility>

namespace polyfab {
namespace {

/// The numbers that commands went on with after cancel, and that no note has told yet.
std::string wentOnWith;

void store(char (&buffer)[promptSize], std::string_view text) {
    const std::string_view kept = fittingAnswer(text);
    std::memset(buffer, 0, sizeof buffer);
    kept.copy(buffer, kept.size());
}

struct Field {
    const std::string& question;
    const std::string& answer;
};

/// Asks for one to three texts through the buffers.
int ask(const char* name, std::initializer_list<Field> fields) {
    Dialog dialog{name, "", {}};
    std::size_t i = 0;
    for (const auto& [question, answer] : fields) {
        store(prompts.question[i], question);
        store(prompts.answer[i], answer);
        dialog.fields.push_back({prompts.question[i], prompts.answer[i]});
        ++i;
    }
    prompts.cancelled = runDialog(dialog) != DialogResult::accept;
    if (prompts.cancelled) return 0;
    for (i = 0; i < fields.size(); ++i) store(prompts.answer[i], dialog.fields[i].text);
    return std::strcmp(prompts.question[0], prompts.answer[0]) != 0;
}

int parseAnswers(std::initializer_list<double*> numbers) {
    if (prompts.cancelled) return 0;
    std::size_t i = 0;
    for (double* const number : numbers) {
        if (!parseNumber(prompts.answer[i++], *number)) return 0;
    }
    return 1;
}

/// Where the number ends that the text begins with: where the text begins when there is none.
char* readNumber(const char* text, double& number) {
    static const locale_t plain = newlocale(LC_ALL_MASK, "C", locale_t());
    char* end = nullptr;
    number = strtod_l(text, &end, plain);
    return end;
}

/// A letter as its capital; other characters become some code of that range too.
int folded(char letter) { return (letter & 31) + 64; }

} // namespace

std::string_view fittingAnswer(std::string_view text) {
    constexpr std::size_t most = promptSize - 1;
    constexpr std::size_t longestCharacter = 4;
    if (text.size() <= most) return text;
    std::size_t end = most;
    while (end > most - longestCharacter && continuesCharacter(text[end])) --end;
    return text.substr(0, end);
}

void resetPrompts() {
    prompts = {};
    wentOnWith.clear();
}

DialogResult runDialog(Dialog& dialog) {
    dialog.onKey = noteKey;
    prompts.cancelled = false;
    const DialogResult result = platform().dialog(dialog);
    prompts.cancelled = result == DialogResult::cancel;
    platform().requestPaint();
    return result;
}

bool parseNumber(const char* text, double& number) {
    double value = 0;
    if (readNumber(text, value) == text) return false;
    number = value;
    return true;
}

bool parseOnlyNumber(const char* text, double& number) {
    double value = 0;
    const char* const end = readNumber(text, value);
    if (end == text || end[std::strspn(end, " \t")] != '\0') return false;
    number = value;
    return true;
}

int askText(const std::string& question, const std::string& defaultAnswer) {
    return ask("ASKDB", {{question, defaultAnswer}});
}

int askText2(const std::string& question1, const std::string& default1,
             const std::string& question2, const std::string& default2) {
    return ask("ASKDB2", {{question1, default1}, {question2, default2}});
}

int askText3(const std::string& question1, const std::string& default1,
             const std::string& question2, const std::string& default2,
             const std::string& question3, const std::string& default3) {
    return ask("ASKDB3", {{question1, default1}, {question2, default2}, {question3, default3}});
}

bool askNumberOrCancel(const std::string& question, const std::string& defaultAnswer,
                       double& number) {
    do {
        askText(question, defaultAnswer);
    } while (!parseNumber(prompts.answer[0], number));
    return !prompts.cancelled;
}

double askNumber(const std::string& question, const std::string& defaultAnswer) {
    double number = 0;
    if (!askNumberOrCancel(question, defaultAnswer, number)) {
        wentOnWith += (wentOnWith.empty() ? "" : ", ") + defaultAnswer;
    }
    return number;
}

void tellWhatCancelDid(bool isStep) {
    if (wentOnWith.empty()) return;
    note("cancel went on with the suggested " + std::exchange(wentOnWith, "")
         + (isStep ? "; Ctrl+Z takes it back" : ""));
}

int askNumbers2(const std::string& question1, const std::string& default1, double& number1,
                const std::string& question2, const std::string& default2, double& number2) {
    askText2(question1, default1, question2, default2);
    return parseAnswers({&number1, &number2});
}

int askNumbers3(const std::string& question1, const std::string& default1, double& number1,
                const std::string& question2, const std::string& default2, double& number2,
                const std::string& question3, const std::string& default3, double& number3) {
    askText3(question1, default1, question2, default2, question3, default3);
    return parseAnswers({&number1, &number2, &number3});
}

int askAxisPair(const std::string& question) {
    const std::string hint = "(type any of XY YZ ZX YX ZY XZ)(1st horiz, 2nd vert)";
    for (;;) {
        if (!askText(question, hint) || prompts.answer[0] == hint) continue;
        const int first = folded(prompts.answer[0][0]);
        const int second = folded(prompts.answer[0][1]);
        if (first != second) return second * 256 + first;
    }
}

int askYesNoCancel(const std::string& text, const std::string& caption) {
    return static_cast<int>(platform().question(caption, text, Buttons::yesNoCancel));
}

bool askGroupMaterial(Mesh& mesh) {
    prompts.accepted = false;
    Dialog dialog{"GRMAT",
                  "which group and material is this new face to go in??",
                  {{"group", mesh.currentGroupName()}, {"material", mesh.currentMaterialName()}}};
    prompts.accepted = runDialog(dialog) != DialogResult::cancel;
    mesh.curgroup = static_cast<std::int16_t>(mesh.findOrAddGroup(dialog.fields[0].text));
    mesh.curmat =
        static_cast<std::int16_t>(mesh.findOrAddMaterial(defaultColor, dialog.fields[1].text));
    return prompts.accepted;
}

} // namespace polyfab
