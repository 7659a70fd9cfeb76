// SPDX-License-Identifier: GPL-3.0-or-later
// The window that shows the manual, which is part of the program.
#pragma once

#include <QTextBrowser>
#include <QWidget>

namespace polyfab {

/// Shows Markdown pages whose chapters can be gone to by their names: "The box" is "#the-box".
class ManualPages : public QTextBrowser {
  protected:
    void doSetSource(const QUrl& url, QTextDocument::ResourceType type) override;
};

class HelpWindow : public QWidget {
  public:
    /// The keyboard goes back to the owner, which has to last longer.
    explicit HelpWindow(QWidget& window);

    void showChapter(const QString& chapter);
    /// A page that is not in the manual.
    void showText(const QString& title, const QString& markdown);

  protected:
    void hideEvent(QHideEvent* event) override;

  private:
    void bringUp(const QString& title);
    /// Empty, and owned by the pages.
    QTextDocument* newPage();

    QWidget& owner;
    ManualPages pages;
    QTextDocument* manualPage;
    QTextDocument* sheet = nullptr; ///< what is shown or was shown beside the manual
};

} // namespace polyfab
