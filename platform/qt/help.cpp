// SPDX-License-Identifier: GPL-3.0-or-later
// Where the manual lies: beside an installed program, or in the source tree that it was built in.
#include "platform/qt/help.h"

#include "platform/qt/dialogs.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QUrl>

namespace polyfab {
namespace {

/// Seen from the directory of the program file.
constexpr const char* manualPlaces[] = {
    "../share/doc/polyfab/manual.md",
    "docs/manual.md",
    "../docs/manual.md",
    "../../docs/manual.md",
};

QString findManual() {
    const QDir program(QCoreApplication::applicationDirPath());
    for (const char* const place : manualPlaces) {
        const QFileInfo file(program, QString::fromLatin1(place));
        if (file.isFile()) return file.canonicalFilePath();
    }
    return {};
}

} // namespace

void showManual(QWidget* owner) {
    const QString manual = findManual();
    if (manual.isEmpty()) {
        showMessage(owner, "help", "the manual (docs/manual.md) is not installed", Icon::none);
    } else if (!QDesktopServices::openUrl(QUrl::fromLocalFile(manual))) {
        showMessage(owner, "help", "the manual is " + manual.toStdString(), Icon::none);
    }
}

} // namespace polyfab
