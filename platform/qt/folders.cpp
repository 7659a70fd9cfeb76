// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/qt/folders.h"

#include "io/save_file.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSettings>

namespace polyfab {
namespace {

/// As a key of an INI file: no letters that mean something there.
QString keyOf(const std::string& kind) {
    return QString::fromStdString(kind).remove(QRegularExpression("[^A-Za-z0-9 ]"));
}

/// As a value of an INI file.
QString quoted(const QString& text) {
    QString inner = text;
    inner.replace('\\', "\\\\").replace('"', "\\\"").replace('\n', "\\n").replace('\r', "\\r");
    return '"' + inner + '"';
}

/// Not by the settings themselves: they follow links and take the umask as it is.
void save(const std::string& path, const QHash<QString, QString>& folders) {
    QString text = "[General]\n";
    for (auto row = folders.begin(); row != folders.end(); ++row) {
        text += QString(row.key()).replace(' ', "%20") + '=' + quoted(row.value()) + '\n';
    }
    SaveFile file;
    if (!file.open(path, FileKind::state)) return;
    file.append(text.toStdString());
    static_cast<void>(file.commit());
}

} // namespace

Folders::Folders(const std::string& stateFolder) : last(QDir::currentPath()) {
    if (stateFolder.empty()) return;
    file = QFile::decodeName(stateFolder.c_str()) + "/folders.ini";
    if (QFileInfo(file).isSymLink()) return;
    const QSettings kept(file, QSettings::IniFormat);
    for (const QString& key : kept.allKeys()) folders[key] = kept.value(key).toString();
}

QString Folders::of(const std::string& kind) const {
    const QString folder = folders.value(keyOf(kind), last);
    return QDir(folder).exists() ? folder : last;
}

void Folders::use(const std::string& kind, const QString& folder) {
    folders[keyOf(kind)] = last = folder;
    if (!file.isEmpty()) save(QFile::encodeName(file).toStdString(), folders);
}

} // namespace polyfab
