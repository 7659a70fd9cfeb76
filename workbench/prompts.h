// SPDX-License-Identifier: GPL-3.0-or-later
// The questions of the editor: one to three text fields, numbers, axes, and the group and material
// of new faces. All of them are modal and share one set of text buffers, in which the answers stay
// until the next prompt.
#pragma once

#include "mesh/mesh.h"
#include "platform/platform.h"

#include <string>
#include <string_view>

namespace polyfab {

inline constexpr int promptSize = 128; ///< bytes of a text buffer, its NUL included

struct PromptState {
    char question[3][promptSize];
    char answer[3][promptSize];
    bool cancelled; ///< the last prompt was left by its cancel button or the Escape key
    bool accepted;  ///< the last askGroupMaterial was accepted
};

inline PromptState prompts;

void resetPrompts();

/// Runs any prompt of the editor. Its keys enter the key-state table and do nothing else.
DialogResult runDialog(Dialog& dialog);

/// As much of the text as a text buffer holds, without half a character at its end.
[[nodiscard]] std::string_view fittingAnswer(std::string_view text);

/// One field. 1 when the user accepted and the answer differs from the question, otherwise 0. The
/// answer is in prompts.answer[0]; after cancel that is the default. Longer texts are cut.
int askText(const std::string& question, const std::string& defaultAnswer);

/// Two and three fields; the first decides what is returned.
int askText2(const std::string& question1, const std::string& default1,
             const std::string& question2, const std::string& default2);
int askText3(const std::string& question1, const std::string& default1,
             const std::string& question2, const std::string& default2,
             const std::string& question3, const std::string& default3);

/// Reads the number that the text begins with, as C does (blanks before it, "inf", "0x10"), its
/// decimal point a point in every locale. False, with `number` as it was, when there is none.
bool parseNumber(const char* text, double& number);

/// The same of a text in which nothing but blanks follows the number.
bool parseOnlyNumber(const char* text, double& number);

/// Asks until the answer begins with a number. False when that was the default, after cancel.
bool askNumberOrCancel(const std::string& question, const std::string& defaultAnswer,
                       double& number);

/// The same for commands that go on with the default then, which tellWhatCancelDid tells.
double askNumber(const std::string& question, const std::string& defaultAnswer);

/// A note after a command of the numbers that it went on with, if any. `isStep`: it did something
/// that undo takes back.
void tellWhatCancelDid(bool isStep);

/// 1 when the user accepted and every answer begins with a number, which is then stored. 0 when
/// cancelled, or from the first answer on that is no number: those before it are stored.
int askNumbers2(const std::string& question1, const std::string& default1, double& number1,
                const std::string& question2, const std::string& default2, double& number2);
int askNumbers3(const std::string& question1, const std::string& default1, double& number1,
                const std::string& question2, const std::string& default2, double& number2,
                const std::string& question3, const std::string& default3, double& number3);

/// Asks until two different letters are given, and returns the second * 256 + the first, both as
/// capitals. It cannot be cancelled.
int askAxisPair(const std::string& question);

/// 1 yes, 0 no, -1 cancel.
int askYesNoCancel(const std::string& text, const std::string& caption = "");

/// Asks for the group and the material of new faces and makes them the mesh's current ones. True
/// unless cancelled. Escape accepts.
bool askGroupMaterial(Mesh& mesh);

} // namespace polyfab
