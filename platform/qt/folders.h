// SPDX-License-Identifier: GPL-3.0-or-later
// Where the file dialogs start: each kind of them, told apart by its prompt, where it ended last.
#pragma once

#include <QHash>
#include <QString>

#include <string>

namespace polyfab {

class Folders {
  public:
    /// Kept from run to run in a file of this folder; with "" only for this run.
    explicit Folders(const std::string& stateFolder);

    /// A kind that has none yet begins in the folder that was used last, at first the working
    /// directory, and so does one whose folder is gone.
    [[nodiscard]] QString of(const std::string& kind) const;
    void use(const std::string& kind, const QString& folder);
    /// A file of this folder came in some other way.
    void use(const QString& folder) { last = folder; }

  private:
    QString file;
    QString last;
    QHash<QString, QString> folders;
};

} // namespace polyfab
