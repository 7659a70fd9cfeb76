// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/qt/folders.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QSettings>

namespace polyfab {
namespace {

/// As a key of an INI file: no letters that mean something there.
QString keyOf(const std::string& kind) {
    return QString::fromStdString(kind).remove(QRegularExpression("[^A-Za-z0-9 ]"));
}

} // namespace

Folders::Folders(const std::string& stateFolder) : last(QDir::currentPath()) {
    if (stateFolder.empty()) return;
    file = QFile::decodeName(stateFolder.c_str()) + "/folders.ini";
    const QSettings kept(file, QSettings::IniFormat);
    for (const QString& key : kept.allKeys()) folders[key] = kept.value(key).toString();
}

QString Folders::of(const std::string& kind) const {
    const QString folder = folders.value(keyOf(kind), last);
    return QDir(folder).exists() ? folder : last;
}

void Folders::use(const std::string& kind, const QString& folder) {
    folders[keyOf(kind)] = last = folder;
    if (!file.isEmpty()) QSettings(file, QSettings::IniFormat).setValue(keyOf(kind), folder);
}

} // namespace polyfab
