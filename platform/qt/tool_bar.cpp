// SPDX-License-Identifier: GPL-3.0-or-later
// The buttons have actions of their own: those of the menus come and go with each new menu bar.
#include "platform/qt/tool_bar.h"

#include "platform/qt/icons.h"

#include <utility>

namespace polyfab {

ToolBar::ToolBar(std::function<void(int command)> toChoose) : choose(std::move(toChoose)) {
    setMovable(false);
    setContextMenuPolicy(Qt::PreventContextMenu);
    const int side = fontMetrics().height() * 4 / 3;
    setIconSize(QSize(side, side));
}

void ToolBar::setButtons(const std::vector<ToolButton>& buttons) {
    clear();
    for (const ToolButton& button : buttons) {
        if (button.id == 0) {
            addSeparator();
            continue;
        }
        QAction* const added = addAction(themedIcon(button.icon), QString());
        added->setData(button.id);
        added->setEnabled(false);
        QObject::connect(added, &QAction::triggered, this, [this, added](bool checked) {
            if (added->isCheckable()) added->setChecked(!checked); // the program says what is on
            choose(added->data().toInt());
        });
    }
}

void ToolBar::follow(const Actions& actions) {
    for (QAction* const shown : this->actions()) {
        if (shown->isSeparator()) continue;
        if (const QAction* const followed = actions.value(shown->data().toInt())) {
            showLike(*shown, *followed);
        } else {
            shown->setEnabled(false);
        }
    }
}

void ToolBar::followOne(const QAction& action) {
    for (QAction* const shown : actions()) {
        if (!shown->isSeparator() && shown->data() == action.data()) showLike(*shown, action);
    }
}

void ToolBar::showLike(QAction& button, const QAction& followed) {
    button.setEnabled(followed.isEnabled());
    button.setCheckable(followed.isCheckable());
    button.setChecked(followed.isChecked());
    button.setText(followed.iconText());
    const QString key = followed.shortcut().toString(QKeySequence::NativeText);
    button.setToolTip(
        QStringLiteral("<qt><b>%1</b> %2<br>%3</qt>")
            .arg(followed.iconText().toHtmlEscaped(), key.toHtmlEscaped(), followed.toolTip()));
}

} // namespace polyfab
