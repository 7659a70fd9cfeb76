// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/qt/help.h"

#include <QDesktopServices>
#include <QHBoxLayout>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QSignalBlocker>
#include <QTextBlock>
#include <QTextTable>

#include <utility>

namespace polyfab {
namespace {

constexpr double margin = 12;
constexpr const char* manual = "qrc:/docs/manual.md";

/// As links call a chapter: small letters and digits, with lines for blanks.
QString anchorOf(const QString& heading) {
    QString anchor;
    for (const QChar letter : heading.toLower()) {
        if (letter == QLatin1Char(' ')) anchor += QLatin1Char('-');
        if (letter.isLetterOrNumber() || letter == QLatin1Char('-')) anchor += letter;
    }
    return anchor;
}

/// The toolkit makes no anchors of headings.
void nameChapters(QTextDocument& document) {
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        if (block.blockFormat().headingLevel() == 0) continue;
        QTextCursor cursor(block);
        cursor.movePosition(QTextCursor::NextCharacter, QTextCursor::KeepAnchor);
        QTextCharFormat format;
        format.setAnchor(true);
        format.setAnchorNames({anchorOf(block.text())});
        cursor.mergeCharFormat(format);
    }
}

/// Tables as wide as they need, with thin lines and air.
void layTablesOut(QTextDocument& document) {
    for (QTextFrame* const frame : document.rootFrame()->childFrames()) {
        auto* const table = qobject_cast<QTextTable*>(frame);
        if (table == nullptr) continue;
        QTextTableFormat format = table->format();
        format.setBorderCollapse(true);
        format.setBorder(1);
        format.setBorderStyle(QTextFrameFormat::BorderStyle_Solid);
        format.setCellPadding(4);
        format.setCellSpacing(0);
        table->setFormat(format);
    }
}

/// Examples are broken into lines, and wide pictures made smaller, rather than that the page is
/// wider than its window.
void keepNarrow(QTextDocument& document) {
    constexpr double widest = 640;
    QTextBlockFormat breakable;
    breakable.setNonBreakableLines(false);
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        QTextCursor cursor(block);
        if (block.blockFormat().nonBreakableLines()) cursor.mergeBlockFormat(breakable);
        if (!block.text().startsWith(QChar::ObjectReplacementCharacter)) continue;
        QTextImageFormat picture = block.begin().fragment().charFormat().toImageFormat();
        const QVariant shown = document.resource(QTextDocument::ImageResource, picture.name());
        if (!picture.isValid() || shown.value<QImage>().width() <= widest) continue;
        picture.setWidth(widest);
        cursor.movePosition(QTextCursor::NextCharacter, QTextCursor::KeepAnchor);
        cursor.mergeCharFormat(picture);
    }
}

/// What the toolkit leaves out of a page that it has read; every page begins with a heading. In one
/// go: a long page is laid out anew after each change.
void dress(QTextDocument& document) {
    const QTextBlock::iterator first = document.begin().begin();
    if (!first.atEnd() && first.fragment().charFormat().isAnchor()) return; // read before
    QTextCursor cursor(&document);
    cursor.beginEditBlock();
    nameChapters(document);
    layTablesOut(document);
    keepNarrow(document);
    cursor.endEditBlock();
}

} // namespace

void ManualPages::doSetSource(const QUrl& url, QTextDocument::ResourceType type) {
    if (!url.isRelative() && url.scheme() != QLatin1String("qrc")) {
        QDesktopServices::openUrl(url);
        return;
    }
    QTextBrowser::doSetSource(url, type);
    {
        const QSignalBlocker quiet(document()); // a page that has changed would be read again
        dress(*document());
    }
    if (url.hasFragment()) scrollToAnchor(url.fragment());
}

HelpWindow::HelpWindow(QWidget& window) : owner(window), manualPage(pages.document()) {
    manualPage->setParent(&pages); // or another page would delete it
    manualPage->setDocumentMargin(margin);
    auto* const layout = new QVBoxLayout(this);
    auto* const buttons = new QHBoxLayout;
    const auto add = [&](const char* text, auto act) {
        auto* const button = new QPushButton(QString::fromLatin1(text));
        QObject::connect(button, &QPushButton::clicked, this, act);
        buttons->addWidget(button);
        return button;
    };
    add("contents", [this] { showChapter(QString()); });
    QPushButton* const back = add("back", [this] { pages.backward(); });
    QPushButton* const forth = add("forward", [this] { pages.forward(); });
    buttons->addStretch();
    add("close", [this] { hide(); });
    back->setEnabled(false);
    forth->setEnabled(false);
    QObject::connect(&pages, &QTextBrowser::backwardAvailable, back, &QWidget::setEnabled);
    QObject::connect(&pages, &QTextBrowser::forwardAvailable, forth, &QWidget::setEnabled);
    layout->addLayout(buttons);
    layout->addWidget(&pages);
    new QShortcut(QKeySequence(Qt::Key_Escape), this, [this] { hide(); });
    resize(QSize(130 * fontMetrics().averageCharWidth(), 50 * fontMetrics().lineSpacing())
               .boundedTo(screen()->availableSize() - QSize(16, 48)));
}

void HelpWindow::showChapter(const QString& chapter) {
    if (pages.document() != manualPage) pages.setDocument(manualPage);
    QUrl url(QString::fromLatin1(manual));
    if (!chapter.isEmpty()) url.setFragment(chapter);
    pages.setSource(url, QTextDocument::MarkdownResource);
    bringUp(QStringLiteral("manual"));
    if (chapter.isEmpty()) {
        pages.moveCursor(QTextCursor::Start);
    } else {
        pages.scrollToAnchor(chapter); // laid out by now
    }
}

void HelpWindow::showText(const QString& title, const QString& markdown) {
    // A page that is shown already would be laid out anew with every cell of its tables.
    QTextDocument* const page = newPage();
    page->setMarkdown(markdown);
    dress(*page);
    pages.setDocument(page);
    pages.clearHistory(); // which is of the manual
    delete std::exchange(sheet, page);
    bringUp(title);
}

QTextDocument* HelpWindow::newPage() {
    auto* const page = new QTextDocument(&pages); // through which it finds its pictures
    page->setDefaultFont(pages.font());
    page->setDocumentMargin(margin);
    return page;
}

void HelpWindow::bringUp(const QString& title) {
    setWindowTitle(title);
    show();
    raise();
    activateWindow();
    pages.setFocus();
}

/// Not every window manager gives the keyboard back.
void HelpWindow::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    if (owner.isVisible()) owner.activateWindow();
}

} // namespace polyfab
