// SPDX-License-Identifier: GPL-3.0-or-later
// The modal boxes. All texts are shown as they are: no markup, no placeholders.
#pragma once

#include "platform/platform.h"

#include <QString>
#include <optional>
#include <string>

class QWidget;

namespace polyfab {

class Folders;

/// As a window title that shows this very text ("[*]" stands for something else there).
QString titleText(const std::string& text);

void showMessage(QWidget* owner, const std::string& title, const std::string& text, Icon icon);

/// Escape and the close box mean cancel, or no where there is no cancel.
Choice askQuestion(QWidget* owner, const std::string& title, const std::string& text,
                   Buttons buttons, Choice marked);

/// Starts in the folder of the current file, if there is one, or else in that of its kind, which
/// becomes that of the file chosen.
std::optional<std::string> askFile(QWidget* owner, const FileRequest& request, Folders& folders);

/// Under this title, whatever the dialog's own is.
DialogResult askFields(QWidget* owner, const std::string& title, Dialog& dialog);

} // namespace polyfab
