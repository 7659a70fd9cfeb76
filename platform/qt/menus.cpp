// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/qt/menus.h"

#include <QAction>
#include <QActionGroup>
#include <QMenu>

namespace polyfab {
namespace {

/// The group of the menu's actions of which one holds.
QActionGroup& groupOf(QMenu& menu) {
    auto* const group = menu.findChild<QActionGroup*>(QString(), Qt::FindDirectChildrenOnly);
    return group != nullptr ? *group : *new QActionGroup(&menu);
}

QAction* addItem(QMenu& menu, const MenuItem& item, const std::function<void(int)>& choose) {
    QAction* const added = menu.addAction(QString::fromStdString(item.label));
    added->setData(item.id);
    added->setShortcuts(QKeySequence::listFromString(QString::fromStdString(item.key)));
    added->setEnabled(item.enabled);
    added->setCheckable(item.checkable);
    if (item.radio) added->setActionGroup(&groupOf(menu));
    added->setChecked(item.checked);
    added->setIconText(QString::fromStdString(item.name));
    if (!item.advice.empty()) added->setToolTip(wrappedTip(item.advice));
    const auto chosen = [added, choose, id = item.id](bool checked) {
        // The toolkit has just flipped the mark, but only the program says what is on; of several
        // that exclude each other, when the command is done.
        if (added->isCheckable() && !added->actionGroup()) added->setChecked(!checked);
        choose(id);
    };
    QObject::connect(added, &QAction::triggered, &menu, chosen);
    return added;
}

} // namespace

void fillMenu(QMenu& menu, const std::vector<MenuItem>& items, Actions& actions,
              const std::function<void(int)>& choose) {
    menu.setToolTipsVisible(true);
    for (const MenuItem& item : items) {
        if (!item.items.empty()) {
            QMenu* const inner = menu.addMenu(QString::fromStdString(item.label));
            fillMenu(*inner, item.items, actions, choose);
        } else if (item.id == 0) {
            menu.addSeparator();
        } else {
            actions[item.id] = addItem(menu, item, choose);
        }
    }
}

QString wrappedTip(const std::string& text) {
    return QStringLiteral("<qt>%1</qt>").arg(QString::fromStdString(text).toHtmlEscaped());
}

} // namespace polyfab
