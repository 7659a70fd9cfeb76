// SPDX-License-Identifier: GPL-3.0-or-later
// Every word that is typed must stand in the command's number, menu, name, shortcut or sentence;
// those that have all of them in the name come first.
#include "platform/qt/search.h"

#include <QCoreApplication>
#include <QDialog>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace polyfab {
namespace {

constexpr int commandRole = Qt::UserRole, enabledRole = Qt::UserRole + 1,
              adviceRole = Qt::UserRole + 2, textRole = Qt::UserRole + 3;

QString withoutMarks(const std::string& label) {
    return QString::fromStdString(label).remove(QLatin1Char('&'));
}

class Search : public QDialog {
  public:
    Search(QWidget* owner, const MenuBar& bar) : QDialog(owner) {
        setWindowTitle(QStringLiteral("search the commands"));
        auto* const layout = new QVBoxLayout(this);
        for (QWidget* const part : {static_cast<QWidget*>(&line), static_cast<QWidget*>(&list),
                                    static_cast<QWidget*>(&advice)}) {
            layout->addWidget(part);
        }
        line.setPlaceholderText(QStringLiteral("a word of its name or of what it does"));
        prepareList();
        for (const Menu& menu : bar) addItems(menu.items, withoutMarks(menu.title));
        fitColumns();
        advice.setWordWrap(true);
        advice.setTextFormat(Qt::PlainText);
        advice.setAlignment(Qt::AlignTop | Qt::AlignLeft);
        advice.setMinimumHeight(3 * advice.fontMetrics().lineSpacing());
        line.installEventFilter(this);
        QObject::connect(&line, &QLineEdit::textChanged, this, [this] { filter(); });
        QObject::connect(&list, &QTreeWidget::itemActivated, this, [this] { choose(); });
        QObject::connect(&list, &QTreeWidget::currentItemChanged, this, [this] { showAdvice(); });
        filter();
    }

    int chosen() const { return command; }

  protected:
    /// Keys that move in the list do so while a word is typed.
    bool eventFilter(QObject* watched, QEvent* event) override {
        constexpr int moving[] = {Qt::Key_Up, Qt::Key_Down, Qt::Key_PageUp, Qt::Key_PageDown};
        if (event->type() != QEvent::KeyPress) return QDialog::eventFilter(watched, event);
        auto& typed = *static_cast<QKeyEvent*>(event);
        if (std::find(std::begin(moving), std::end(moving), typed.key()) != std::end(moving)) {
            QCoreApplication::sendEvent(&list, event);
            return true;
        }
        if (typed.key() != Qt::Key_Return && typed.key() != Qt::Key_Enter) return false;
        choose();
        return true;
    }

  private:
    void prepareList() {
        list.setRootIsDecorated(false);
        list.setUniformRowHeights(true);
        list.setAllColumnsShowFocus(true);
        list.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        list.setHeaderLabels({QStringLiteral("command"), QStringLiteral("menu"),
                              QStringLiteral("key"), QStringLiteral("number")});
    }

    void addItems(const std::vector<MenuItem>& items, const QString& menu) {
        for (const MenuItem& item : items) {
            addItems(item.items, menu + QStringLiteral(" > ") + withoutMarks(item.label));
            if (item.id == 0) continue;
            const QString name = QString::fromStdString(item.name);
            const QString key = QString::fromStdString(item.key);
            auto* const row =
                new QTreeWidgetItem(&list, {name, menu, key, QString::number(item.id)});
            row->setData(0, commandRole, item.id);
            row->setData(0, enabledRole, item.enabled);
            row->setData(0, adviceRole, QString::fromStdString(item.advice));
            row->setData(
                0, textRole,
                QStringList{row->text(3), menu, name, key, QString::fromStdString(item.advice)}
                    .join(QLatin1Char(' ')));
            const QBrush grey = palette().brush(QPalette::Disabled, QPalette::Text);
            for (int column = 0; column < 4 && !item.enabled; ++column) {
                row->setForeground(column, grey);
            }
        }
    }

    /// Wide enough for all but the longest names, as far as the screen has room.
    void fitColumns() {
        const int character = fontMetrics().averageCharWidth();
        list.header()->setStretchLastSection(false);
        list.header()->setSectionResizeMode(0, QHeaderView::Stretch);
        for (const int column : {1, 2, 3}) list.resizeColumnToContents(column);
        resize(QSize(150 * character, 32 * fontMetrics().lineSpacing()).boundedTo(screenRoom()));
    }

    QSize screenRoom() const { return screen()->availableSize() - QSize(32, 96); }

    void filter() {
        const QStringList words = line.text().split(QLatin1Char(' '), Qt::SkipEmptyParts);
        const auto hasAll = [&](const QString& text) {
            return std::all_of(words.begin(), words.end(), [&](const QString& word) {
                return text.contains(word, Qt::CaseInsensitive);
            });
        };
        QTreeWidgetItem* best = nullptr;
        bool bestIsNamed = false;
        for (int i = 0; i < list.topLevelItemCount(); ++i) {
            QTreeWidgetItem* const row = list.topLevelItem(i);
            row->setHidden(!hasAll(row->data(0, textRole).toString()));
            if (row->isHidden() || bestIsNamed) continue;
            const bool named = row->data(0, enabledRole).toBool() && hasAll(row->text(0));
            if (best == nullptr || named) best = row;
            bestIsNamed = named;
        }
        list.setCurrentItem(best);
        if (best == nullptr) advice.setText(QStringLiteral("no command has all these words"));
    }

    void showAdvice() {
        const QTreeWidgetItem* const row = list.currentItem();
        advice.setText(row ? row->data(0, adviceRole).toString() : QString());
    }

    /// What is greyed can be read about, not chosen.
    void choose() {
        const QTreeWidgetItem* const row = list.currentItem();
        if (row == nullptr || !row->data(0, enabledRole).toBool()) return;
        command = row->data(0, commandRole).toInt();
        accept();
    }

    QLineEdit line;
    QTreeWidget list;
    QLabel advice;
    int command = 0;
};

} // namespace

int askCommand(QWidget* owner, const MenuBar& bar) {
    Search search(owner, bar);
    search.exec();
    return search.chosen();
}

} // namespace polyfab
